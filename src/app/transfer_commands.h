#pragma once

#include <cstdint>

#include "app/operations.h"
#include "form/form.h"
#include "rounds/backup.h"
#include "rounds/batch_conversion.h"
#include "rounds/download_round.h"
#include "rounds/file_results.h"
#include "rounds/transfer_round.h"

namespace corvane {

/// The commands that send, fetch and back up the units' files.
///
/// All **yield** and are refused, returning false, while an operation runs.
class TransferCommands {
 public:
  /// What the commands start; all must outlive this object.
  struct Parts {
    const Form& form;
    const LinkState& link;
    const RunFlags& flags;
    Operations& operations;
    BatchConversion& conversion;
    DownloadRound& round;
    TransferRound& transfers;
    Backup& backup;
    const FileResults& results;
    Trace& trace;
  };
  explicit TransferCommands(const Parts& av_Parts) : p_(av_Parts) {}

  /// Sends the units' files by FTP, or where `ab_All` is false the selected unit's by FTP and web data.
  bool Send(bool ab_All);
  /// Sends the units' files as web data.
  bool SendWebData();
  /// Fetches the units' files that come from `al_Source` and converts what came raw.
  bool Fetch(bool ab_All, std::int32_t al_Source);
  bool BackUp();

 private:
  Parts p_;
};

}  // namespace corvane
