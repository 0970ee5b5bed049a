#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "history/network_status.h"
#include "lang/phrases.h"

namespace corvane {

/// One thing that is known of a unit, in sentences.
struct HealthLine {
  std::string about;  ///< "Battery", "Clock", ...
  std::string text;
};

/// What somebody wants to know before driving out to a unit.
struct UnitHealth {
  std::vector<HealthLine> lines;
  std::vector<ContactRecord> contacts;  ///< the last ten, the newest first
  std::vector<HealthLine> take_along;   ///< what, and why
};

/// Works it out; `av_History` holds all that there is of that unit. None of it is asked of anybody.
[[nodiscard]] UnitHealth HealthOf(const UnitStatus& av_Unit, const NetworkStatus& av_Network,
                                  const HistoryContents& av_History);

/// "answered", "no answer", ...
[[nodiscard]] std::string_view NameOf(Outcome ae_Outcome);
/// The same in another language.
[[nodiscard]] std::string OutcomeText(Outcome ae_Outcome, const Phrases& av_Phrases);

/// What that is made of.
[[nodiscard]] std::vector<Phrase> OutcomePhrases();

}  // namespace corvane
