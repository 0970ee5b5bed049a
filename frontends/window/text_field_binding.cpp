#include <QAction>
#include <QEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStyle>

#include "window/binding.h"

namespace corvane::window {
namespace {

/// A line to type in, with a quiet mark behind a text that is none.
class TextFieldBinding : public QObject, public Binding {
 public:
  TextFieldBinding(TextField& field, QWidget& widget, const BindingContext& context)
      : Binding(&widget), control_(field), edit_(WidgetAs<QLineEdit>(widget)), context_(context) {
    edit_->setMaxLength(static_cast<int>(TextField::kLongestText));
    mark_ = edit_->addAction(edit_->style()->standardIcon(QStyle::SP_MessageBoxWarning), QLineEdit::TrailingPosition);
    mark_->setVisible(false);
    connect(edit_, &QLineEdit::textChanged, this, [this](const QString& text) { Take(text); });
    connect(edit_, &QLineEdit::editingFinished, this, [this] { control_.Leave(); });
    edit_->installEventFilter(this);
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
  void Recheck() override {
    const std::string problem = context_.problem_of(control_);
    if (problem == problem_) return;
    problem_ = problem;
    mark_->setVisible(!problem.empty());
    mark_->setToolTip(QString::fromStdString(problem));
    edit_->setAccessibleDescription(QString::fromStdString(problem));
    if (edit_->hasFocus()) context_.show_hint(problem);
  }

  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::FocusIn) {
      Recheck();
      context_.show_hint(problem_);
    }
    if (event->type() == QEvent::FocusOut) context_.show_hint({});
    return false;
  }

 private:
  void Take(const QString& text) {
    control_.SetText(text.toStdString());
    // The control may have cut or cleaned what was typed or pasted.
    if (control_.text() != text.toStdString()) Show(Aspect::Value, 0);
  }

  TextField& control_;
  QLineEdit* edit_;
  const BindingContext& context_;
  QAction* mark_ = nullptr;
  std::string problem_;
};

}  // namespace

std::unique_ptr<Binding> BindTextField(TextField& field, QWidget& widget, const BindingContext& context) {
  return std::make_unique<TextFieldBinding>(field, widget, context);
}

}  // namespace corvane::window
