#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <QSignalBlocker>

#include "window/binding.h"
#include "window/field_mark.h"

namespace corvane::window {
namespace {

/// A drop-down list. Port selectors show beside each number the device behind it and whether it is there.
class SelectorBinding : public QObject, public Binding {
 public:
  SelectorBinding(Selector& selector, QWidget& widget, const BindingContext& context)
      : Binding(&widget),
        control_(selector),
        box_(WidgetAs<QComboBox>(widget)),
        context_(context),
        shows_ports_(selector.name().starts_with("Cmb_Port_")) {
    // An editable one is made so by the form: a line edit made later would stand last in the tab order.
    box_->setEditable(selector.editable());
    box_->setInsertPolicy(QComboBox::NoInsert);
    box_->setFocusPolicy(Qt::StrongFocus);
    connect(box_, &QComboBox::activated, this, [this](int row) { control_.SetCurrent(row); });
    if (selector.editable()) {
      box_->setCompleter(nullptr);
      box_->lineEdit()->setMaxLength(static_cast<int>(TextField::kLongestText));
      mark_ = std::make_unique<FieldMark>(selector, *box_->lineEdit(), *box_, context);
      connect(box_, &QComboBox::editTextChanged, this,
              [this](const QString& text) { control_.SetShownText(text.toStdString()); });
    }
    box_->installEventFilter(this);
  }

  void Show(Aspect aspect, std::size_t row) override {
    const QSignalBlocker quiet(box_);
    if (aspect == Aspect::Rows) ShowRows(row);
    if (shows_ports_) ShowPortText(static_cast<int>(control_.current()));
    // Touched only where they differ: a new index or text would move the cursor of a person who types.
    const auto current = static_cast<int>(control_.current());
    const QString shown = QString::fromStdString(control_.shown_text());
    const bool typed = control_.editable() && current < 0;
    if (!typed && box_->currentIndex() != current) box_->setCurrentIndex(current);
    if (control_.editable() && box_->currentText() != shown) box_->setEditText(shown);
    if (mark_) context_.recheck_soon();
  }
  void Recheck() override {
    if (mark_) mark_->Recheck();
  }
  [[nodiscard]] bool HasProblem() const override { return mark_ != nullptr && mark_->shown(); }

  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    // The wheel scrolls the page; a setting is not to change because it passed under the pointer.
    if (event->type() == QEvent::Wheel && !box_->hasFocus()) {
      event->ignore();
      return true;
    }
    if (shows_ports_ && (event->type() == QEvent::FocusIn || event->type() == QEvent::Enter)) ShowPortTexts();
    return false;
  }

 private:
  [[nodiscard]] QString TextOf(std::int64_t row) const {
    if (shows_ports_) return QString::fromStdString(context_.port_text(control_.number(row)));
    return QString::fromStdString(control_.text(row));
  }
  void ShowRows(std::size_t first_changed) {
    const std::int64_t shown = box_->count();
    if (first_changed > 0 && control_.count() == shown + 1) return box_->addItem(TextOf(shown));
    box_->clear();
    for (std::int64_t row = 0; row < control_.count(); ++row) box_->addItem(TextOf(row));
  }
  void ShowPortText(int row) {
    if (row < 0 || row >= box_->count() || row >= control_.count()) return;
    const QString text = TextOf(row);
    if (text != box_->itemText(row)) box_->setItemText(row, text);
    box_->setItemData(row, text, Qt::ToolTipRole);
  }
  void ShowPortTexts() {
    for (int row = 0; row < box_->count(); ++row) ShowPortText(row);
  }

  Selector& control_;
  QComboBox* box_;
  const BindingContext& context_;
  bool shows_ports_;
  std::unique_ptr<FieldMark> mark_;  ///< where the person may type
};

}  // namespace

std::unique_ptr<Binding> BindSelector(Selector& selector, QWidget& widget, const BindingContext& context) {
  return std::make_unique<SelectorBinding>(selector, widget, context);
}

}  // namespace corvane::window
