// One unit in the words of a table's columns, the same in every view. What there is nothing to say of is empty.
#pragma once

#include <string>
#include <vector>

#include "base/dates.h"
#include "history/network_status.h"
#include "lang/phrases.h"

namespace corvane {

/// "12 Mar 14:05 (2 h)": the reading's date, with the year where that is another than now, and its age.
[[nodiscard]] std::string LastReadingText(const UnitStatus& av_Unit, const Phrases& av_Phrases = {});
/// A date that a unit gave, such as that of its last reading; where its clock is known to be off, that it is by that.
[[nodiscard]] std::string ByItsClock(const UnitStatus& av_Unit, const std::string& as_Date,
                                     const Phrases& av_Phrases = {});
/// "answered, 4 readings, 2 hours ago".
[[nodiscard]] std::string LastContactText(const UnitStatus& av_Unit, Moment av_Now, const Phrases& av_Phrases = {});
/// "12.41 V, 45 days left", "12.41 V, -0.02 V a day", "12.41 V".
[[nodiscard]] std::string BatteryText(const UnitStatus& av_Unit, const Phrases& av_Phrases = {});
/// Percent without the sign, rounded down: 100 is said of nothing that lacks a reading.
[[nodiscard]] std::string CompleteText(const UnitStatus& av_Unit);
/// "to 15 Nov" where that percentage ends with the last answer, a day ago or more.
[[nodiscard]] std::string KnownToText(const UnitStatus& av_Unit, Moment av_Now, const Phrases& av_Phrases = {});
/// "3: 12 readings, 4 lost".
[[nodiscard]] std::string GapsText(const UnitStatus& av_Unit, const Phrases& av_Phrases = {});
/// "2 hours ago"; up to which reading where that is a day older, and what went wrong where the file did not get there.
[[nodiscard]] std::string DeliveredText(const UnitStatus& av_Unit, Moment av_Now, const Phrases& av_Phrases = {});

/// What these texts are made of.
[[nodiscard]] std::vector<Phrase> UnitTextPhrases();

}  // namespace corvane
