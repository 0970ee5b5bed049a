#pragma once

#include <cstdint>
#include <string>

#include "form/form.h"
#include "platform/event_loop.h"
#include "rounds/file_results.h"
#include "state/app_info.h"
#include "state/file_names.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "transfer/archiver.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// The backup of the units' files: one archive a unit.
class Backup {
 public:
  /// What a backup works with; all must outlive this object.
  struct Parts {
    Form& form;
    const Registry& registry;
    const LinkState& link;
    const RunFlags& flags;
    const AppInfo& app;
    const FileNames& names;
    Archiver& archiver;
    FileResults& results;
    EventLoop& loop;
    ProgressBars& bars;
    Messages& messages;
    Trace& trace;
  };
  explicit Backup(const Parts& av_Parts) : p_(av_Parts) {}

  /// Zips every active unit's file into the folder of its client below the backup folder, where backup is switched on.
  ///
  /// Runs while the operation slot is held; a file that was not backed up counts as a problem. **Yields.**
  void DoBackup();
  /// Notes that the backup of a round is left out.
  void LeaveOut();

 private:
  [[nodiscard]] bool BackUpUnit(std::int64_t al_Unit);
  [[nodiscard]] std::string FolderFor(std::int64_t al_Unit) const;

  Parts p_;
};

}  // namespace corvane
