#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string_view>

#include "base/dates.h"
#include "base/number_fields.h"
#include "data/raw_line.h"

namespace corvane {

/// Reads the dates of lines as `ParseReadingDate` does, quickly where they have the day of the line before.
class ReadingDateReader {
 public:
  /// The date of a reading; none when it has none. `as_Behind` is then set behind the comma behind it.
  ///
  /// At `as_End`, the end of the line, stands a character that is no digit.
  [[nodiscard]] std::optional<DateTime> Read(const char* as_Line, const char* as_End, const char*& as_Behind) {
    constexpr std::ptrdiff_t kTimeLength = 5;
    const char* time = as_Line + day_length_;
    if (day_length_ == 0 || as_End - time < kTimeLength || !SameDay(as_Line)) {
      return ReadAnother(as_Line, as_End, as_Behind);
    }
    // "8:00" or "08:00"
    const bool short_hour = time[1] == ':';
    const int hour = short_hour ? Pair('0', time[0]) : Pair(time[0], time[1]);
    time += short_hour ? 1 : 2;
    const int minute = Pair(time[1], time[2]);
    if (time[0] != ':' || time[3] != ',' || hour < 0 || hour > 23 || minute < 0 || minute > 59) {
      return ReadAnother(as_Line, as_End, as_Behind);
    }
    as_Behind = time + 4;
    return midnight_ + hour * 3600 + minute * 60;
  }

 private:
  static constexpr std::size_t kWord = 8;  // no day with its blank is shorter

  /// The number of two digits, below 0 when they are none.
  static int Pair(char ai_Tens, char ai_Ones) {
    return IsDigit(ai_Tens) && IsDigit(ai_Ones) ? (ai_Tens - '0') * 10 + ai_Ones - '0' : -1;
  }
  [[nodiscard]] bool SameDay(const char* as_Line) const {
    return std::memcmp(as_Line, day_.data(), kWord) == 0 &&
           std::memcmp(as_Line + day_length_ - kWord, day_.data() + day_length_ - kWord, kWord) == 0;
  }
  std::optional<DateTime> ReadAnother(const char* as_Line, const char* as_End, const char*& as_Behind) {
    const char* const comma = std::find(as_Line, as_End, ',');
    const std::string_view text{as_Line, comma};
    const std::optional<DateTime> date = comma == as_End ? std::nullopt : ParseReadingDate(text);
    if (!date) return date;
    as_Behind = comma + 1;
    const std::size_t length = text.find(' ') + 1;  // 0 without a blank
    const bool plain =
        std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length == 0 ? 0 : length - 1),
                    [](char c) { return IsDigit(c) || c == '/'; });
    day_length_ = plain && length >= kWord && length <= day_.size() ? length : 0;
    std::copy_n(text.data(), day_length_, day_.data());
    midnight_ = date->Midnight();
    return date;
  }

  std::array<char, 16> day_{};  ///< "year/month/day " of the line before
  std::size_t day_length_ = 0;  ///< 0: not known
  DateTime midnight_;
};

}  // namespace corvane
