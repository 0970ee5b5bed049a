#include "text.h"

#include <algorithm>

namespace corvane::basestation {

std::optional<std::int64_t> ParseInteger(std::string_view text, std::int64_t least, std::int64_t most) {
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || number < least || number > most) {
    return std::nullopt;
  }
  return number;
}

std::optional<double> ParseNumber(std::string_view text) {
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

bool NumberSet::Contains(std::int64_t number) const {
  return std::any_of(ranges_.begin(), ranges_.end(),
                     [number](const auto& range) { return range.first <= number && number <= range.second; });
}

std::optional<NumberSet> ParseNumberSet(std::string_view text) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  if (text == "*") {
    return NumberSet();
  }
  std::vector<NumberSet::Range> ranges;
  for (const std::string_view part : Split(text, ',')) {
    const std::size_t dash = part.find('-');
    const auto low = ParseInteger(part.substr(0, dash), 0, kMost);
    auto high = low;
    if (dash != part.npos) {
      high = dash + 1 == part.size() ? kMost : ParseInteger(part.substr(dash + 1), 0, kMost);
    }
    if (!low || !high || *low > *high) {
      return std::nullopt;
    }
    ranges.emplace_back(*low, *high);
  }
  return NumberSet(std::move(ranges));
}

}  // namespace corvane::basestation
