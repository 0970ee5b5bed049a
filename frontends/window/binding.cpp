#include "window/binding.h"

#include <cmath>

#include <QAbstractButton>
#include <QAccessible>
#include <QButtonGroup>
#include <QCheckBox>
#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QWindow>

namespace corvane::window {
namespace {

/// A label, or a widget that is only shown and hidden. One with the property "roomWhenEmpty" off is there for a text.
class LabelBinding : public Binding {
 public:
  LabelBinding(Label& label, QWidget& widget)
      : Binding(&widget), control_(label), label_(qobject_cast<QLabel*>(&widget)) {}
  void Show(Aspect aspect, std::size_t /*row*/) override {
    if (aspect != Aspect::Value || label_ == nullptr) return;
    label_->setText(QString::fromStdString(control_.text()));
    if (const QVariant room = label_->property("roomWhenEmpty"); room.isValid() && !room.toBool()) {
      label_->setVisible(!control_.text().empty());
    }
  }

 private:
  Label& control_;
  QLabel* label_;
};

class CheckBinding : public Binding {
 public:
  CheckBinding(CheckBox& box, QWidget& widget, const BindingContext& context)
      : Binding(&widget), control_(box), box_(WidgetAs<QAbstractButton>(widget)) {
    QObject::connect(box_, &QAbstractButton::toggled, box_, [&box, &loop = context.loop](bool ticked) {
      loop.Post([&box, ticked] { box.SetTicked(ticked); });
    });
  }
  void Show(Aspect aspect, std::size_t /*row*/) override {
    const QSignalBlocker quiet(box_);
    if (aspect == Aspect::Value) box_->setChecked(control_.ticked());
  }

 private:
  CheckBox& control_;
  QAbstractButton* box_;
};

/// Radio buttons named "<group>_<index>" within the widget of the group.
class OptionsBinding : public Binding {
 public:
  OptionsBinding(OptionGroup& options, QWidget& widget, const BindingContext& context)
      : Binding(&widget), control_(options) {
    for (int index = 0; index < options.count(); ++index) {
      const QString name = QString("%1_%2").arg(QString::fromStdString(options.name())).arg(index);
      auto* button = widget.findChild<QRadioButton*>(name);
      if (button == nullptr) throw RunTimeError("There is no radio button " + name.toStdString());
      group_.addButton(button, index);
    }
    QObject::connect(&group_, &QButtonGroup::idToggled, &widget, [&options, &loop = context.loop](int index, bool on) {
      if (on) loop.Post([&options, index] { options.SetOptionIndex(index); });
    });
  }
  void Show(Aspect aspect, std::size_t /*row*/) override {
    const QSignalBlocker quiet(&group_);
    if (aspect != Aspect::Value) return;
    // Tab stops on the ticked one, from which the arrow keys go on.
    const auto buttons = group_.buttons();
    for (QAbstractButton* button : buttons) button->setFocusPolicy(Qt::ClickFocus);
    QAbstractButton* const ticked = group_.button(control_.GetOptionIndex());
    ticked->setFocusPolicy(Qt::StrongFocus);
    ticked->setChecked(true);
  }

 private:
  OptionGroup& control_;
  QButtonGroup group_;
};

class ButtonBinding : public Binding {
 public:
  ButtonBinding(Button& button, QWidget& widget, const BindingContext& context)
      : Binding(&widget), control_(button), button_(WidgetAs<QAbstractButton>(widget)) {
    QObject::connect(button_, &QAbstractButton::clicked, button_,
                     [&button, &loop = context.loop] { loop.Post([&button] { button.Click(); }); });
  }
  void Show(Aspect aspect, std::size_t /*row*/) override {
    if (aspect == Aspect::Caption) button_->setText(QString::fromStdString(control_.caption()));
  }

 private:
  Button& control_;
  QAbstractButton* button_;
};

/// A screen reader gets an event at each step.
constexpr int kStepWhenHeard = 10;

/// The toolkit paints a bar, and all that is behind it, whenever it gets a value: readings come faster than the eye
/// sees.
constexpr int kBarMilliseconds = 50;

class ProgressBinding : public Binding {
 public:
  ProgressBinding(ProgressBar& bar, QWidget& widget)
      : Binding(&widget), control_(bar), bar_(WidgetAs<QProgressBar>(widget)) {
    rest_.setSingleShot(true);
    QObject::connect(&rest_, &QTimer::timeout, bar_, [this] { ShowNow(); });
  }
  void Show(Aspect /*aspect*/, std::size_t /*row*/) override {
    if (rest_.isActive()) return;
    ShowNow();
    rest_.start(kBarMilliseconds);
  }

 private:
  void ShowNow() {
    const double range = control_.maximum() - control_.minimum();
    const double share = range > 0 ? (control_.value() - control_.minimum()) / range : 0;
    const int step = QAccessible::isActive() ? kStepWhenHeard : 1;
    bar_->setValue(static_cast<int>(std::lround(share * 100)) / step * step);
  }

  ProgressBar& control_;
  QProgressBar* bar_;
  QTimer rest_;
};

class WindowBinding : public QObject, public Binding {
 public:
  WindowBinding(Window& window, QWidget& widget) : Binding(&widget), control_(window) {}
  void Show(Aspect aspect, std::size_t /*row*/) override {
    if (aspect == Aspect::Caption) ShowTitle();
    if (aspect != Aspect::Value) return;
    ShowPointer();
    if (control_.minimised() != widget()->isMinimized() && widget()->isVisible()) {
      control_.minimised() ? ShowMinimised() : widget()->showNormal();
    }
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Expose || !static_cast<QWindow*>(watched)->isExposed()) return false;
    watched->removeEventFilter(this);
    QMetaObject::invokeMethod(
        this, [this] { widget()->showMinimized(); }, Qt::QueuedConnection);
    return false;
  }

 private:
  /// A Wayland compositor takes no notice of what is asked of a window that it has not shown yet.
  void ShowMinimised() {
    QWindow* const shown = widget()->windowHandle();
    if (!QGuiApplication::platformName().startsWith("wayland") || shown == nullptr || shown->isExposed()) {
      return widget()->showMinimized();
    }
    shown->installEventFilter(this);
  }
  void ShowTitle() {
    widget()->setWindowTitle(control_.title().empty() ? "Corvane" : QString::fromStdString(control_.title()));
  }
  void ShowPointer() {
    if (control_.pointer() == PointerShape::Busy) {
      widget()->setCursor(Qt::BusyCursor);
    } else {
      widget()->unsetCursor();
    }
  }

  Window& control_;
};

std::unique_ptr<Binding> BindByKind(Control& control, QWidget& widget, const BindingContext& context) {
  switch (control.kind()) {
    case ControlKind::Label:
      return std::make_unique<LabelBinding>(dynamic_cast<Label&>(control), widget);
    case ControlKind::Text:
      return BindTextField(dynamic_cast<TextField&>(control), widget, context);
    case ControlKind::Check:
      return std::make_unique<CheckBinding>(dynamic_cast<CheckBox&>(control), widget, context);
    case ControlKind::Options:
      return std::make_unique<OptionsBinding>(dynamic_cast<OptionGroup&>(control), widget, context);
    case ControlKind::List:
      return BindList(dynamic_cast<List&>(control), widget, context);
    case ControlKind::Selector:
      return BindSelector(dynamic_cast<Selector&>(control), widget, context);
    case ControlKind::Button:
      return std::make_unique<ButtonBinding>(dynamic_cast<Button&>(control), widget, context);
    case ControlKind::Menu:
      return BindMenu(dynamic_cast<MenuGroup&>(control), widget, context);
    case ControlKind::Progress:
      return std::make_unique<ProgressBinding>(dynamic_cast<ProgressBar&>(control), widget);
    case ControlKind::Window:
      return std::make_unique<WindowBinding>(dynamic_cast<Window&>(control), widget);
  }
  throw RunTimeError("There is no binding for " + control.name());
}

}  // namespace

void Binding::ShowEnabled(bool enabled) {
  if (!enabled) had_focus_ = PutFocusAside();
  widget_->setEnabled(enabled);
  if (!enabled || had_focus_ == nullptr) return;
  // Where the person has gone on to another field meanwhile, the focus stays there.
  if (widget_->window()->focusWidget() == widget_->window()) had_focus_->setFocus(Qt::OtherFocusReason);
  had_focus_.clear();
}

QWidget* Binding::PutFocusAside() {
  QWidget* const focused = widget_->window()->focusWidget();
  if (focused == nullptr || (focused != widget_ && !widget_->isAncestorOf(focused))) return nullptr;
  widget_->window()->setFocus(Qt::OtherFocusReason);
  return focused;
}

void Binding::ShowVisible(bool visible) {
  if (!visible) PutFocusAside();
  widget_->setVisible(visible);
  const auto labels = widget_->window()->findChildren<QLabel*>();
  for (QLabel* label : labels) {
    if (label->buddy() == widget_) label->setVisible(visible);
  }
}

std::unique_ptr<Binding> MakeBinding(Control& control, QWidget& widget, const BindingContext& context) {
  auto binding = BindByKind(control, widget, context);
  for (const Aspect aspect : {Aspect::Rows, Aspect::Caption, Aspect::Range, Aspect::Selection, Aspect::Value}) {
    binding->Show(aspect, 0);
  }
  if (!control.enabled()) binding->ShowEnabled(false);
  if (!control.visible()) binding->ShowVisible(false);
  return binding;
}

}  // namespace corvane::window
