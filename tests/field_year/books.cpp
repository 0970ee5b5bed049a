#include "field_year/books.h"

#include <algorithm>
#include <utility>

#include "support/fake_transfer.h"

namespace corvane::test {

void UnitBook::Log(bool future) {
  for (const basestation::Stretch& stretch : unit_.memory()) {
    const auto first = std::max(static_cast<std::int64_t>(readings.size()) - stretch.first_number, std::int64_t{0});
    for (std::int64_t at = first; at < stretch.count; ++at) {
      // What was logged and overwritten since the last look was never anyone's.
      readings.resize(static_cast<std::size_t>(stretch.first_number + at));
      LoggedReading reading{stretch.first + at * stretch.period, {}, false, false, false, future};
      unit_.soil().AppendReading(reading.text, stretch.first_number + at, reading.date);
      reading.is_not_later = !future && reading.date <= latest_;
      if (!future) latest_ = std::max(latest_, reading.date);
      numbers_[reading.text] = stretch.first_number + at;
      readings.push_back(std::move(reading));
    }
  }
}

std::int64_t UnitBook::NumberOf(const std::string& text) const {
  const auto found = numbers_.find(text);
  return found == numbers_.end() ? -1 : found->second;
}

bool UnitBook::IsHeld(std::int64_t number) const {
  return std::ranges::any_of(unit_.memory(), [number](const basestation::Stretch& stretch) {
    return number >= stretch.first_number && number < stretch.first_number + stretch.count;
  });
}

void RawBook::TakeWholeContact(std::int64_t end, bool in_calm_days) {
  complete_ = complete_ || in_calm_days;
  cut_ = false;
  standing_.resize(book_.readings.size());
  for (const basestation::Stretch& stretch : book_.unit().memory()) {
    for (std::int64_t at = 0; at < stretch.count && stretch.first_number + at < end; ++at) {
      standing_[static_cast<std::size_t>(stretch.first_number + at)].promised = true;
    }
  }
}

void RawBook::TakeDeletion() {
  for (std::size_t number = 0; number < standing_.size(); ++number) {
    standing_[number] = {false, false, !book_.IsHeld(static_cast<std::int64_t>(number))};
  }
}

std::string RawBook::TakeLine(std::string_view line) {
  const std::int64_t number = book_.NumberOf(std::string(line));
  if (!std::exchange(has_header_, true) && number < 0) return {};
  if (number < 0) return "holds a line that the unit never logged: " + std::string(line);
  Standing& standing = standing_[static_cast<std::size_t>(number)];
  if (standing.stored) return "holds a reading twice: " + std::string(line);
  if (number < last_) return "holds a reading out of order: " + std::string(line);
  standing.stored = true;
  last_ = number;
  return {};
}

std::string RawBook::ReadNewLines() {
  const std::string contents = ReadAll(path_);
  if (!contents.starts_with(seen_)) {
    for (Standing& standing : standing_) standing.stored = false;
    seen_.clear();
    last_ = -1;
    has_header_ = false;
  }
  std::size_t begin = seen_.size();
  for (std::size_t end = 0; (end = contents.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
    const std::string_view line = std::string_view(contents).substr(begin, end - begin);
    if (cut_ && line.find('\0') != std::string_view::npos) break;
    if (std::string broken = TakeLine(line); !broken.empty()) return broken;
  }
  seen_.assign(contents, 0, begin);
  return begin == contents.size() || cut_ ? "" : "ends in a torn line: " + contents.substr(begin);
}

std::string RawBook::Judge(bool goes_on) {
  standing_.resize(book_.readings.size());
  std::string broken = ReadNewLines();
  const std::string bad_lines = goes_on ? ReadAll(path_ + ".bad") : "";
  Heading why{};
  for (std::int64_t number = 0; broken.empty() && number < std::ssize(standing_); ++number) {
    if (!standing_[static_cast<std::size_t>(number)].stored) broken = Unexplained(number, goes_on, bad_lines, why);
  }
  return broken.empty() ? "" : path_ + " " + broken;
}

void RawBook::Count(bool goes_on, std::array<std::int64_t, kHeadings.size()>& counts, std::int64_t& logged,
                    std::int64_t& stored) const {
  const std::string bad_lines = ReadAll(path_ + ".bad");
  for (std::int64_t number = 0; number < std::ssize(standing_); ++number) {
    if (At(number).text.empty()) continue;
    ++logged;
    Heading why{};
    if (standing_[static_cast<std::size_t>(number)].stored) {
      ++stored;
    } else if (Unexplained(number, goes_on, bad_lines, why).empty()) {
      ++counts[static_cast<std::size_t>(why)];
    }
  }
}

/// Finds the heading of a reading that is not in the file; a sentence when there is none.
std::string RawBook::Unexplained(std::int64_t number, bool goes_on, const std::string& bad_lines, Heading& why) const {
  const LoggedReading& reading = At(number);
  const Standing& standing = standing_[static_cast<std::size_t>(number)];
  // Damaged on its way it may lack its last item or have another date.
  const std::size_t begin = std::min(reading.text.find(','), reading.text.size());
  const std::string middle = reading.text.substr(begin, reading.text.rfind(',') - begin);
  const bool is_silenced = !goes_on && last_ >= 0 && At(last_).is_future;
  if (standing.taken) {
    why = Heading::TakenByPerson;
  } else if (reading.is_behind_overrun) {
    why = Heading::BehindOverrun;
  } else if (reading.is_not_later) {
    why = Heading::NotLater;
  } else if (bad_lines.find(middle) != std::string::npos) {
    why = Heading::InBadFile;
  } else if (reading.is_future || is_silenced) {
    why = Heading::BehindFutureDate;
  } else if (reading.is_poison) {
    why = Heading::BehindPoison;
  } else if (standing.promised) {
    return "lacks a reading that the unit has sent whole: " + reading.text;
  } else if (!book_.IsHeld(number)) {
    why = Heading::Overwritten;
  } else if (number < last_) {
    return "lacks a reading that is never asked for again: " + reading.text;
  } else {
    why = Heading::StillInMemory;
  }
  return {};
}

}  // namespace corvane::test
