#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "data/file_listbox.h"
#include "form/form.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "platform/zip_component.h"
#include "registry/unit_editor.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "transfer/my_ftp.h"
#include "transfer/remote_browser.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Where a unit's file is sent; also the unit's send-to number.
enum SendDestination : std::int16_t { kToFtp = 1, kToWebData = 2 };

/// What became of the file of one unit.
struct TransferResult {
  std::int64_t unit = 0;
  std::string file;      ///< where it was to go: on the server, here, or in the backup
  std::string problem;   ///< empty when it got there, or when there was nothing to move
  bool nothing = false;  ///< the unit has no file yet
};

/// Sends the units' data files, fetches those of other sites, and makes the backup.
///
/// All operations **yield** and run while the operation slot is held. A file that was not sent, fetched or backed up
/// counts as a problem of the operation.
class TransferFlows {
 public:
  /// What the flows work with; all must outlive them.
  struct Parts {
    Form& form;
    Registry& registry;
    LinkState& link;
    RunFlags& flags;
    const AppInfo& app;
    const FileNames& names;
    UnitEditor& units;
    CFileListbox& file_list;
    PortLink& port;
    MyFTP& ftp;
    RemoteBrowser& browser;
    ZipComponent& zip;
    EventLoop& loop;
    ProgressBars& bars;
    Messages& messages;
    Trace& trace;
  };
  explicit TransferFlows(const Parts& av_Parts);

  /// Sends the files of the active units, or of the selected one, that are sent to `ai_Destination` and come from
  /// `al_GetFrom` (-1 any).
  ///
  /// The first failed send sets `UserCancel` and ends the batch.
  void ftpAllUnits(bool ab_All, std::int32_t al_GetFrom, std::int16_t ai_Destination);
  /// Fetches the files of the active units, or of the selected one, that come from `al_Source` (3 FTP, 4 web data);
  /// true when one arrived.
  ///
  /// A file that is not there is passed over; a server that cannot be reached ends the fetch.
  [[nodiscard]] bool FetchAllUnits(bool ab_All, std::int32_t al_Source);
  /// Zips every active unit's file into the folder of its client below the backup folder, where backup is switched on.
  void DoBackup();
  /// Sends by what the current row of the local file list says; see the message it shows.
  void ftpSelectedFile();
  /// Zips a unit's file where that is switched on, and sends it; only the FTP destination sends anything.
  [[nodiscard]] bool ZipAndSend(std::int64_t al_Unit, std::int16_t ai_Destination);
  /// Fetches a unit's file and unzips it where that is switched on; only from FTP.
  [[nodiscard]] bool GetAndUnZip(std::int64_t al_Unit, std::int32_t al_Source);

  /// Ends what runs, within a second.
  void Cancel();
  /// Notes that the backup of a round is left out.
  void LeaveBackupOut();
  /// The files that the present or last operation has tried, in order.
  [[nodiscard]] const std::vector<TransferResult>& Results() const { return results_; }
  /// Forgets them: an operation begins.
  void ClearResults() { results_.clear(); }

 private:
  /// The names of a unit's file here and on the server.
  struct FilePair {
    std::string local;
    std::string remote;
  };

  [[nodiscard]] std::pair<std::int64_t, std::int64_t> UnitRange(bool ab_All) const;
  [[nodiscard]] bool Cancelled() const { return p_.link.UserCancel || p_.flags.closing; }
  [[nodiscard]] bool Calibrated() const;
  [[nodiscard]] FilePair NamesOf(std::int64_t al_Unit) const;
  [[nodiscard]] FilePair ArchivesOf(const FilePair& av_Files) const;
  /// Begins a run over `al_Count` units with a text in the status line.
  void BeginRun(std::string_view as_Status, std::int64_t al_Count);
  void EndRun(std::int64_t al_Selected);
  /// False when the user ended it.
  bool SendMarkedUnits(std::pair<std::int64_t, std::int64_t> av_Range, std::int16_t ai_Destination);
  /// Keeps what became of a file; a problem is counted, logged and marked in the unit list.
  void KeepResult(std::int64_t al_Unit, const std::string& as_File, const std::string& as_Problem);
  /// Why a transfer that just failed did.
  [[nodiscard]] std::string WhyFailed() const;
  /// The archiver's words about a run with that result; empty after a success.
  [[nodiscard]] std::string WhyNotPacked(std::int16_t ai_Result) const;
  /// True when a unit that this computer asks itself has the same raw file: two units may bear one ID.
  [[nodiscard]] bool BelongsToAnother(std::int64_t al_Unit) const;
  /// Leaves what ended a run in the status line.
  void ShowLastProblem();
  /// Writes how many files the run has moved to the log; they begin at `al_First` of the results.
  void LogCount(std::string_view as_What, std::size_t al_First);
  [[nodiscard]] bool BackUpUnit(std::int64_t al_Unit);
  /// Creates a folder where it is missing; false when that fails, which has been shown.
  [[nodiscard]] bool EnsureFolder(std::string_view as_Folder);
  /// Brings one file in; true when it came, whatever `as_Problem` then says of it. A failure here throws
  /// `RunTimeError`.
  [[nodiscard]] bool Fetch(const FilePair& av_Files, const FilePair& av_Fetched, std::string& as_Problem);
  [[nodiscard]] std::string BackupFolder(std::int64_t al_Unit) const;
  std::int16_t Zip(const std::string& as_File, const std::string& as_Archive, const std::string& as_Status);
  std::int16_t Unzip(const std::string& as_Archive, const std::string& as_File, const std::string& as_Folder);
  std::int16_t RunArchiver(std::int16_t (ZipComponent::*av_Run)(), const std::string& as_Status);

  Parts p_;
  std::vector<TransferResult> results_;
  std::set<std::int64_t> marked_;  ///< units whose sign is that of a failed transfer
};

}  // namespace corvane
