// Dates with the names of months of the language file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "lang/phrases.h"

namespace corvane {

/// The date as `FormatDate` writes it, its month named in the language.
[[nodiscard]] std::string DateText(DateTime av_When, std::string_view as_Pattern, const Phrases& av_Phrases);
/// What was typed, with names of months that `ParseDate` reads.
[[nodiscard]] std::string WithEnglishMonths(std::string_view as_Typed, const Phrases& av_Phrases);
/// The phrases of this file.
[[nodiscard]] std::vector<Phrase> DatePhrases();

}  // namespace corvane
