// What the units have logged, and what has become of each reading.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "unit.h"

namespace corvane::test {

/// Where a reading is. There is no other place.
enum class Heading {
  InRawFile,         ///< once, in order
  StillInMemory,     ///< logged since the unit was last asked
  Overwritten,       ///< gone from the unit's memory before any whole contact
  NotLater,          ///< dated not later than a reading logged before it
  BehindOverrun,     ///< dropped behind an overrun of the line
  BehindPoison,      ///< a line that always arrives damaged and what is behind it, until the person acts
  BehindFutureDate,  ///< a reading in the future and what is behind it, until the person acts
  InBadFile,         ///< kept aside
  TakenByPerson,     ///< its raw file was deleted when the unit did not have it any more
  Lost               ///< a broken promise
};
inline constexpr std::array<const char*, 9> kHeadings = {
    "once, in order, in the raw file", "still in memory",   "overwritten before a whole contact",
    "dated not later than the last",   "behind an overrun", "poison line or behind it",
    "date in the future or behind it", "in the bad file",   "raw file deleted by the person"};

struct LoggedReading {
  basestation::Seconds date = 0;
  std::string text;  ///< empty when it was overwritten at once
  bool is_not_later = false;
  bool is_behind_overrun = false;
  bool is_poison = false;
  bool is_future = false;
  basestation::Seconds clock_set = 0;  ///< seconds that the clock was set forward since the reading before
  bool period_set = false;             ///< the log period was set since the reading before
};

/// One unit's own book, and what is wrong with the unit.
struct UnitBook {
  explicit UnitBook(basestation::Unit& a_unit) : unit(a_unit) {}

  /// Writes down what the unit has logged since; `is_future` when its clock is far ahead.
  void Log(bool is_future);
  [[nodiscard]] std::int64_t NumberOf(const std::string& text) const;
  [[nodiscard]] bool IsHeld(std::int64_t number) const;
  /// Lets time pass, and notices by how much the clock was set before.
  void PassTime(basestation::Seconds seconds);

  basestation::Unit& unit;
  std::vector<LoggedReading> readings;
  std::unordered_map<std::string, std::int64_t> numbers;
  basestation::Seconds latest = 0;
  basestation::Seconds clock = 0;      ///< as it was left by the time that passed
  basestation::Seconds clock_set = 0;  ///< seconds that it was set forward since the last reading
  bool is_clock_known = true;          ///< it was not set since a whole answer told it
  basestation::Seconds period = 0;     ///< at the last reading
  double drift = 0;                    ///< of its clock, seconds a second
  double owed = 0;                     ///< the fraction of a second that has come together
  double loss = 0;                     ///< how much more often than usual answers are hit
  bool is_lossy = false;
  std::int64_t poison = -1;  ///< number of the reading, -1 for none
  std::int64_t future = -1;  ///< likewise
};

/// Between two readings that follow each other in a raw file.
struct BookGap {
  basestation::Seconds from = 0;
  basestation::Seconds to = 0;
  std::int64_t missing = 0;    ///< readings that the unit has logged between
  std::int64_t not_later = 0;  ///< besides, dated not later than one before, or as late as the one behind
  bool clock_set = false;      ///< forward
  bool period_set = false;
  bool held = false;  ///< those missing are all in the unit's memory
};

/// The raw file of one unit of the program, held against the unit's book.
class RawBook {
 public:
  RawBook(UnitBook& a_book, std::string a_path) : book(a_book), path(std::move(a_path)) {}

  /// The unit was asked when it had logged the readings up to `end`, and all of its answer went out undamaged: what it
  /// holds of these has to stand in the file from now on.
  void TakeWholeContact(std::int64_t end);
  /// The power was cut: until the next whole contact the file may end in what that leaves.
  void TakeCut() { cut_ = true; }
  /// The person has deleted the file.
  void TakeDeletion();
  /// Reads the file as it is and counts the readings. The first broken promise, empty when all are kept.
  [[nodiscard]] std::string Judge(bool goes_on);
  /// What the unit has logged between each two readings of the file and is not there, in order; the last two left out.
  [[nodiscard]] std::vector<BookGap> Gaps() const;

  UnitBook& book;
  const std::string path;
  /// The date of the last reading in the file, none before there is one.
  [[nodiscard]] std::optional<basestation::Seconds> LastDate() const;
  /// What a round has heard of the unit: nothing at all, a whole answer, or anything else.
  enum class Sign { Mute, Unsure, Whole };
  struct Heard {
    Sign sign = Sign::Unsure;
    std::int64_t when = 0;  ///< milliseconds
  };
  /// The last rounds that have asked it, so many of them since `since`, have all brought `sign`.
  [[nodiscard]] bool Shows(Sign sign, std::ptrdiff_t rounds, std::int64_t since) const {
    const auto shows = [&](const Heard& each) { return each.sign == sign && each.when >= since; };
    return std::ssize(heard) >= rounds && std::all_of(heard.end() - rounds, heard.end(), shows);
  }

  std::vector<Heard> heard;  ///< by the rounds that have asked it
  bool is_complete = false;  ///< there was a whole contact in the calm days
  std::array<std::int64_t, kHeadings.size()> counts{};

 private:
  struct Standing {
    bool stored = false;
    bool promised = false;
    bool taken = false;
  };
  [[nodiscard]] std::string ReadNewLines();
  [[nodiscard]] std::string TakeLine(std::string_view line);
  [[nodiscard]] Heading Find(std::int64_t number, bool goes_on, const std::string& bad_lines) const;

  std::string seen_;  ///< the part of the file that was read, whole lines
  std::vector<Standing> standing_;
  std::int64_t last_ = -1;  ///< number of the last reading in the file
  bool has_header_ = false;
  bool cut_ = false;
};

}  // namespace corvane::test
