#include "data/raw_line.h"

#include <algorithm>

#include "base/number_fields.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::size_t kShortestFramedLine = 6;

unsigned ExclusiveOr(std::string_view as_Text) {
  unsigned sum = 0;
  for (const char c : as_Text) sum ^= static_cast<unsigned char>(c);
  return sum;
}

bool HoldsControlCharacter(std::string_view as_Text) {
  return std::any_of(as_Text.begin(), as_Text.end(), [](unsigned char c) { return c < 32; });
}

bool IsFramed(std::string_view as_Line) {
  return as_Line.size() >= kShortestFramedLine && as_Line.front() == '$' && as_Line.rfind('*') == as_Line.size() - 3;
}

/// Takes a field of a date, cut to a whole number, and the separator behind it off the front of `as_Rest`. False when
/// the separator is missing or the number not within the limits.
bool TakeDateField(std::string_view& as_Rest, char as_Separator, int ai_Lowest, int ai_Highest, int& ai_Value) {
  const char* const end = as_Rest.data() + as_Rest.size();
  const char* at = as_Rest.data();
  const double value = TakeNumber(at, end, as_Separator);
  if (at == end || !(value >= ai_Lowest && value <= ai_Highest)) return false;
  as_Rest = {at + 1, end};
  ai_Value = static_cast<int>(value);
  return true;
}

}  // namespace

void SplitLine(std::string_view as_Line, RawLine& av_Result) {
  av_Result.items_text = as_Line;
  av_Result.checksum_good = false;
  if (IsFramed(as_Line)) {
    av_Result.items_text = as_Line.substr(1, as_Line.size() - 4);
    // A NUL put in by a disturbed line leaves the exclusive-or as it was.
    av_Result.checksum_good =
        as_Line.substr(as_Line.size() - 2) == LineChecksum(av_Result.items_text) && !HoldsControlCharacter(as_Line);
  }
  SplitInto(av_Result.items_text, ',', av_Result.items);
}

std::string LineChecksum(std::string_view as_Text) {
  return HexText(ExclusiveOr(as_Text), 2);
}

std::optional<DateTime> ParseReadingDate(std::string_view as_Text) {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  const bool good = TakeDateField(as_Text, '/', 2001, 9999, year) && TakeDateField(as_Text, '/', 1, 12, month) &&
                    TakeDateField(as_Text, ' ', 1, 31, day) && TakeDateField(as_Text, ':', 0, 23, hour);
  const char* minutes = as_Text.data();
  const double minute = good ? TakeNumber(minutes, minutes + as_Text.size(), ',') : -1;
  if (!(minute >= 0 && minute <= 59)) return std::nullopt;
  return DateTime::FromCivil(year, month, day, hour, static_cast<int>(minute));
}

}  // namespace corvane
