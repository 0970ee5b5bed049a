#pragma once

#include "app/data_assembly.h"
#include "app/platform.h"
#include "app/report_assembly.h"
#include "app/shared_state.h"
#include "app/transfer_rounds_assembly.h"
#include "history/alerts.h"
#include "history/file_scans.h"
#include "history/history.h"
#include "page/page_keeper.h"
#include "rounds/network_watch.h"
#include "rounds/round_journal.h"

namespace corvane {

/// What writes down what happens; for the composition root.
struct HistoryAssembly {
  /// What it looks at; all must outlive this object.
  struct Parts {
    const Platform& machine;
    SharedState& state;
    ReportAssembly& report;
    DataAssembly& data;
    TransferRoundsAssembly& transfers;
  };
  explicit HistoryAssembly(const Parts& av_Parts);

  History history;
  FileScans scans;
  NetworkWatch watch;
  RoundJournal journal;
  Alerts alerts;
  PageKeeper page;

 private:
  void WireAlerts();
  void WireStatus(const RunFlags& av_Flags, PageSender& av_Sender);
};

}  // namespace corvane
