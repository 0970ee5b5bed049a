#include "app/transfer_assembly.h"

namespace corvane {

TransferAssembly::TransferAssembly(const Platform& av_Platform, SharedState& av_State, ReportAssembly& av_Report)
    : ftp({av_State.form.Frm_Main, av_Platform.loop, av_Platform.internet, av_State.app, av_Report.messages,
           av_Report.trace}),
      browser({av_State.form, av_State.registry, av_State.flags, av_State.link, av_State.app, ftp, av_Platform.dialogs,
               av_Report.messages, av_Report.trace}),
      archiver(av_Platform.zip, av_Report.bars, av_Report.messages, av_Report.trace) {
  ftp.connection_changed = [this, &av_State] { av_State.states.SetConnected(ftp.IsConnected()); };
}

}  // namespace corvane
