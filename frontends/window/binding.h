// How one control of the Form and one widget of the window follow each other, by kind.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include <QPointer>
#include <QWidget>

#include "base/status.h"
#include "form/control.h"
#include "form/form_view.h"
#include "platform/event_loop.h"

namespace corvane::window {

/// What the bindings need beside their control and widget.
struct BindingContext {
  QWidget& window;
  EventLoop& loop;  ///< what may show a box runs from it, never inside a widget's own event
  /// What an entry of a port selector shows; the entry itself keeps its plain text.
  std::function<std::string(int number)> port_text;
  /// What is wrong with a field's text; empty when nothing is.
  std::function<std::string(const Control& field)> problem_of;
  /// Has all fields looked at again as soon as nothing is typed for a moment.
  std::function<void()> recheck_soon = {};  // the binder's own
  /// Shows what is wrong with the field that has the focus; empty clears it.
  std::function<void(const std::string& problem)> show_hint;
  /// What a list shows behind the first column of a row; empty for nothing.
  std::function<std::string(const Control& list, const std::string& text)> note_of = {};
};

/// Shows a control in its widget. What it shows never comes back to the control as a change by the person.
class Binding {
 public:
  explicit Binding(QWidget* widget) : widget_(widget) {}
  virtual ~Binding() = default;
  Binding(const Binding&) = delete;
  Binding& operator=(const Binding&) = delete;

  /// Shows one changed aspect of the control; `row` as `FormView::ControlChanged` gets it.
  virtual void Show(Aspect aspect, std::size_t row) = 0;
  /// Looks again whether the text is one that can be used; other fields or the files it names may have changed.
  virtual void Recheck() {}
  /// True while the text is one that cannot be used.
  [[nodiscard]] virtual bool HasProblem() const { return false; }
  /// The focus of a widget that is disabled waits in the window itself, where no key does harm, and comes back.
  virtual void ShowEnabled(bool enabled);
  virtual void ShowVisible(bool visible);
  [[nodiscard]] QWidget* widget() const { return widget_; }

 private:
  /// Gives the focus to the window where the widget or a part of it has it; that part, else nullptr.
  QWidget* PutFocusAside();

  QWidget* widget_;
  QPointer<QWidget> had_focus_;  ///< the widget, or a part of it, that lost the focus when it was disabled
};

/// Joins a control and the widget of its name and shows all of it; throws `RunTimeError` when the widget is of a kind
/// that cannot show the control. All must outlive the binding, the context included.
[[nodiscard]] std::unique_ptr<Binding> MakeBinding(Control& control, QWidget& widget, const BindingContext& context);

// The kinds with more to them than a value.

[[nodiscard]] std::unique_ptr<Binding> BindTextField(TextField& field, QWidget& widget, const BindingContext& context);
[[nodiscard]] std::unique_ptr<Binding> BindList(List& list, QWidget& widget, const BindingContext& context);
[[nodiscard]] std::unique_ptr<Binding> BindSelector(Selector& selector, QWidget& widget, const BindingContext& context);
[[nodiscard]] std::unique_ptr<Binding> BindMenu(MenuGroup& menu, QWidget& widget, const BindingContext& context);

/// The widget as the kind that a control needs; throws `RunTimeError` naming it when it is another.
template <class Kind>
Kind* WidgetAs(QWidget& widget) {
  auto* found = qobject_cast<Kind*>(&widget);
  if (found == nullptr) throw RunTimeError("The widget " + widget.objectName().toStdString() + " is of another kind");
  return found;
}

}  // namespace corvane::window
