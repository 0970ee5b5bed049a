// Words for what a history holds, the same in every view.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "lang/phrases.h"
#include "platform/history_records.h"

namespace corvane {

/// A number of things; "%1" is the number.
struct CountPhrase {
  Phrase one;
  Phrase many;
};

/// Counts that several texts hold.
struct CommonPhrases {
  CountPhrase readings{{1044, "%1 reading"}, {1045, "%1 readings"}};
  CountPhrase units{{1046, "%1 unit"}, {1047, "%1 units"}};
  CountPhrase gaps{{1048, "%1 gap"}, {1049, "%1 gaps"}};
  CountPhrase tries{{1390, "%1 try"}, {1391, "%1 tries"}};
  CountPhrase rejected{{1393, "%1 line rejected"}, {1394, "%1 lines rejected"}};
};
inline constexpr CommonPhrases kCommonPhrases;

/// What a duration depends on: nothing, or "for", "in" or "ago", which ask for another form of it in some languages.
enum class SpanForm : std::uint8_t { Alone, Dependent };

/// "1 reading", "12 readings".
[[nodiscard]] std::string CountText(std::int64_t al_Count, std::string_view as_One, std::string_view as_Many);
[[nodiscard]] std::string CountText(std::int64_t al_Count, const CountPhrase& av_Words, const Phrases& av_Phrases);
/// A duration in one or two words: "40 seconds", "25 minutes", "5 hours", "12 days"; the sign is left out.
[[nodiscard]] std::string SpanText(std::int64_t al_Seconds, const Phrases& av_Phrases = {},
                                   SpanForm ae_Form = SpanForm::Alone);
/// The same for a narrow column: "5 s", "40 min", "30 h", "12 d".
[[nodiscard]] std::string BriefSpanText(std::int64_t al_Seconds, const Phrases& av_Phrases = {});
/// "12 Mar 2010 14:05".
[[nodiscard]] std::string WhenText(DateTime av_When, const Phrases& av_Phrases = {});
/// The same of a moment, as the local clock showed it then.
[[nodiscard]] std::string WhenText(Moment av_When, const Phrases& av_Phrases = {});

/// The units that a round has left out. Its record counts them among the problems, and none of them has failed.
struct LeftOut {
  std::int64_t units = 0;
  bool no_port = false;  ///< which is a problem of its own

  /// Takes what became of one unit in the round.
  void Take(const ContactRecord& av_Contact);
};
/// How one round went, in one sentence without a full stop.
[[nodiscard]] std::string RoundText(const RoundRecord& av_Round, const LeftOut& av_LeftOut = {},
                                    const Phrases& av_Phrases = {});

/// What these texts are made of.
[[nodiscard]] std::vector<Phrase> StatusTextPhrases();

}  // namespace corvane
