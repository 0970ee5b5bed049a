#include "data/scan_state.h"

#include <charconv>

namespace corvane {

std::int64_t ScanStateReader::Take(std::int64_t al_Least, std::int64_t al_Most) {
  std::int64_t number = 0;
  const char* const end = rest_.data() + rest_.size();
  const auto [behind, error] = std::from_chars(rest_.data(), end, number);
  good_ = good_ && error == std::errc() && behind != end && *behind == ' ' && number >= al_Least && number <= al_Most;
  if (!good_) return 0;
  rest_ = {behind + 1, end};
  return number;
}

DateTime ScanStateReader::TakeDate() {
  constexpr std::int64_t kLatest = 4'000'000 * kSecondsPerDay;  // beyond the year 9999
  before_ = before_ + Take(-kLatest, kLatest);
  return before_;
}

}  // namespace corvane
