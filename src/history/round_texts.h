// A round in sentences: what became of each unit in it, as far as the history holds that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "lang/phrases.h"
#include "platform/history_records.h"
#include "platform/history_store.h"

namespace corvane {

/// How a round went for a unit.
enum class RoundSign : std::uint8_t { Problem, NotAsked, Well };
/// "problem", "not asked", "well".
[[nodiscard]] std::string_view NameOf(RoundSign ae_Sign);

/// What became of one unit in a round.
struct RoundLine {
  std::int64_t unit = 0;  ///< key
  std::string name;
  RoundSign sign = RoundSign::Well;
  std::string text;  ///< "Answered, 12 readings; converted, sent, backed up"
};

struct RoundTexts {
  RoundRecord round;
  std::string head;              ///< the round in one sentence
  std::vector<RoundLine> lines;  ///< problems first, then in the order of the list of units
};

/// `as_Text` behind the name of the command that it is of; a download goes without.
[[nodiscard]] std::string WithCommand(std::int32_t al_Command, const std::string& as_Text, const Phrases& av_Phrases);

/// What `TextsOf` reads of a history: the last round whose key is at most `al_Key`.
[[nodiscard]] HistoryQuery RoundQuery(std::int64_t al_Key);

/// A round in sentences; `av_History` holds its contacts, the units and the deliveries.
///
/// Of deliveries the history holds the last one only: what later ones have replaced is left out.
[[nodiscard]] RoundTexts TextsOf(const RoundRecord& av_Round, const HistoryContents& av_History,
                                 const Phrases& av_Phrases = {});

/// The round in one line: how it went, and at most so many units that did not end well, with the reason.
[[nodiscard]] std::string RoundInShort(const RoundTexts& av_Texts, std::size_t al_Units);

/// What the sentences of a round are made of.
[[nodiscard]] std::vector<Phrase> RoundTextPhrases();

}  // namespace corvane
