#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"

namespace corvane {

inline constexpr std::string_view kShownDatePattern = "d mmm yyyy HH:MM";

/// A date pattern read once and applied many times.
///
/// Takes d dd ddd dddd, m mm mmm mmmm, yy yyyy, h hh, n nn, s ss and AM/PM in either letter case; m right after an hour
/// (or, before seconds, right before them) means minutes; English names; everything else is copied as it stands.
class DatePattern {
 public:
  DatePattern() = default;
  explicit DatePattern(std::string_view pattern);
  /// Appends the text of `when` to `out`.
  void AppendTo(std::string& out, DateTime when) const;
  [[nodiscard]] std::string Text(DateTime when) const;
  /// True when what this writes tells the minute that it was written of.
  [[nodiscard]] bool TellsMinute() const;
  /// Takes a date that this wrote off the front of `text`; none when it does not begin with one.
  ///
  /// A year of two digits is one from 2000 on.
  [[nodiscard]] std::optional<DateTime> TakeFrom(std::string_view& text) const;

 private:
  friend class DateWriter;
  /// Those from Hour on belong to the time of day.
  enum class Field : std::uint8_t { Literal, Day, Weekday, Month, Year, Hour, Minute, Second, AmPm };
  struct Piece {
    Field field;
    int width;            ///< letters in the pattern
    std::string literal;  ///< for Literal
  };
  void ResolveMinutes();
  [[nodiscard]] bool TakePiece(std::string_view& text, const Piece& piece, CivilTime& civil, bool& afternoon) const;
  /// The literal at the end of the pieces, one more piece where there is none.
  std::string& Literal();
  /// This pattern with everything but the time of day written out.
  [[nodiscard]] DatePattern OfDay(const CivilTime& day) const;
  void AppendTo(std::string& out, const CivilTime& civil) const;
  void AppendPiece(std::string& out, const Piece& piece, const CivilTime& civil) const;

  std::vector<Piece> pieces_;
  bool twelve_hours_ = false;
};

/// Writes one date after another, fast while they stay on one day.
class DateWriter {
 public:
  explicit DateWriter(std::string_view pattern) : pattern_(pattern) {}
  /// Appends the text of `when` to `out`.
  void AppendTo(std::string& out, DateTime when);

 private:
  DatePattern pattern_;
  DateTime midnight_;   ///< that began the day of the last date
  DatePattern of_day_;  ///< the pattern for that day; none yet: no pieces
  CivilTime civil_;
};

/// `when` written with `pattern` (see `DatePattern`).
[[nodiscard]] std::string FormatDate(DateTime when, std::string_view pattern);
/// `when` in the general date format, `yyyy-mm-dd HH:MM:SS`.
[[nodiscard]] std::string GeneralDate(DateTime when);
/// `seconds` (its size without sign) of a duration as HH:MM or HH:MM:SS; hours count beyond 24.
[[nodiscard]] std::string DurationText(std::int64_t seconds, bool with_seconds);
/// The shown or general form of a date ("12 Mar 2010 14:05", "2010-03-12 14:05:09", "2010/3/12 14:05"; the time may be
/// missing, seconds too); none when the text is no date.
[[nodiscard]] std::optional<DateTime> ParseDate(std::string_view text);
/// A time of day "h:mm" or "h:mm:ss" (hour 0 to 23) in seconds; none when the text is not one.
[[nodiscard]] std::optional<std::int64_t> ParseTimeOfDay(std::string_view text);

}  // namespace corvane
