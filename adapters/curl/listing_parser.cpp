#include "curl/listing_parser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "base/text.h"

namespace corvane {

namespace {

constexpr std::array<std::string_view, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                      "jul", "aug", "sep", "oct", "nov", "dec"};

std::optional<std::int64_t> Number(std::string_view text) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || text.empty() || number < 0) return std::nullopt;
  return number;
}

/// A number of at most `digits` digits between the limits.
std::optional<int> SmallNumber(std::string_view text, std::size_t digits, int lowest, int highest) {
  const auto number = text.size() <= digits ? Number(text) : std::nullopt;
  if (!number || *number < lowest || *number > highest) return std::nullopt;
  return static_cast<int>(*number);
}

std::optional<int> Month(std::string_view text) {
  const auto found = std::find(kMonths.begin(), kMonths.end(), ToLower(text));
  if (found == kMonths.end()) return std::nullopt;
  return static_cast<int>(found - kMonths.begin()) + 1;
}

/// A name that can be shown and asked for again: bare, without control characters.
bool IsBareName(std::string_view name) {
  return !name.empty() && std::none_of(name.begin(), name.end(), [](char c) {
    return c == '/' || static_cast<unsigned char>(c) < 32 || c == 127;
  });
}

ListingLine Named(std::string_view name, ListingEntry& entry) {
  if (name == "." || name == "..") return ListingLine::Nothing;
  if (!IsBareName(name)) return ListingLine::Unknown;
  entry.record.name = name;
  return ListingLine::Entry;
}

/// Notes one fact; false when it says that the line names no entry of the folder.
bool TakeFact(std::string_view name, std::string_view value, ListingEntry& entry) {
  if (EqualsNoCase(name, "type")) {
    entry.record.is_folder = EqualsNoCase(value, "dir");
    entry.is_link = StartsWithNoCase(value, "OS.unix=s");
    return !EqualsNoCase(value, "cdir") && !EqualsNoCase(value, "pdir");
  }
  if (EqualsNoCase(name, "size")) entry.record.size = Number(value).value_or(0);
  if (EqualsNoCase(name, "modify")) entry.record.last_written = LocalTimeOf(value);
  if (EqualsNoCase(name, "create")) entry.record.created = LocalTimeOf(value);
  return true;
}

ListingLine ParseFacts(std::string_view line, ListingEntry& entry) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos || (blank > 0 && line[blank - 1] != ';')) return ListingLine::Unknown;
  for (const std::string_view fact : Split(line.substr(0, blank), ';')) {
    const std::size_t equals = std::min(fact.find('='), fact.size());
    const std::string_view value = equals < fact.size() ? fact.substr(equals + 1) : "";
    if (!TakeFact(fact.substr(0, equals), value, entry)) return ListingLine::Nothing;
  }
  if (entry.record.is_folder) entry.record.size = 0;
  return Named(line.substr(blank + 1), entry);
}

struct Word {
  std::string_view text;
  std::size_t end = 0;  ///< its place behind the last character in the line
};

/// The first words of a line; what comes later belongs to the name.
std::vector<Word> FirstWords(std::string_view line) {
  constexpr std::size_t kMost = 16;
  std::vector<Word> words;
  for (std::size_t place = 0; words.size() < kMost;) {
    const std::size_t start = line.find_first_not_of(" \t", place);
    if (start == std::string_view::npos) break;
    place = std::min(line.find_first_of(" \t", start), line.size());
    words.push_back({line.substr(start, place - start), place});
  }
  return words;
}

struct TimeOfDay {
  int hour = 0;
  int minute = 0;
};

/// "14:03", "2:03PM" or "02:03pm".
std::optional<TimeOfDay> ClockTime(std::string_view text) {
  const bool morning = text.size() > 2 && EqualsNoCase(text.substr(text.size() - 2), "am");
  const bool evening = text.size() > 2 && EqualsNoCase(text.substr(text.size() - 2), "pm");
  if (morning || evening) text.remove_suffix(2);
  const std::size_t colon = std::min(text.find(':'), text.size());
  const auto hour = SmallNumber(text.substr(0, colon), 2, 0, morning || evening ? 12 : 23);
  const auto minute = SmallNumber(text.substr(std::min(colon + 1, text.size()), 2), 2, 0, 59);
  if (!hour || !minute) return std::nullopt;
  if (!morning && !evening) return TimeOfDay{*hour, *minute};
  return TimeOfDay{*hour % 12 + (evening ? 12 : 0), *minute};
}

/// The time of "Mar 5 14:03" or "Mar 5 2023"; a time of day stands for the last such day that is not to come.
std::optional<DateTime> UnixTime(std::string_view month_text, std::string_view day_text, std::string_view last,
                                 DateTime now) {
  const auto month = Month(month_text);
  const auto day = SmallNumber(day_text, 2, 1, 31);
  if (!month || !day) return std::nullopt;
  if (const auto year = SmallNumber(last, 4, 1900, 9999)) return DateTime::FromCivil(*year, *month, *day);
  const auto time = last.find(':') != std::string_view::npos ? ClockTime(last) : std::nullopt;
  if (!time) return std::nullopt;
  const std::int64_t year = now.ToCivil().year;
  const DateTime when = DateTime::FromCivil(year, *month, *day, time->hour, time->minute);
  // The server's clock and zone may be ahead of ours.
  if (when <= now + kSecondsPerDay) return when;
  return DateTime::FromCivil(year - 1, *month, *day, time->hour, time->minute);
}

bool LooksLikeMode(const std::vector<Word>& words) {
  constexpr std::string_view kModes = "rwxsStT-";
  const std::string_view mode = words.front().text;
  if (std::string_view("-dl").find(mode.front()) == std::string_view::npos) return false;
  // One server writes its rights between brackets as a word of their own.
  if (mode.size() == 1) return words.size() > 1 && words[1].text.front() == '[';
  if (mode.size() < 10) return false;
  const std::string_view rights = mode.substr(1, 9);
  return rights.find_first_not_of(kModes) == std::string_view::npos;
}

/// A line as of `ls -l`: the date is found first, since the columns before it differ; the size stands before it and one
/// blank and the name behind it.
ListingLine ParseUnix(std::string_view line, const std::vector<Word>& words, DateTime now, ListingEntry& entry) {
  for (std::size_t i = 2; i + 2 < words.size(); ++i) {
    const auto size = Number(words[i - 1].text);
    const auto when = UnixTime(words[i].text, words[i + 1].text, words[i + 2].text, now);
    if (!size || !when || words[i + 2].end + 1 >= line.size()) continue;
    const char kind = words.front().text.front();
    entry.is_link = kind == 'l';
    entry.record.is_folder = kind == 'd';
    entry.record.size = kind == '-' ? *size : 0;
    entry.record.last_written = *when;
    std::string_view name = line.substr(words[i + 2].end + 1);
    if (entry.is_link) name = name.substr(0, name.find(" -> "));
    return Named(name, entry);
  }
  return ListingLine::Unknown;
}

/// "03-05-24" or "03-05-2024", month first.
std::optional<CivilTime> DosDate(std::string_view text) {
  const std::vector<std::string_view> parts = Split(text, '-');
  if (parts.size() != 3) return std::nullopt;
  const auto month = SmallNumber(parts[0], 2, 1, 12);
  const auto day = SmallNumber(parts[1], 2, 1, 31);
  const auto year = SmallNumber(parts[2], 4, 0, 9999);
  if (!month || !day || !year || (parts[2].size() != 2 && parts[2].size() != 4)) return std::nullopt;
  const int century = parts[2].size() == 4 ? 0 : (*year < 70 ? 2000 : 1900);
  return CivilTime{.year = century + *year, .month = *month, .day = *day};
}

/// A line as of DIR: date, time, "<DIR>" or the size, the name.
ListingLine ParseDos(std::string_view line, const std::vector<Word>& words, ListingEntry& entry) {
  if (words.size() < 4) return ListingLine::Unknown;
  const auto date = DosDate(words[0].text);
  const auto time = ClockTime(words[1].text);
  const auto size = Number(words[2].text);
  entry.record.is_folder = EqualsNoCase(words[2].text, "<DIR>");
  if (!date || !time || (!size && !entry.record.is_folder)) return ListingLine::Unknown;
  entry.record.size = size.value_or(0);
  entry.record.last_written = DateTime::FromCivil(date->year, date->month, date->day, time->hour, time->minute);
  std::string_view name = line.substr(words[2].end + 1);
  if (entry.record.is_folder) name.remove_prefix(name.find_first_not_of(' '));
  return Named(name, entry);
}

ListingLine ParseList(std::string_view line, DateTime now, ListingEntry& entry) {
  const std::vector<Word> words = FirstWords(line);
  if (words.empty() || (words.size() == 2 && EqualsNoCase(words[0].text, "total"))) return ListingLine::Nothing;
  if (LooksLikeMode(words)) return ParseUnix(line, words, now, entry);
  return ParseDos(line, words, entry);
}

}  // namespace

DateTime LocalTimeOf(std::string_view text) {
  text = text.substr(0, text.find('.'));
  if (text.size() != 14) return {};
  constexpr std::array<std::size_t, 6> kPlaces = {0, 4, 6, 8, 10, 12};
  constexpr std::array<int, 6> kHighest = {9999, 12, 31, 23, 59, 60};
  std::array<int, 6> parts{};
  for (std::size_t i = 0; i < kPlaces.size(); ++i) {
    const auto part = SmallNumber(text.substr(kPlaces[i], i == 0 ? 4 : 2), 4, 0, kHighest[i]);
    if (!part) return {};
    parts[i] = *part;
  }
  std::tm utc{};
  utc.tm_year = parts[0] - 1900, utc.tm_mon = parts[1] - 1, utc.tm_mday = parts[2];
  utc.tm_hour = parts[3], utc.tm_min = parts[4], utc.tm_sec = parts[5];
  const std::time_t moment = timegm(&utc);
  std::tm local{};
  if (localtime_r(&moment, &local) == nullptr) return {};
  return DateTime::FromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                             std::min(local.tm_sec, 59));
}

ListingLine ParseListingLine(ListingForm form, std::string_view line, DateTime now, ListingEntry& entry) {
  entry = {};
  if (line.empty()) return ListingLine::Nothing;
  return form == ListingForm::Facts ? ParseFacts(line, entry) : ParseList(line, now, entry);
}

}  // namespace corvane
