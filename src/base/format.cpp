#include "base/format.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"January",   "February", "March",    "April",
                                                      "May",       "June",     "July",     "August",
                                                      "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> kDays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                   "Thursday", "Friday", "Saturday"};

constexpr std::string_view kAmPm = "AM/PM";

constexpr char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

void AppendPair(std::string& out, std::uint32_t number) {
  const std::array<char, 2> digits = {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
  out.append(digits.data(), digits.size());
}

/// Appends a field of 0 to 99 with at least `width` digits.
void AppendSmall(std::string& out, int number, int width) {
  if (width > 1 || number > 9) {
    AppendPair(out, static_cast<std::uint32_t>(number));
  } else {
    out += static_cast<char>('0' + number);
  }
}

/// Apart from the years of readings, which need no guarded stack.
[[gnu::noinline]] void AppendOddYear(std::string& out, std::int64_t year, int width) {
  out += ZeroPadded(width > 2 ? year : std::abs(year % 100), 2);
}

void AppendYear(std::string& out, std::int64_t year, int width) {
  if (year < 0 || year > 9999) {
    AppendOddYear(out, year, width);
    return;
  }
  const auto number = static_cast<std::uint32_t>(year);
  if (width > 2) AppendPair(out, number / 100);
  AppendPair(out, number % 100);
}

/// The longest run of the letter at `start` that a field takes.
int RunLength(std::string_view pattern, std::size_t start, int longest) {
  int length = 1;
  while (length < longest && start + length < pattern.size() &&
         Lower(pattern[start + length]) == Lower(pattern[start])) {
    ++length;
  }
  return length;
}

std::optional<int> MonthOfName(std::string_view name) {
  if (name.size() < 3) return std::nullopt;
  for (std::size_t month = 0; month < kMonths.size(); ++month) {
    const bool whole = EqualsNoCase(name, kMonths[month]);
    if (whole || EqualsNoCase(name, kMonths[month].substr(0, 3))) return static_cast<int>(month) + 1;
  }
  return std::nullopt;
}

struct DateParts {
  std::int64_t year;
  int month;
  int day;
};

/// A number without a sign, blanks around it allowed.
std::optional<int> SmallNumber(std::string_view text, int lowest, int highest) {
  if (text.find_first_of("+-") != std::string_view::npos) return std::nullopt;
  const auto number = ParseInteger(text, lowest, highest);
  if (!number) return std::nullopt;
  return static_cast<int>(*number);
}

std::optional<DateParts> MakeDate(std::string_view year, std::optional<int> month, std::string_view day) {
  const auto year_number = SmallNumber(year, 100, 9999);
  const auto day_number = SmallNumber(day, 1, 31);
  if (!year_number || !month || !day_number) return std::nullopt;
  return DateParts{*year_number, *month, *day_number};
}

/// "d mmm yyyy" as words, or "yyyy-mm-dd" and "yyyy/m/d" as the first word; `words` loses what was used.
std::optional<DateParts> TakeDate(std::vector<std::string_view>& words) {
  if (words.size() >= 3 && MonthOfName(words[1])) {
    const auto date = MakeDate(words[2], MonthOfName(words[1]), words[0]);
    words.erase(words.begin(), words.begin() + 3);
    return date;
  }
  if (words.empty()) return std::nullopt;
  const char separator = words[0].find('/') != std::string_view::npos ? '/' : '-';
  const auto fields = Split(words[0], separator);
  if (fields.size() != 3) return std::nullopt;
  words.erase(words.begin());
  return MakeDate(fields[0], SmallNumber(fields[1], 1, 12), fields[2]);
}

/// Takes a number of that many digits at most, and at least, off the front of `text`; below 0 when there is none.
int TakeDigits(std::string_view& text, std::size_t fewest, std::size_t most) {
  std::size_t length = 0;
  int number = 0;
  for (; length < most && length < text.size() && text[length] >= '0' && text[length] <= '9'; ++length) {
    number = number * 10 + (text[length] - '0');
  }
  if (length < fewest) return -1;
  text.remove_prefix(length);
  return number;
}

/// Takes one of these names, or its first three letters where `is_short`, off the front of `text`; its place from 0,
/// below 0 when there is none.
template <std::size_t kCount>
int TakeName(std::string_view& text, const std::array<std::string_view, kCount>& names, bool is_short) {
  for (std::size_t place = 0; place < kCount; ++place) {
    const std::string_view name = is_short ? names[place].substr(0, 3) : names[place];
    if (!StartsWithNoCase(text, name)) continue;
    text.remove_prefix(name.size());
    return static_cast<int>(place);
  }
  return -1;
}

}  // namespace

DatePattern::DatePattern(std::string_view pattern) {
  struct Letter {
    char letter;
    Field field;
    int longest;
  };
  static constexpr std::array<Letter, 6> kLetters = {{{'d', Field::Day, 4},
                                                      {'m', Field::Month, 4},
                                                      {'y', Field::Year, 4},
                                                      {'h', Field::Hour, 2},
                                                      {'n', Field::Minute, 2},
                                                      {'s', Field::Second, 2}}};
  for (std::size_t at = 0; at < pattern.size();) {
    const auto letter = std::find_if(kLetters.begin(), kLetters.end(),
                                     [c = Lower(pattern[at])](const Letter& known) { return known.letter == c; });
    if (StartsWithNoCase(pattern.substr(at), kAmPm)) {
      pieces_.push_back({Field::AmPm, 0, {}});
      twelve_hours_ = true;
      at += kAmPm.size();
    } else if (letter != kLetters.end()) {
      const int width = RunLength(pattern, at, letter->longest);
      pieces_.push_back({letter->field, width, {}});
      at += static_cast<std::size_t>(width);
    } else {
      Literal() += pattern[at++];
    }
  }
  ResolveMinutes();
}

std::string& DatePattern::Literal() {
  if (pieces_.empty() || pieces_.back().field != Field::Literal) pieces_.push_back({Field::Literal, 0, {}});
  return pieces_.back().literal;
}

/// m or mm means minutes when the field before it is an hour or the field after it is a second.
void DatePattern::ResolveMinutes() {
  std::vector<Piece*> fields;
  for (Piece& piece : pieces_) {
    if (piece.field == Field::Day && piece.width > 2) piece.field = Field::Weekday;
    if (piece.field != Field::Literal) fields.push_back(&piece);
  }
  for (std::size_t at = 0; at < fields.size(); ++at) {
    if (fields[at]->field != Field::Month || fields[at]->width > 2) continue;
    const bool after_hour = at > 0 && fields[at - 1]->field == Field::Hour;
    const bool before_second = at + 1 < fields.size() && fields[at + 1]->field == Field::Second;
    if (after_hour || before_second) fields[at]->field = Field::Minute;
  }
}

void DatePattern::AppendTo(std::string& out, DateTime when) const {
  AppendTo(out, when.ToCivil());
}

void DatePattern::AppendTo(std::string& out, const CivilTime& civil) const {
  for (const Piece& piece : pieces_) AppendPiece(out, piece, civil);
}

void DatePattern::AppendPiece(std::string& out, const Piece& piece, const CivilTime& civil) const {
  switch (piece.field) {
    case Field::Literal:
      out += piece.literal;
      break;
    case Field::Day:
      AppendSmall(out, civil.day, piece.width);
      break;
    case Field::Weekday: {
      const std::string_view name = kDays[static_cast<std::size_t>(civil.weekday)];
      out += piece.width == 3 ? name.substr(0, 3) : name;
      break;
    }
    case Field::Month:
      if (piece.width > 2) {
        const std::string_view name = kMonths[static_cast<std::size_t>(civil.month - 1)];
        out += piece.width == 3 ? name.substr(0, 3) : name;
      } else {
        AppendSmall(out, civil.month, piece.width);
      }
      break;
    case Field::Year:
      AppendYear(out, civil.year, piece.width);
      break;
    case Field::Hour:
      AppendSmall(out, twelve_hours_ ? (civil.hour + 11) % 12 + 1 : civil.hour, piece.width);
      break;
    case Field::Minute:
      AppendSmall(out, civil.minute, piece.width);
      break;
    case Field::Second:
      AppendSmall(out, civil.second, piece.width);
      break;
    case Field::AmPm:
      out += civil.hour < 12 ? "AM" : "PM";
      break;
  }
}

bool DatePattern::TellsMinute() const {
  const auto has = [this](Field wanted) {
    return std::any_of(pieces_.begin(), pieces_.end(), [wanted](const Piece& piece) { return piece.field == wanted; });
  };
  const auto digits = [](const Piece& piece) {
    return piece.field != Field::Literal && piece.field != Field::Weekday && piece.field != Field::AmPm &&
           (piece.field != Field::Month || piece.width <= 2);
  };
  // Two numbers side by side are told apart by their width alone.
  const bool blurred = std::adjacent_find(pieces_.begin(), pieces_.end(), [&](const Piece& a, const Piece& b) {
                         return digits(a) && a.width == 1 && digits(b);
                       }) != pieces_.end();
  return !blurred && has(Field::Year) && has(Field::Month) && has(Field::Day) && has(Field::Hour) && has(Field::Minute);
}

bool DatePattern::TakePiece(std::string_view& text, const Piece& piece, CivilTime& civil, bool& afternoon) const {
  const auto small = [&](int& part) {
    part = TakeDigits(text, piece.width > 1 ? 2 : 1, 2);
    return part >= 0;
  };
  switch (piece.field) {
    case Field::Literal:
      if (!text.starts_with(piece.literal)) return false;
      text.remove_prefix(piece.literal.size());
      return true;
    case Field::Weekday:
      return TakeName(text, kDays, piece.width == 3) >= 0;
    case Field::Month:
      if (piece.width <= 2) return small(civil.month);
      civil.month = TakeName(text, kMonths, piece.width == 3) + 1;
      return civil.month > 0;
    case Field::Year:
      civil.year = piece.width > 2 ? TakeDigits(text, 4, 4) : TakeDigits(text, 2, 2);
      if (piece.width <= 2 && civil.year >= 0) civil.year += 2000;
      return civil.year >= 0;
    case Field::Day:
      return small(civil.day);
    case Field::Hour:
      return small(civil.hour);
    case Field::Minute:
      return small(civil.minute);
    case Field::Second:
      return small(civil.second);
    case Field::AmPm:
      afternoon = StartsWithNoCase(text, "PM");
      if (!afternoon && !StartsWithNoCase(text, "AM")) return false;
      text.remove_prefix(2);
      return true;
  }
  return false;
}

std::optional<DateTime> DatePattern::TakeFrom(std::string_view& text) const {
  CivilTime civil;
  bool afternoon = false;
  for (const Piece& piece : pieces_) {
    if (!TakePiece(text, piece, civil, afternoon)) return std::nullopt;
  }
  if (twelve_hours_) civil.hour = civil.hour % 12 + (afternoon ? 12 : 0);
  const bool possible = civil.month >= 1 && civil.month <= 12 && civil.day >= 1 && civil.day <= 31 && civil.hour < 24 &&
                        civil.minute < 60 && civil.second < 60;
  if (!possible) return std::nullopt;
  return DateTime::FromCivil(civil.year, civil.month, civil.day, civil.hour, civil.minute, civil.second);
}

DatePattern DatePattern::OfDay(const CivilTime& day) const {
  DatePattern result;
  result.twelve_hours_ = twelve_hours_;
  for (const Piece& piece : pieces_) {
    if (piece.field >= Field::Hour) {
      result.pieces_.push_back(piece);
    } else {
      AppendPiece(result.Literal(), piece, day);
    }
  }
  return result;
}

void DateWriter::AppendTo(std::string& out, DateTime when) {
  if (when < midnight_ || when - midnight_ >= kSecondsPerDay || of_day_.pieces_.empty()) {
    midnight_ = when.Midnight();
    civil_ = when.ToCivil();
    of_day_ = pattern_.OfDay(civil_);
  }
  const auto time = static_cast<std::uint32_t>(when - midnight_);
  civil_.hour = static_cast<int>(time / 3600);
  civil_.minute = static_cast<int>(time / 60 % 60);
  civil_.second = static_cast<int>(time % 60);
  of_day_.AppendTo(out, civil_);
}

std::string DatePattern::Text(DateTime when) const {
  std::string text;
  AppendTo(text, when);
  return text;
}

namespace {

// Not built at the first call: they have to be there still when the end of the process writes its last log lines.
const DatePattern kGeneral("yyyy-mm-dd HH:NN:SS");
const DatePattern kShown(kShownDatePattern);

}  // namespace

std::string FormatDate(DateTime when, std::string_view pattern) {
  return pattern == kShownDatePattern ? kShown.Text(when) : DatePattern(pattern).Text(when);
}

std::string GeneralDate(DateTime when) {
  return kGeneral.Text(when);
}

std::string DurationText(std::int64_t seconds, bool with_seconds) {
  const std::int64_t size = std::abs(seconds);
  std::string text = ZeroPadded(size / 3600, 2) + ":" + ZeroPadded(size / 60 % 60, 2);
  if (with_seconds) text += ":" + ZeroPadded(size % 60, 2);
  return text;
}

std::optional<std::int64_t> ParseTimeOfDay(std::string_view text) {
  const auto fields = Split(Trim(text), ':');
  if (fields.size() < 2 || fields.size() > 3) return std::nullopt;
  const auto hour = SmallNumber(fields[0], 0, 23);
  const auto minute = SmallNumber(fields[1], 0, 59);
  const auto second = fields.size() == 3 ? SmallNumber(fields[2], 0, 59) : 0;
  if (!hour || !minute || !second) return std::nullopt;
  return *hour * 3600 + *minute * 60 + *second;
}

std::optional<DateTime> ParseDate(std::string_view text) {
  std::vector<std::string_view> words = Split(text, ' ');
  std::erase_if(words, [](std::string_view word) { return word.empty(); });
  const auto date = TakeDate(words);
  if (!date || words.size() > 1) return std::nullopt;
  const auto time = words.empty() ? std::optional<std::int64_t>(0) : ParseTimeOfDay(words[0]);
  if (!time) return std::nullopt;
  return DateTime::FromCivil(date->year, date->month, date->day) + *time;
}

}  // namespace corvane
