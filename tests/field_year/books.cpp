#include "field_year/books.h"

#include <algorithm>
#include <utility>

#include "support/fake_transfer.h"

namespace corvane::test {

void UnitBook::Log(bool is_future) {
  for (const basestation::Stretch& stretch : unit.memory()) {
    const auto first = std::max(static_cast<std::int64_t>(readings.size()) - stretch.first_number, std::int64_t{0});
    for (std::int64_t at = first; at < stretch.count; ++at) {
      // What was logged and overwritten since the last look was never anyone's.
      readings.resize(static_cast<std::size_t>(stretch.first_number + at));
      LoggedReading reading;
      reading.date = stretch.first + at * stretch.period;
      reading.is_future = is_future;
      reading.clock_set = std::exchange(clock_set, 0);
      reading.period_set = std::exchange(period, stretch.period) != stretch.period;
      unit.soil().AppendReading(reading.text, stretch.first_number + at, reading.date);
      reading.is_not_later = !is_future && reading.date <= latest;
      if (!is_future) latest = std::max(latest, reading.date);
      numbers[reading.text] = stretch.first_number + at;
      readings.push_back(std::move(reading));
    }
  }
}

void UnitBook::PassTime(basestation::Seconds seconds) {
  clock_set += unit.clock() - clock;
  is_clock_known &= unit.clock() == clock;
  unit.PassTime(seconds);
  clock = unit.clock();
  Log(false);
}

std::int64_t UnitBook::NumberOf(const std::string& text) const {
  const auto found = numbers.find(text);
  return found == numbers.end() ? -1 : found->second;
}

bool UnitBook::IsHeld(std::int64_t number) const {
  return std::ranges::any_of(unit.memory(), [number](const basestation::Stretch& stretch) {
    return number >= stretch.first_number && number < stretch.first_number + stretch.count;
  });
}

void RawBook::TakeWholeContact(std::int64_t end) {
  cut_ = false;
  standing_.resize(book.readings.size());
  for (const basestation::Stretch& stretch : book.unit.memory()) {
    for (std::int64_t at = 0; at < stretch.count && stretch.first_number + at < end; ++at) {
      standing_[static_cast<std::size_t>(stretch.first_number + at)].promised = true;
    }
  }
}

void RawBook::TakeDeletion() {
  for (std::size_t number = 0; number < standing_.size(); ++number) {
    standing_[number] = {false, false, !book.IsHeld(static_cast<std::int64_t>(number))};
  }
}

std::string RawBook::TakeLine(std::string_view line) {
  const std::int64_t number = book.NumberOf(std::string(line));
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
  const std::string contents = ReadAll(path);
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
  standing_.resize(book.readings.size());
  if (std::string broken = ReadNewLines(); !broken.empty()) return path + " " + broken;
  const std::string bad_lines = goes_on ? ReadAll(path + ".bad") : "";
  counts = {};
  for (std::size_t number = 0; number < standing_.size(); ++number) {
    const std::string& text = book.readings[number].text;
    if (text.empty()) continue;
    const Heading heading = Find(static_cast<std::int64_t>(number), goes_on, bad_lines);
    if (heading != Heading::Lost) {
      ++counts[static_cast<std::size_t>(heading)];
      continue;
    }
    const bool is_promised = standing_[number].promised;
    return path + " lacks a reading that " +
           (is_promised ? "the unit has sent whole: " : "is never asked for again: ") + text;
  }
  return {};
}

std::optional<basestation::Seconds> RawBook::LastDate() const {
  if (last_ < 0) return std::nullopt;
  return book.readings[static_cast<std::size_t>(last_)].date;
}

std::vector<BookGap> RawBook::Gaps() const {
  std::vector<BookGap> gaps;
  BookGap gap;
  std::vector<std::size_t> lost;
  bool began = false;
  for (std::size_t number = 0; number < standing_.size(); ++number) {
    const LoggedReading& reading = book.readings[number];
    gap.clock_set |= reading.clock_set > 0;
    gap.period_set |= reading.period_set;
    if (standing_[number].stored) {
      gap.to = reading.date;
      // Of two readings of one minute the second one stands in the file.
      const auto same = [&](std::size_t each) { return book.readings[each].date >= reading.date; };
      gap.not_later += static_cast<std::int64_t>(std::erase_if(lost, same));
      gap.missing = std::ssize(lost);
      gap.held =
          std::ranges::all_of(lost, [&](std::size_t each) { return book.IsHeld(static_cast<std::int64_t>(each)); });
      if (std::exchange(began, true)) gaps.push_back(gap);
      gap = {reading.date};
      lost.clear();
    } else if (reading.is_not_later) {
      ++gap.not_later;
    } else if (!reading.is_future) {
      lost.push_back(number);
    }
  }
  gaps.resize(gaps.size() - std::min<std::size_t>(gaps.size(), 2));
  return gaps;
}

Heading RawBook::Find(std::int64_t number, bool goes_on, const std::string& bad_lines) const {
  const auto& readings = book.readings;
  const LoggedReading& reading = readings[static_cast<std::size_t>(number)];
  const Standing& standing = standing_[static_cast<std::size_t>(number)];
  if (standing.stored) return Heading::InRawFile;
  if (standing.taken) return Heading::TakenByPerson;
  if (reading.is_behind_overrun) return Heading::BehindOverrun;
  if (reading.is_not_later) return Heading::NotLater;
  // Damaged on its way it may lack its last item or have another date.
  const std::size_t begin = reading.text.find(',');
  const std::string middle = reading.text.substr(begin, reading.text.rfind(',') - begin);
  if (bad_lines.find(middle) != std::string::npos) return Heading::InBadFile;
  const bool is_silenced = !goes_on && last_ >= 0 && readings[static_cast<std::size_t>(last_)].is_future;
  if (reading.is_future || is_silenced) return Heading::BehindFutureDate;
  if (reading.is_poison) return Heading::BehindPoison;
  if (standing.promised) return Heading::Lost;
  if (!book.IsHeld(number)) return Heading::Overwritten;
  return number < last_ ? Heading::Lost : Heading::StillInMemory;
}

}  // namespace corvane::test
