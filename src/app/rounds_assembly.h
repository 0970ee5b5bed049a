#pragma once

#include "app/data_assembly.h"
#include "app/history_assembly.h"
#include "app/link_assembly.h"
#include "app/platform.h"
#include "app/report_assembly.h"
#include "app/shared_state.h"
#include "app/transfer_rounds_assembly.h"
#include "registry/editors.h"
#include "rounds/batch_conversion.h"
#include "rounds/command_questions.h"
#include "rounds/download_round.h"
#include "rounds/gap_exchange.h"
#include "rounds/gap_repair.h"
#include "rounds/port_finder.h"
#include "rounds/raw_keeper.h"
#include "rounds/selected_conversion.h"
#include "rounds/sessions.h"
#include "rounds/unit_attempts.h"
#include "rounds/unit_gaps.h"
#include "rounds/unit_session.h"

namespace corvane {

/// What of src/rounds asks units and converts; for the composition root.
struct RoundsAssembly {
  /// What the rounds string together; all must outlive this object.
  struct Parts {
    const Platform& machine;
    SharedState& state;
    ReportAssembly& report;
    RegistryEditors& editors;
    DataAssembly& data;
    LinkAssembly& link;
    TransferRoundsAssembly& transfers;
    HistoryAssembly& history;
  };
  explicit RoundsAssembly(const Parts& av_Parts);

  BatchConversion units_conversion;
  SelectedConversion selected_conversion;
  RawKeeper keeper;
  UnitSession session;
  UnitAttempts attempts;
  CommandQuestions questions;
  Sessions sessions;
  DownloadRound round;
  GapExchange gap_exchange;
  UnitGaps gaps;
  GapRepair repair;
  PortFinder finder;
};

}  // namespace corvane
