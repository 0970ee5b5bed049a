#pragma once

#include <string>
#include <vector>

#include "form/form.h"
#include "lang/phrases.h"
#include "setup/setup_plan.h"
#include "state/app_info.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "transfer/my_ftp.h"
#include "transfer/remote_browser.h"
#include "ui/messages.h"

namespace corvane {

/// Tries the server of a plan.
class SetupServer {
 public:
  /// What it works with; all must outlive this object.
  struct Parts {
    const LinkState& link;
    const RunFlags& flags;
    const AppInfo& app;
    RemoteBrowser& browser;
    MyFTP& ftp;
    Messages& messages;
  };
  explicit SetupServer(const Parts& av_Parts) : p_(av_Parts) {}

  /// Whether the server lets us in and lists the folder; leaves it again. Called while the operation slot is held.
  /// **Yields.**
  [[nodiscard]] SetupAnswer Try(const SetupPlan& av_Plan, const Phrases& av_Phrases = {});

 private:
  void Enter(const SetupPlan& av_Plan);
  [[nodiscard]] SetupAnswer Visit(const SetupPlan& av_Plan, const Phrases& av_Say);

  Parts p_;
};

/// What the answers are made of.
[[nodiscard]] std::vector<Phrase> SetupServerPhrases();

}  // namespace corvane
