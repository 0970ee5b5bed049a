#pragma once

#include <cstdint>

namespace corvane {

/// Flags of the running program that several classes read.
struct RunFlags {
  bool automatic_run = false;    ///< an automatic download runs ("/D", the schedule or the console)
  bool closing = false;          ///< the close was asked for: loops unwind
  bool releasing = false;        ///< the close steps run: nothing has to unwind any more
  bool ending_silently = false;  ///< ended by a signal or the session: no box is shown any more
  bool loading = true;           ///< the window is still being created
  bool converting = false;
  std::int64_t error_counter = 0;  ///< bad lines of the current conversion command
  std::int64_t line_counter = 0;   ///< data lines of the right width of the current conversion command
  std::int64_t problems = 0;       ///< ports, units and files of this operation that ended untried or with a problem
};

}  // namespace corvane
