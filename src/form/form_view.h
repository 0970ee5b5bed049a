#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane {

class Control;

/// What changed in a control.
enum class Aspect : std::uint8_t {
  Value,  ///< text, tick, option index, progress value, pointer shape, minimised state or title
  Caption,
  Enabled,
  Visible,
  Range,      ///< limits of a progress bar
  Rows,       ///< rows were added or removed; the row is the first that differs
  Row,        ///< text or mark of one row, or one entry of a menu
  CheckMark,  ///< check mark of one row
  Selection,  ///< selected rows or the current row
};

/// The one renderer of the Form: the window, the console or a recorder for tests.
class FormView {
 public:
  virtual ~FormView() = default;
  /// Shows a change. `row` is meant for row aspects only. Must not change the Form.
  virtual void ControlChanged(const Control& control, Aspect aspect, std::size_t row) = 0;
  /// Paints the control at once, without waiting for the event loop.
  virtual void RepaintNow(const Control& control) = 0;
};

}  // namespace corvane
