#pragma once

#include <cstdint>

#include "base/dates.h"
#include "base/scoped_value.h"
#include "form/form.h"
#include "state/link_state.h"

namespace corvane {

/// What a start does with a recovery copy of the settings.
enum class Recovery : std::uint8_t {
  Ask,    ///< asks whether to go on with it
  Say,    ///< says that it is there
  Use,    ///< goes on with it
  Ignore  ///< leaves it alone and writes none
};

/// Flags of the running program that several classes read.
struct RunFlags {
  bool automatic_run = false;         ///< an automatic download runs ("/D", the schedule or the console)
  bool by_command = false;            ///< a command of the console has begun that run
  bool closing = false;               ///< the close was asked for: loops unwind
  bool releasing = false;             ///< the close steps run: nothing has to unwind any more
  bool ending_silently = false;       ///< ended by a signal or the session: no box is shown any more
  bool loading = true;                ///< the window is still being created
  Recovery recovery = Recovery::Ask;  ///< set before the settings are loaded
  bool saves_nothing = false;         ///< the close leaves the settings as they are in the file
  bool go_on_once = false;            ///< goes on past what fails until the program ends, whatever the settings say
  DateTime built;                     ///< when the program was built; none where that is not known
  std::int64_t error_counter = 0;     ///< bad lines of the current conversion command
  std::int64_t line_counter = 0;      ///< data lines of the right width of the current conversion command
  std::int64_t problems = 0;          ///< ports, units and files of this operation that ended untried or with a problem
};

/// True when the user cancelled or the program closes: what runs unwinds.
[[nodiscard]] inline bool Cancelled(const LinkState& av_Link, const RunFlags& av_Flags) {
  return av_Link.UserCancel || av_Flags.closing;
}

/// True when a round goes on past units and files that fail.
[[nodiscard]] inline bool GoesOn(const Form& av_Form, const RunFlags& av_Flags) {
  return av_Form.Chk_GoOn.ticked() || av_Flags.go_on_once;
}

/// Makes what runs in its scope an automatic run, where `ab_On`; inside another one it stays that.
///
/// The outermost one counts the problems from zero.
class AutomaticRun {
 public:
  explicit AutomaticRun(RunFlags& av_Flags, bool ab_On = true)
      : automatic_(av_Flags.automatic_run, BeginsRun(av_Flags, ab_On)) {}

 private:
  /// Whether an automatic run runs from now on.
  static bool BeginsRun(RunFlags& av_Flags, bool ab_On) {
    if (ab_On && !av_Flags.automatic_run) av_Flags.problems = 0;
    return ab_On || av_Flags.automatic_run;
  }

  ScopedValue<bool> automatic_;
};

}  // namespace corvane
