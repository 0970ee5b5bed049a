#include "link/line_settings.h"

#include <charconv>
#include <system_error>
#include <vector>

#include "base/text.h"

namespace corvane {
namespace {

constexpr std::int32_t kHighestBaud = 4'000'000;

std::optional<std::int32_t> DigitsOnly(std::string_view as_Text, std::int32_t al_Lowest, std::int32_t al_Highest) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(as_Text.data(), as_Text.data() + as_Text.size(), value);
  if (error != std::errc{} || end != as_Text.data() + as_Text.size() || value < al_Lowest || value > al_Highest)
    return {};
  return value;
}

std::optional<Parity> ParityOf(std::string_view as_Text) {
  constexpr std::string_view kLetters = "NEOMS";  // in the order of Parity
  const std::size_t index = as_Text.size() == 1 ? kLetters.find(ToUpper(as_Text)) : std::string_view::npos;
  if (index == std::string_view::npos) return {};
  return static_cast<Parity>(index);
}

std::optional<bool> LongStopOf(std::string_view as_Text, std::int32_t al_DataBits) {
  if (as_Text == "1") return false;
  if (as_Text == "2" || (as_Text == "1.5" && al_DataBits == 5)) return true;
  return {};
}

}  // namespace

std::optional<LineSettings> ParseLineSettings(std::string_view as_Text) {
  const std::vector<std::string_view> parts = Split(as_Text, ',');
  if (parts.size() != 4) return {};
  const auto baud = DigitsOnly(parts[0], 1, kHighestBaud);
  const auto parity = ParityOf(parts[1]);
  const auto data_bits = DigitsOnly(parts[2], 5, 8);
  const auto long_stop = LongStopOf(parts[3], data_bits.value_or(0));
  if (!baud || !parity || !data_bits || !long_stop) return {};
  return LineSettings{*baud, *parity, *data_bits, *long_stop};
}

}  // namespace corvane
