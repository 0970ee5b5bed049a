#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "form/form.h"
#include "lang/phrases.h"
#include "link/exchange.h"
#include "link/pause.h"
#include "link/port_link.h"
#include "platform/event_loop.h"
#include "rounds/port_finder.h"
#include "rounds/unit_attempts.h"
#include "setup/setup_plan.h"
#include "setup/setup_server.h"
#include "state/app_info.h"
#include "state/link_state.h"
#include "state/port_devices.h"
#include "state/records.h"

namespace corvane {

/// What a unit's clock shows.
struct SetupClock : SetupAnswer {
  std::int64_t seconds_ahead = 0;  ///< of this computer's clock; without meaning where the unit has told no time
  bool is_off = false;             ///< by more than a minute: it should be set
  bool was_set = false;            ///< just now
};

/// Tries what a plan names, before it is put in.
///
/// Each try enters what it needs, and what was there before stands there again when it ends. All run while the
/// operation slot is held and **yield**; a cancel ends them.
class SetupTries {
 public:
  /// What the tries work with; all must outlive this object.
  struct Parts {
    Form& form;
    const Registry& registry;
    PortDevices& devices;
    LinkState& link;
    PortLink& port;
    Exchange& exchange;
    PortFinder& finder;
    UnitAttempts& attempts;
    Pauser& pauser;
    SetupServer& server;
    EventLoop& loop;
  };
  explicit SetupTries(const Parts& av_Parts) : p_(av_Parts) {}

  /// The language of the answers from now on; English without it.
  void SetPhrases(const Phrases& av_Phrases) { say_ = av_Phrases; }

  /// Whether a base station answers on the plan's port, and what it says.
  [[nodiscard]] SetupAnswer TryPort(const SetupPlan& av_Plan);
  /// Asks the unit of a row (from 1) for its clock.
  [[nodiscard]] SetupClock AskClock(const SetupPlan& av_Plan, std::size_t al_Row);
  /// Sets the unit's clock to this computer's and asks for it again. The front end has asked the person.
  [[nodiscard]] SetupClock SetClock(const SetupPlan& av_Plan, std::size_t al_Row);
  [[nodiscard]] SetupAnswer TryServer(const SetupPlan& av_Plan) { return p_.server.Try(av_Plan, say_); }
  /// Whether a file can be written into the backup folder; it is taken away again.
  [[nodiscard]] SetupAnswer TryBackup(const SetupPlan& av_Plan, const AppInfo& av_App);

 private:
  /// Sends one command to the unit of a row, again where it has no time for it; the answer, or why there is none.
  [[nodiscard]] SetupAnswer Ask(const SetupPlan& av_Plan, std::size_t al_Row, std::int16_t ai_Command);
  [[nodiscard]] SetupClock ClockOf(const SetupAnswer& av_Answer) const;
  /// What came in place of an answer to the test of the port.
  [[nodiscard]] std::string WhySilent();
  /// Why an exchange brought nothing; empty when it did.
  [[nodiscard]] std::string WhyFailed() const;

  Parts p_;
  Phrases say_;
};

/// What the answers are made of.
[[nodiscard]] std::vector<Phrase> SetupTryPhrases();

}  // namespace corvane
