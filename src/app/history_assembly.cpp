#include "app/history_assembly.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

HistoryAssembly::HistoryAssembly(const Parts& av_Parts)
    : history({av_Parts.machine.history, av_Parts.state.registry, av_Parts.state.names, av_Parts.machine.loop,
               av_Parts.report.trace}),
      scans({history, av_Parts.state.names, av_Parts.data.files, av_Parts.state.link, av_Parts.state.flags,
             av_Parts.machine.loop, av_Parts.report.trace}),
      watch({av_Parts.state.form, av_Parts.state.flags, av_Parts.state.app, history, av_Parts.machine.loop}),
      journal({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.download,
               av_Parts.state.flags, av_Parts.state.names, history, scans, watch, av_Parts.machine.loop}),
      alerts({av_Parts.machine.runner, av_Parts.state.form, av_Parts.machine.loop, av_Parts.report.trace}),
      page({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.names, av_Parts.state.app, history,
            av_Parts.machine.loop, av_Parts.report.trace}) {
  av_Parts.data.conversion.on_converted = [this](const ConversionResult& result, const std::string& raw_file) {
    journal.NoteConversion(result, raw_file);
  };
  av_Parts.transfers.results.on_kept = [this](const TransferResult& result) { journal.NoteTransfer(result); };
  WireAlerts();
  WireStatus(av_Parts.state.flags, av_Parts.transfers.page_sender);
}

void HistoryAssembly::WireAlerts() {
  alerts.read_records = [this] {
    HistoryQuery query;
    query.contacts_since = {std::numeric_limits<std::int64_t>::max(), 0};
    HistoryContents stored;
    // A history that cannot be read has told nobody: every cause is told once more.
    return history.Read(query, stored).ok() ? stored.alerts : std::vector<AlertRecord>();
  };
  alerts.write_records = [this](const std::vector<AlertRecord>& records) {
    HistoryContents changes;
    changes.alerts = records;
    history.Write(changes);
  };
  alerts.work_out_status = [this] { return history.StatusNow(); };
  alerts.history_problem = [this] { return history.Problem(); };
}

void HistoryAssembly::WireStatus(const RunFlags& av_Flags, PageSender& av_Sender) {
  history.wants_status = [this] { return alerts.SwitchedOn() || page.SwitchedOn(); };
  history.after_round = [this, &av_Flags, &av_Sender](const NetworkStatus& status) {
    if (av_Flags.closing) return;
    alerts.AfterRound(status);
    const auto written = page.Write(status);
    if (written && written->behind_files) av_Sender.Send(written->file);
  };
  history.in_the_dark = [this, &av_Flags] {
    if (!av_Flags.closing) alerts.AfterRoundInTheDark();
  };
}

}  // namespace corvane
