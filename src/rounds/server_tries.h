#pragma once

#include <cstddef>
#include <functional>

#include "form/form.h"
#include "link/pause.h"
#include "state/run_flags.h"
#include "transfer/my_ftp.h"

namespace corvane {

/// How often a step over files, such as sending, tries a server that does not answer, while rounds go on past failures.
///
/// A file that met an error of the line is tried again after 5 s and then after 30 s: both once a step, for a server
/// that is away is away for all files. A refused login ends the step at once.
class ServerTries {
 public:
  /// What the tries work with; all must outlive this object.
  struct Parts {
    const Form& form;
    const LinkState& link;
    const RunFlags& flags;
    MyFTP& ftp;
    Pauser& pauser;
  };
  explicit ServerTries(const Parts& av_Parts) : p_(av_Parts) {}

  /// A step begins.
  void Begin();
  /// Runs one file's transfer, again where the step has tries left; what the last one returned. **Yields.**
  [[nodiscard]] bool Run(const std::function<bool()>& av_Transfer);
  /// True when no other file of the step needs to be tried.
  [[nodiscard]] bool Ended() const { return ended_; }

 private:
  /// True when the transfer that just failed may be tried again, now that it was waited for. **Yields.**
  [[nodiscard]] bool MayTryAgain();

  Parts p_;
  std::size_t waited_ = 0;
  int failed_in_row_ = 0;  ///< files that met an error of the line
  bool ended_ = false;
};

}  // namespace corvane
