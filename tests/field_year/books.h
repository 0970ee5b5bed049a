// What the units have logged, and what has become of each reading.
#pragma once

#include <array>
#include <cstdint>
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
};

/// One unit's own book, and what is wrong with the unit.
struct UnitBook {
  explicit UnitBook(basestation::Unit& a_unit) : unit(a_unit) {}

  /// Writes down what the unit has logged since; `is_future` when its clock is far ahead.
  void Log(bool is_future);
  [[nodiscard]] std::int64_t NumberOf(const std::string& text) const;
  [[nodiscard]] bool IsHeld(std::int64_t number) const;

  basestation::Unit& unit;
  std::vector<LoggedReading> readings;
  std::unordered_map<std::string, std::int64_t> numbers;
  basestation::Seconds latest = 0;
  double drift = 0;  ///< of its clock, seconds a second
  double owed = 0;   ///< the fraction of a second that has come together
  double loss = 0;   ///< how much more often than usual answers are hit
  bool is_lossy = false;
  std::int64_t poison = -1;  ///< number of the reading, -1 for none
  std::int64_t future = -1;  ///< likewise
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

  UnitBook& book;
  const std::string path;
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
