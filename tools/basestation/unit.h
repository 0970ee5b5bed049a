#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "calendar.h"
#include "soil.h"

namespace corvane::basestation {

/// Readings stored at one log period without a change of the clock.
struct Stretch {
  Seconds first = 0;
  Seconds period = 0;
  std::int64_t count = 0;
  std::int64_t first_number = 0;  ///< number of the first reading, counted from 0 over the unit's whole life
};

/// Which reading of a unit's life it is, counted from 0, and when it was taken.
struct StoredReading {
  std::int64_t number = 0;
  Seconds date = 0;
};

/// The readings that one download brings, taken when it begins: later changes of the unit do not reach it.
class Selection {
 public:
  Selection() = default;
  explicit Selection(std::vector<Stretch> stretches);

  /// The stretches that it was made of.
  [[nodiscard]] const std::vector<Stretch>& stretches() const { return stretches_; }
  /// Number of readings not yet taken.
  [[nodiscard]] std::int64_t size() const { return size_; }
  /// Takes the next reading; `size()` must not be 0.
  StoredReading Take();

 private:
  std::vector<Stretch> stretches_;
  std::size_t stretch_ = 0;
  std::int64_t taken_ = 0;
  std::int64_t size_ = 0;
};

/// One field unit: where it is, what its clock says, how often it logs and what its memory holds.
class Unit {
 public:
  /// A unit with `readings` stored since `start`, whose clock stands at the last of them; `period` in seconds.
  Unit(int id, int relay, Soil soil, Seconds start, Seconds period, std::int64_t readings);

  [[nodiscard]] int id() const { return id_; }
  [[nodiscard]] int relay() const { return relay_; }
  [[nodiscard]] const Soil& soil() const { return soil_; }
  /// Lets the readings from now on be of another soil or number of sensors.
  void SetSoil(Soil soil) { soil_ = soil; }
  [[nodiscard]] Seconds clock() const { return clock_; }
  [[nodiscard]] Seconds period() const { return period_; }
  /// Number of readings taken so far.
  [[nodiscard]] std::int64_t readings() const { return next_number_; }
  /// The date of the reading stored last, 0 when there is none.
  [[nodiscard]] Seconds last_reading() const;

  /// Keeps the newest `count` readings at most: the oldest go as new ones come.
  void SetCapacity(std::int64_t count);
  /// Lets each download begin so many seconds before the date that it was asked for.
  void SetOverlap(Seconds seconds) { overlap_ = seconds; }
  /// The readings that are still held, oldest first.
  [[nodiscard]] const std::vector<Stretch>& memory() const { return memory_; }
  /// Takes a reading out of the memory; nothing happens when it is not there.
  void Forget(std::int64_t number);
  /// Empties the memory.
  void Clear() { memory_.clear(); }

  /// Sets the clock; the next reading falls on the next full log period of the new clock.
  void SetClock(Seconds clock);
  /// Sets the log period; the next reading falls on the next full log period.
  void SetPeriod(Seconds period);
  /// Lets time pass, storing the readings that fall due.
  void PassTime(Seconds seconds);
  /// Lets time pass until `count` more readings are stored.
  void PassReadings(std::int64_t count);
  /// The readings dated later than `after`, and those of the overlap.
  [[nodiscard]] Selection Later(Seconds after) const;

  /// Clock, log period and memory as one line of text for the state file.
  [[nodiscard]] std::string State() const;
  /// Takes over a line of `State`; false (and unchanged) when it is not one.
  [[nodiscard]] bool Restore(std::string_view state);

 private:
  void StartGrid();
  void DropOldest();
  void Store(std::int64_t count);

  int id_;
  int relay_;
  Soil soil_;
  Seconds clock_;
  Seconds period_;
  Seconds due_;  ///< when the next reading is stored
  std::int64_t next_number_ = 0;
  std::int64_t capacity_ = INT64_MAX;
  Seconds overlap_ = 0;
  std::vector<Stretch> memory_;
};

}  // namespace corvane::basestation
