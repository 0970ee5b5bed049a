#include "app/transfer_rounds_assembly.h"

namespace corvane {

TransferRoundsAssembly::TransferRoundsAssembly(const Parts& av_Parts)
    : results(av_Parts.state.form, av_Parts.state.link, av_Parts.state.flags, av_Parts.report.trace),
      tries({av_Parts.state.form, av_Parts.state.link, av_Parts.state.flags, av_Parts.transfer.ftp,
             av_Parts.link.pauser}),
      file_transfer({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.flags,
                     av_Parts.state.names, av_Parts.data.file_list, av_Parts.transfer.ftp, av_Parts.transfer.archiver,
                     tries, results, av_Parts.report.messages, av_Parts.report.trace}),
      round({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.flags,
             av_Parts.editors.units, av_Parts.link.port, av_Parts.transfer.browser, file_transfer, results,
             av_Parts.machine.loop, av_Parts.report.bars, av_Parts.report.trace}),
      backup({av_Parts.state.form, av_Parts.state.registry, av_Parts.state.link, av_Parts.state.flags,
              av_Parts.state.app, av_Parts.state.names, av_Parts.transfer.archiver, results, av_Parts.machine.loop,
              av_Parts.report.bars, av_Parts.report.messages, av_Parts.report.trace}),
      page_sender({av_Parts.state.form, av_Parts.state.link, av_Parts.state.flags, av_Parts.transfer.browser,
                   av_Parts.transfer.ftp, results, av_Parts.report.messages, av_Parts.report.trace}) {}

}  // namespace corvane
