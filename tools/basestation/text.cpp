#include "text.h"

#include <algorithm>

namespace corvane::basestation {

std::optional<std::int64_t> ParseNumber(std::string_view text, std::int64_t least, std::int64_t most) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || number < least || number > most) {
    return std::nullopt;
  }
  return number;
}

std::optional<double> ParseFraction(std::string_view text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return number;
}

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t end = text.find(separator); end != text.npos; end = text.find(separator)) {
    parts.push_back(Trim(text.substr(0, end)));
    text.remove_prefix(end + 1);
  }
  parts.push_back(Trim(text));
  return parts;
}

std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  while (!(text = Trim(text)).empty()) {
    const std::size_t end = std::min(text.find_first_of(" \t"), text.size());
    words.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return words;
}

std::optional<NumberSet> NumberSet::Parse(std::string_view text) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  NumberSet set;
  if (text == "*") {
    return set;
  }
  set.ranges_.clear();
  for (const std::string_view part : Split(text, ',')) {
    const std::size_t dash = part.find('-');
    const auto low = ParseNumber(part.substr(0, dash), 0, kMost);
    auto high = low;
    if (dash != part.npos) {
      high = dash + 1 == part.size() ? kMost : ParseNumber(part.substr(dash + 1), 0, kMost);
    }
    if (!low || !high || *low > *high) {
      return std::nullopt;
    }
    set.ranges_.emplace_back(*low, *high);
  }
  return set;
}

bool NumberSet::Contains(std::int64_t number) const {
  return std::any_of(ranges_.begin(), ranges_.end(),
                     [number](const auto& range) { return range.first <= number && number <= range.second; });
}

}  // namespace corvane::basestation
