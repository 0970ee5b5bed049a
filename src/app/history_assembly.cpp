#include "app/history_assembly.h"

namespace corvane {

HistoryAssembly::HistoryAssembly(const Parts& av_Parts)
    : history({av_Parts.machine.history, av_Parts.state.registry, av_Parts.state.names, av_Parts.machine.loop,
               av_Parts.report.trace}),
      scans({history, av_Parts.state.names, av_Parts.data.files, av_Parts.state.link, av_Parts.state.flags,
             av_Parts.machine.loop, av_Parts.report.trace}),
      watch({av_Parts.state.form, av_Parts.state.flags, av_Parts.state.app, history, av_Parts.machine.loop}),
      journal({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.download,
               av_Parts.state.flags, av_Parts.state.names, history, scans, watch, av_Parts.machine.loop}) {
  av_Parts.data.conversion.on_converted = [this](const ConversionResult& result, const std::string& raw_file) {
    journal.NoteConversion(result, raw_file);
  };
  av_Parts.transfers.results.on_kept = [this](const TransferResult& result) { journal.NoteTransfer(result); };
}

}  // namespace corvane
