#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "form/control.h"

namespace corvane {

/// A progress bar from 0 to 100 with the caller's own range, mirrored into the title of the minimised window.
class CProgressBar {
 public:
  /// The text shown in the title of the minimised window.
  void SetProcessText(std::string_view as_Process) { process_ = as_Process; }
  /// The window whose title shows the percentage while it is minimised; must outlive this object.
  void SetParent(Window& av_Parent) { parent_ = &av_Parent; }
  /// Binds the control and sets its range to 0 to 100; it must outlive this object.
  void SetBar(ProgressBar& av_Bar);
  /// The caller's maximum, as last initialised.
  [[nodiscard]] std::int64_t Maximum() const;
  /// Asks for thinned-out updates (about 30 steps) at the next `Initialise`.
  void SetDoSkip(bool ab_Skip) { do_skip_ = ab_Skip; }
  /// Shows the bar and starts it at 0 with the caller's range 0 to `al_Max`.
  void Initialise(std::int64_t al_Max);
  void Increment() { SetValue(Value() + 1); }
  /// In skip mode only multiples of the step are shown.
  void SetValue(std::int64_t al_Value);
  [[nodiscard]] std::int64_t Value() const;
  /// Counts down: the bar shows what is left when `al_Value` is done.
  void SetReverseValue(std::int64_t al_Value);
  void Clear();
  void Hide() { bar_->SetVisible(false); }

 private:
  void UpdateTitle() const;

  ProgressBar* bar_ = nullptr;
  Window* parent_ = nullptr;
  std::string process_;
  double scale_ = 1;
  bool do_skip_ = false;
  bool skipping_ = false;
  std::int64_t step_ = 1;
};

/// The two progress indicators of the main window.
struct ProgressBars {
  CProgressBar Unit;      ///< the units of a session or a run
  CProgressBar Download;  ///< the lines of one unit's download or conversion
};

}  // namespace corvane
