#include "unit.h"

#include <algorithm>
#include <utility>

#include "text.h"

namespace corvane::basestation {

Selection::Selection(std::vector<Stretch> stretches) : stretches_(std::move(stretches)) {
  for (const Stretch& stretch : stretches_) size_ += stretch.count;
}

StoredReading Selection::Take() {
  if (taken_ == stretches_[stretch_].count) {
    ++stretch_;
    taken_ = 0;
  }
  const Stretch& stretch = stretches_[stretch_];
  const StoredReading reading{stretch.first_number + taken_, stretch.first + taken_ * stretch.period};
  ++taken_;
  --size_;
  return reading;
}

Unit::Unit(int id, int relay, Soil soil, Seconds start, Seconds period, std::int64_t readings)
    : id_(id), relay_(relay), soil_(soil), clock_(start - period), period_(period), due_(start) {
  PassReadings(readings);
}

Seconds Unit::last_reading() const {
  return memory_.empty() ? 0 : memory_.back().first + (memory_.back().count - 1) * memory_.back().period;
}

void Unit::SetClock(Seconds clock) {
  clock_ = clock;
  StartGrid();
}

void Unit::SetPeriod(Seconds period) {
  period_ = period;
  StartGrid();
}

void Unit::StartGrid() {
  due_ = (clock_ / period_ + 1) * period_;
}

void Unit::PassTime(Seconds seconds) {
  clock_ += seconds;
  if (clock_ >= due_) {
    Store((clock_ - due_) / period_ + 1);
  }
}

void Unit::PassReadings(std::int64_t count) {
  if (count > 0) {
    PassTime(due_ + (count - 1) * period_ - clock_);
  }
}

void Unit::Store(std::int64_t count) {
  const bool goes_on = !memory_.empty() && memory_.back().period == period_ && last_reading() + period_ == due_ &&
                       memory_.back().first_number + memory_.back().count == next_number_;
  if (goes_on) {
    memory_.back().count += count;
  } else {
    memory_.push_back({due_, period_, count, next_number_});
  }
  next_number_ += count;
  due_ += count * period_;
  DropOldest();
}

void Unit::SetCapacity(std::int64_t count) {
  capacity_ = count;
  DropOldest();
}

void Unit::DropOldest() {
  std::int64_t over = -capacity_;
  for (const Stretch& stretch : memory_) over += stretch.count;
  while (over > 0) {
    Stretch& oldest = memory_.front();
    const std::int64_t dropped = std::min(over, oldest.count);
    oldest.first += dropped * oldest.period;
    oldest.first_number += dropped;
    oldest.count -= dropped;
    over -= dropped;
    if (oldest.count == 0) memory_.erase(memory_.begin());
  }
}

void Unit::Forget(std::int64_t number) {
  std::vector<Stretch> kept;
  for (const Stretch& stretch : memory_) {
    const std::int64_t at = number - stretch.first_number;
    if (at < 0 || at >= stretch.count) {
      kept.push_back(stretch);
      continue;
    }
    const std::int64_t behind = stretch.count - at - 1;
    if (at > 0) kept.push_back({stretch.first, stretch.period, at, stretch.first_number});
    if (behind > 0) kept.push_back({stretch.first + (at + 1) * stretch.period, stretch.period, behind, number + 1});
  }
  memory_ = std::move(kept);
}

Selection Unit::Later(Seconds after) const {
  after -= overlap_;
  std::vector<Stretch> later;
  for (Stretch stretch : memory_) {
    if (after >= stretch.first) {
      const std::int64_t skipped = std::min((after - stretch.first) / stretch.period + 1, stretch.count);
      stretch.first += skipped * stretch.period;
      stretch.first_number += skipped;
      stretch.count -= skipped;
    }
    if (stretch.count > 0) {
      later.push_back(stretch);
    }
  }
  return Selection(std::move(later));
}

std::string Unit::State() const {
  std::string state;
  const auto add = [&state](std::int64_t number) {
    if (!state.empty()) state += ' ';
    AppendNumber(state, number);
  };
  for (const Seconds number : {clock_, period_, due_}) add(number);
  for (const Stretch& stretch : memory_) {
    for (const std::int64_t number : {stretch.first, stretch.period, stretch.count}) add(number);
  }
  return state;
}

bool Unit::Restore(std::string_view state) {
  constexpr std::int64_t kMost = 1'000'000'000'000;
  std::vector<std::int64_t> numbers;
  for (const std::string_view word : Words(state)) {
    const auto number = ParseInteger(word, 1, kMost);
    if (!number) {
      return false;
    }
    numbers.push_back(*number);
  }
  if (numbers.size() < 3 || numbers.size() % 3 != 0) {
    return false;
  }
  clock_ = numbers[0];
  period_ = numbers[1];
  due_ = numbers[2];
  memory_.clear();
  next_number_ = 0;
  for (std::size_t i = 3; i < numbers.size(); i += 3) {
    memory_.push_back({numbers[i], numbers[i + 1], numbers[i + 2], next_number_});
    next_number_ += numbers[i + 2];
  }
  return true;
}

}  // namespace corvane::basestation
