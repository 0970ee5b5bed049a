// What the units have logged, and what has become of each reading.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "unit.h"

namespace corvane::test {

/// Why a reading does not stand in its raw file. There is no other reason.
enum class Heading {
  StillInMemory,     ///< logged since the unit was last asked
  Overwritten,       ///< gone from the unit's memory before any whole contact
  NotLater,          ///< dated not later than a reading logged before it
  BehindOverrun,     ///< dropped behind an overrun of the line
  BehindPoison,      ///< a line that always arrives damaged and what is behind it, until the person acts
  BehindFutureDate,  ///< a reading in the future and what is behind it, until the person acts
  InBadFile,         ///< kept aside
  TakenByPerson,     ///< its raw file was deleted when the unit did not have it any more
};
inline constexpr std::array<const char*, 8> kHeadings = {
    "still in memory",   "overwritten before a whole contact", "dated not later than the last",
    "behind an overrun", "poison line or behind it",           "date in the future or behind it",
    "in the bad file",   "raw file deleted by the person"};

struct LoggedReading {
  basestation::Seconds date = 0;
  std::string text;
  bool is_not_later = false;
  bool is_behind_overrun = false;
  bool is_poison = false;
  bool is_future = false;
};

/// One unit's own book.
class UnitBook {
 public:
  explicit UnitBook(basestation::Unit& unit) : unit_(unit) {}

  /// Writes down what the unit has logged since; `future` when its clock is far ahead.
  void Log(bool future);
  [[nodiscard]] basestation::Unit& unit() const { return unit_; }
  [[nodiscard]] std::int64_t NumberOf(const std::string& text) const;
  [[nodiscard]] bool IsHeld(std::int64_t number) const;

  std::vector<LoggedReading> readings;

 private:
  basestation::Unit& unit_;
  std::unordered_map<std::string, std::int64_t> numbers_;
  basestation::Seconds latest_ = 0;
};

/// The raw file of one unit of the program, held against the unit's book.
class RawBook {
 public:
  RawBook(UnitBook& book, std::string path) : book_(book), path_(std::move(path)) {}

  /// The unit was asked when it had logged the readings up to `end`, and all of its answer went out undamaged: what it
  /// holds of these has to stand in the file from now on.
  void TakeWholeContact(std::int64_t end, bool in_calm_days);
  /// The power was cut: until the next whole contact the file may end in what that leaves.
  void TakeCut() { cut_ = true; }
  /// The person has deleted the file.
  void TakeDeletion();
  /// Reads the file as it is. The first broken promise, empty when all are kept.
  [[nodiscard]] std::string Judge(bool goes_on);
  /// Adds up the readings: logged, in the file, and those that are not, by heading.
  void Count(bool goes_on, std::array<std::int64_t, kHeadings.size()>& counts, std::int64_t& logged,
             std::int64_t& stored) const;
  [[nodiscard]] const std::string& path() const { return path_; }

  /// Whether there was a whole contact in the calm days.
  [[nodiscard]] bool is_complete() const { return complete_; }

 private:
  struct Standing {
    bool stored = false;
    bool promised = false;
    bool taken = false;
  };
  [[nodiscard]] const LoggedReading& At(std::int64_t number) const {
    return book_.readings[static_cast<std::size_t>(number)];
  }
  [[nodiscard]] std::string ReadNewLines();
  [[nodiscard]] std::string TakeLine(std::string_view line);
  [[nodiscard]] std::string Unexplained(std::int64_t number, bool goes_on, const std::string& bad_lines,
                                        Heading& why) const;

  UnitBook& book_;
  std::string path_;
  std::string seen_;  ///< the part of the file that was read, whole lines
  std::vector<Standing> standing_;
  std::int64_t last_ = -1;  ///< number of the last reading in the file
  bool has_header_ = false;
  bool cut_ = false;
  bool complete_ = false;
};

}  // namespace corvane::test
