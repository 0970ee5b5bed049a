#pragma once

#include "app/platform.h"
#include "app/report_assembly.h"
#include "app/shared_state.h"
#include "transfer/archiver.h"
#include "transfer/my_ftp.h"
#include "transfer/remote_browser.h"

namespace corvane {

/// The services of src/transfer; for the composition root.
struct TransferAssembly {
  TransferAssembly(const Platform& av_Platform, SharedState& av_State, ReportAssembly& av_Report);

  MyFTP ftp;
  RemoteBrowser browser;
  Archiver archiver;
};

}  // namespace corvane
