#pragma once

#include "app/data_assembly.h"
#include "app/link_assembly.h"
#include "app/platform.h"
#include "app/report_assembly.h"
#include "app/shared_state.h"
#include "app/transfer_assembly.h"
#include "registry/editors.h"
#include "rounds/backup.h"
#include "rounds/file_results.h"
#include "rounds/file_transfer.h"
#include "rounds/page_sender.h"
#include "rounds/server_tries.h"
#include "rounds/transfer_round.h"

namespace corvane {

/// What of src/rounds sends, fetches and backs up files; for the composition root.
struct TransferRoundsAssembly {
  /// What they work with; all must outlive this object.
  struct Parts {
    const Platform& machine;
    SharedState& state;
    ReportAssembly& report;
    RegistryEditors& editors;
    DataAssembly& data;
    LinkAssembly& link;
    TransferAssembly& transfer;
  };
  explicit TransferRoundsAssembly(const Parts& av_Parts);

  FileResults results;
  ServerTries tries;
  FileTransfer file_transfer;
  TransferRound round;
  Backup backup;
  PageSender page_sender;
};

}  // namespace corvane
