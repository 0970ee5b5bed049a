#include "platform/line_settings.h"

#include <charconv>
#include <system_error>
#include <vector>

#include "base/text.h"

namespace corvane {
namespace {

constexpr std::int32_t kHighestBaud = 4'000'000;

std::optional<std::int32_t> DigitsOnly(std::string_view text, std::int32_t lowest, std::int32_t highest) {
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || value < lowest || value > highest) return {};
  return value;
}

std::optional<Parity> ParityOf(std::string_view text) {
  constexpr std::string_view kLetters = "NEOMS";  // in the order of Parity
  const std::size_t index = text.size() == 1 ? kLetters.find(ToUpper(text)) : std::string_view::npos;
  if (index == std::string_view::npos) return {};
  return static_cast<Parity>(index);
}

std::optional<bool> LongStopOf(std::string_view text, std::int32_t data_bits) {
  if (text == "1") return false;
  if (text == "2" || (text == "1.5" && data_bits == 5)) return true;
  return {};
}

}  // namespace

std::optional<LineSettings> ParseLineSettings(std::string_view text) {
  const std::vector<std::string_view> parts = Split(text, ',');
  if (parts.size() != 4) return {};
  const auto baud = DigitsOnly(parts[0], 1, kHighestBaud);
  const auto parity = ParityOf(parts[1]);
  const auto data_bits = DigitsOnly(parts[2], 5, 8);
  const auto long_stop = LongStopOf(parts[3], data_bits.value_or(0));
  if (!baud || !parity || !data_bits || !long_stop) return {};
  return LineSettings{*baud, *parity, *data_bits, *long_stop};
}

}  // namespace corvane
