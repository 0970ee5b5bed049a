#include <QLineEdit>
#include <QSignalBlocker>

#include "window/binding.h"
#include "window/field_mark.h"

namespace corvane::window {
namespace {

/// A line to type in.
class TextFieldBinding : public QObject, public Binding {
 public:
  TextFieldBinding(TextField& field, QWidget& widget, const BindingContext& context)
      : Binding(&widget),
        control_(field),
        edit_(WidgetAs<QLineEdit>(widget)),
        context_(context),
        mark_(field, *edit_, widget, context) {
    edit_->setMaxLength(static_cast<int>(TextField::kLongestText));
    connect(edit_, &QLineEdit::textChanged, this, [this](const QString& text) { Take(text); });
    // What leaving a field starts may ask, which must not happen inside the widget's own event.
    connect(edit_, &QLineEdit::editingFinished, this,
            [&field, &loop = context.loop] { loop.Post([&field] { field.Leave(); }); });
  }

  void Show(Aspect aspect, std::size_t /*row*/) override {
    if (aspect != Aspect::Value) return;
    const QString text = QString::fromStdString(control_.text());
    if (text != edit_->text()) {
      const QSignalBlocker quiet(edit_);
      edit_->setText(text);
    }
    context_.recheck_soon();
  }
  void Recheck() override { mark_.Recheck(); }
  [[nodiscard]] bool HasProblem() const override { return mark_.shown(); }

 private:
  void Take(const QString& text) {
    control_.SetText(text.toStdString());
    // The control may have cut or cleaned what was typed or pasted.
    if (control_.text() != text.toStdString()) Show(Aspect::Value, 0);
  }

  TextField& control_;
  QLineEdit* edit_;
  const BindingContext& context_;
  FieldMark mark_;
};

}  // namespace

std::unique_ptr<Binding> BindTextField(TextField& field, QWidget& widget, const BindingContext& context) {
  return std::make_unique<TextFieldBinding>(field, widget, context);
}

}  // namespace corvane::window
