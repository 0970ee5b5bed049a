#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "exchange.h"
#include "faults.h"
#include "protocol.h"
#include "unit.h"

namespace corvane::basestation {

/// The base station with everything behind it: takes command lines, gives answers, keeps the units.
///
/// Time passes only when it is told so, and chance follows from the seeds alone.
class Station {
 public:
  struct Settings {
    bool echo = true;
    std::int64_t advance = 0;  ///< readings that a unit adds after each complete download
    std::uint64_t seed = 1;
  };

  Station(Settings settings, std::vector<Unit> units, FaultPlan faults);

  /// The answer to a command line, given without its carriage return.
  [[nodiscard]] Exchange Answer(std::string_view line);
  /// Takes note that an answer went out to its end.
  void Finish(const Exchange& exchange);
  /// Lets time pass until every unit has `count` more readings.
  void PassReadings(std::int64_t count);
  /// The unit with this identifier, null when there is none.
  [[nodiscard]] Unit* Find(int id);
  /// Chooses further faults for an answer, beside the plan's; `readings` are those that a download brings, else none.
  std::function<std::vector<Fault>(const Request& request, const Selection& readings)> more_faults;
  /// Lets time pass in every unit.
  void PassTime(Seconds seconds);

  /// What went wrong on purpose in the last answer, for the log; empty when nothing.
  [[nodiscard]] const std::string& last_faults() const { return last_faults_; }

  /// Takes over what `WriteState` wrote; empty input changes nothing. Throws `RunTimeError` when it is something else.
  void Restore(std::istream& state);
  /// Writes the units' clocks and memories as lines of text.
  void WriteState(std::ostream& out) const;

 private:
  [[nodiscard]] std::string ReplyOf(const Request& request, Unit& unit);
  [[nodiscard]] std::vector<Fault> FaultsOf(const Request& request, const Selection& readings = {});
  [[nodiscard]] std::string StateHeader() const;

  Settings settings_;
  std::map<int, Unit> units_;
  FaultPlan faults_;
  std::map<std::pair<int, Command>, std::int64_t> attempts_;
  std::uint64_t exchanges_ = 0;
  std::string last_faults_;
};

}  // namespace corvane::basestation
