#include "lang/date_words.h"

#include <cstddef>

#include "base/format.h"
#include "base/text.h"

namespace corvane {
namespace {

struct DateSentences {
  Phrase short_months{1416, "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec"};
  Phrase months{1417, "January February March April May June July August September October November December"};
};
constexpr DateSentences kDateSays;

/// The twelve names of a phrase; the English ones where a language file does not hold twelve.
std::vector<std::string> NamesOf(const Phrase& av_Phrase, const Phrases& av_Phrases) {
  constexpr std::size_t kMonths = 12;
  for (const std::string& text : {av_Phrases.Text(av_Phrase), std::string(av_Phrase.english)}) {
    const std::vector<std::string_view> words = Split(text, ' ');
    if (words.size() == kMonths) return {words.begin(), words.end()};
  }
  return std::vector<std::string>(kMonths);
}

}  // namespace

std::string DateText(DateTime av_When, std::string_view as_Pattern, const Phrases& av_Phrases) {
  std::string text = FormatDate(av_When, as_Pattern);
  const bool whole = as_Pattern.find("mmmm") != std::string_view::npos;
  if (!whole && as_Pattern.find("mmm") == std::string_view::npos) return text;
  const Phrase& names = whole ? kDateSays.months : kDateSays.short_months;
  const auto month = static_cast<std::size_t>(av_When.ToCivil().month - 1);
  const std::string english = NamesOf(names, Phrases())[month];
  const std::size_t at = text.find(english);
  return at == std::string::npos ? text : text.replace(at, english.size(), NamesOf(names, av_Phrases)[month]);
}

std::string WithEnglishMonths(std::string_view as_Typed, const Phrases& av_Phrases) {
  std::string text;
  for (const std::string_view word : Split(as_Typed, ' ')) {
    std::string english(word);
    for (const Phrase* names : {&kDateSays.short_months, &kDateSays.months}) {
      const std::vector<std::string> theirs = NamesOf(*names, av_Phrases);
      for (std::size_t month = 0; month < theirs.size(); ++month) {
        if (EqualsNoCase(word, theirs[month])) english = NamesOf(*names, Phrases())[month];
      }
    }
    text += (text.empty() ? "" : " ") + english;
  }
  return text;
}

std::vector<Phrase> DatePhrases() {
  return PhrasesIn(kDateSays);
}

}  // namespace corvane
