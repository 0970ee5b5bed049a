#include "data/raw_line.h"

#include <algorithm>

#include "base/numbers.h"
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

/// One field of a date: its value when that lies within the limits.
std::optional<int> DateField(std::string_view as_Text, int ai_Lowest, int ai_Highest) {
  const double value = LeadingNumber(as_Text);
  if (!(value >= ai_Lowest && value <= ai_Highest)) return std::nullopt;
  return static_cast<int>(value);
}

/// Takes the text before the first `as_Separator` off the front of `av_Rest`.
std::optional<std::string_view> TakeUntil(std::string_view& av_Rest, char as_Separator) {
  const std::size_t end = av_Rest.find(as_Separator);
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view taken = av_Rest.substr(0, end);
  av_Rest.remove_prefix(end + 1);
  return taken;
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
  std::string_view rest = as_Text;
  const auto year_text = TakeUntil(rest, '/');
  const auto month_text = year_text ? TakeUntil(rest, '/') : std::nullopt;
  const auto day_text = month_text ? TakeUntil(rest, ' ') : std::nullopt;
  const auto hour_text = day_text ? TakeUntil(rest, ':') : std::nullopt;
  if (!hour_text) return std::nullopt;
  const auto year = DateField(*year_text, 2001, 9999);
  const auto month = DateField(*month_text, 1, 12);
  const auto day = DateField(*day_text, 1, 31);
  const auto hour = DateField(*hour_text, 0, 23);
  const auto minute = DateField(rest, 0, 59);
  if (!year || !month || !day || !hour || !minute) return std::nullopt;
  return DateTime::FromCivil(*year, *month, *day, *hour, *minute);
}

}  // namespace corvane
