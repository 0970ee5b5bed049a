#pragma once

#include <cstdint>
#include <string>

#include "data/file_listbox.h"
#include "form/form.h"
#include "rounds/file_results.h"
#include "rounds/server_tries.h"
#include "state/file_names.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "transfer/archiver.h"
#include "transfer/my_ftp.h"
#include "ui/messages.h"

namespace corvane {

/// Where a unit's file is sent; also the unit's send-to number.
enum SendDestination : std::int16_t { kToFtp = 1, kToWebData = 2 };

/// Sends and fetches the data file of one unit, as an archive where that is switched on.
///
/// All operations **yield** and run while the operation slot is held; what became of each file goes to the results.
class FileTransfer {
 public:
  /// What a transfer works with; all must outlive this object.
  struct Parts {
    Form& form;
    const Registry& registry;
    const LinkState& link;
    const RunFlags& flags;
    const FileNames& names;
    CFileListbox& file_list;
    MyFTP& ftp;
    Archiver& archiver;
    ServerTries& tries;
    FileResults& results;
    Messages& messages;
    Trace& trace;
  };
  explicit FileTransfer(const Parts& av_Parts) : p_(av_Parts) {}

  /// One message box at most while it lives, where the round goes on past files that fail.
  [[nodiscard]] Messages::OneBox OneBox() const { return Messages::OneBox(p_.messages, GoesOn(p_.form, p_.flags)); }

  /// A step over files begins.
  void BeginStep() { p_.tries.Begin(); }
  /// Zips a unit's file where that is switched on, and sends it; only the FTP destination sends anything.
  [[nodiscard]] bool ZipAndSend(std::int64_t al_Unit, std::int16_t ai_Destination);
  /// Fetches a unit's file and unzips it where that is switched on; only from FTP.
  [[nodiscard]] bool GetAndUnZip(std::int64_t al_Unit, std::int32_t al_Source);
  /// Sends by what the current row of the local file list says; see the message it shows.
  void ftpSelectedFile();

  /// Connects where that is needed to fetch a unit's file; a failure is that file's result.
  [[nodiscard]] bool ReachServer(std::int64_t al_Unit);
  [[nodiscard]] bool Connected() const { return p_.ftp.IsConnected(); }
  /// False, which is the file's result, where a unit that this computer asks itself has the same raw file: two units
  /// may bear one ID.
  [[nodiscard]] bool MayFetch(std::int64_t al_Unit);
  /// Ends what runs, within a second.
  void Cancel();

 private:
  /// The names of a unit's file here and on the server.
  struct FilePair {
    std::string local;
    std::string remote;
  };

  [[nodiscard]] FilePair NamesOf(std::int64_t al_Unit) const;
  /// False, which is the file's result, where the step has given the server up.
  [[nodiscard]] bool MayTry(TransferResult av_File);
  void KeepFetched(std::int64_t al_Unit, const std::string& as_Problem);
  [[nodiscard]] FilePair ArchivesOf(const FilePair& av_Files) const;
  /// Why a transfer that just failed did.
  [[nodiscard]] std::string WhyFailed() const;
  /// Brings one file in; true when it came, whatever `as_Problem` then says of it. A failure here throws
  /// `RunTimeError`.
  [[nodiscard]] bool Fetch(const FilePair& av_Files, const FilePair& av_Fetched, std::string& as_Problem);

  Parts p_;
};

}  // namespace corvane
