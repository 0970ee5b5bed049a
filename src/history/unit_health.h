#pragma once

#include <cstdint>
#include <span>
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

/// What others say of the way to a unit.
struct Neighbours {
  std::int64_t asked = 0;
  std::int64_t answered = 0;  ///< in their last round
};
/// Of the units that are reached as `av_Unit` is.
[[nodiscard]] Neighbours NeighboursOf(const UnitStatus& av_Unit, std::span<const UnitStatus> av_Units);

/// What it is worked out from besides the history; can be handed to a thread.
struct HealthQuestion {
  UnitStatus unit;
  Neighbours neighbours;
  Moment now;
  Phrases phrases;  ///< in which it is told
};

/// All that a history holds of one unit.
[[nodiscard]] HistoryQuery HealthQuery(Moment av_Now, std::int64_t al_Unit);
/// Works it out; `av_History` holds what `HealthQuery` asks for. None of it is asked of anybody.
[[nodiscard]] UnitHealth HealthOf(const HealthQuestion& av_Question, const HistoryContents& av_History);
/// The same in English, of a unit of `av_Network`.
[[nodiscard]] UnitHealth HealthOf(const UnitStatus& av_Unit, const NetworkStatus& av_Network,
                                  const HistoryContents& av_History);

/// One contact: when, what came of it, with how much trouble.
[[nodiscard]] std::string ContactText(const ContactRecord& av_Contact, const Phrases& av_Phrases);

/// "answered", "no answer", ...
[[nodiscard]] std::string_view NameOf(Outcome ae_Outcome);
/// The same in another language.
[[nodiscard]] std::string OutcomeText(Outcome ae_Outcome, const Phrases& av_Phrases);

/// What that is made of.
[[nodiscard]] std::vector<Phrase> OutcomePhrases();
/// What is told of a unit's health is made of.
[[nodiscard]] std::vector<Phrase> HealthPhraseList();

}  // namespace corvane
