#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "app/run_flags.h"
#include "data/file_listbox.h"
#include "data/file_names.h"
#include "form/form.h"
#include "link/link_state.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "platform/zip_component.h"
#include "registry/records.h"
#include "registry/unit_editor.h"
#include "trace/trace.h"
#include "transfer/my_ftp.h"
#include "transfer/remote_browser.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Where a unit's file is sent; also the unit's send-to number.
enum SendDestination : std::int16_t { kToFtp = 1, kToWebData = 2 };

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
  void TellNotSent(const std::string& as_Local);
  [[nodiscard]] bool FetchUnit(std::int64_t al_Unit, std::int32_t al_Source);
  [[nodiscard]] bool BackUpUnit(std::int64_t al_Unit);
  /// Creates a folder where it is missing; false when that fails, which has been shown.
  [[nodiscard]] bool EnsureFolder(std::string_view as_Folder);
  [[nodiscard]] std::string BackupFolder(std::int64_t al_Unit) const;
  void Zip(const std::string& as_File, const std::string& as_Archive, const std::string& as_Status);
  void Unzip(const std::string& as_Archive, const std::string& as_File, const std::string& as_Folder);
  void RunArchiver(std::int16_t (ZipComponent::*av_Run)(), const std::string& as_Status);

  Parts p_;
};

}  // namespace corvane
