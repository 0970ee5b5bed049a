#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>

#include <QTimer>
#include <QWidget>

#include "form/form.h"
#include "form/form_view.h"
#include "window/binding.h"

namespace corvane::window {

/// Shows the Form in the widgets that bear its controls' names.
class Binder : public FormView {
 public:
  /// Binds every control; throws `RunTimeError` naming one that has no widget in the window, or of the wrong kind.
  Binder(Form& form, BindingContext context);

  void ControlChanged(const Control& control, Aspect aspect, std::size_t row) override;
  /// Paints at once, but not more often than the eye sees.
  void RepaintNow(const Control& control) override;

  /// Called before a change is shown; set by the window.
  std::function<void(const Control& control, Aspect aspect)> on_change;

 private:
  BindingContext context_;
  QTimer recheck_timer_;
  QTimer problem_timer_;
  std::unordered_map<const Control*, std::unique_ptr<Binding>> bindings_;
  std::int64_t last_repaint_ = 0;  ///< monotonic milliseconds
};

}  // namespace corvane::window
