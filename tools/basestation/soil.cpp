#include "soil.h"

#include <cstdlib>

#include "random.h"
#include "text.h"

namespace corvane::basestation {
namespace {

constexpr std::int64_t kStretch = 96;
constexpr int kBatteryChannel = 0;
constexpr int kAmbientChannel = 1;
constexpr int kFirstSensorChannel = 2;

/// The warmth of the time of day, from -1000 at three in the night to 1000 at three in the afternoon (second 54000).
std::int64_t Warmth(Seconds date) {
  const std::int64_t from_peak = std::llabs(date % 86400 - 54000);
  const std::int64_t distance = from_peak > 43200 ? 86400 - from_peak : from_peak;
  return 1000 - distance * 2000 / 43200;
}

}  // namespace

Soil::Soil(std::uint64_t seed, int unit_id, int sensors)
    : seed_(Mix(seed) ^ Mix(static_cast<std::uint64_t>(unit_id) << 32)), sensors_(sensors) {}

std::int64_t Soil::Drift(int channel, std::int64_t number, std::int64_t low, std::int64_t high) const {
  const std::uint64_t base = seed_ + static_cast<std::uint64_t>(channel) * 0x100000000U;
  const auto span = static_cast<std::uint64_t>(high - low + 1);
  const auto stretch = static_cast<std::uint64_t>(number / kStretch);
  const std::int64_t from = static_cast<std::int64_t>(Mix(base + stretch) % span);
  const std::int64_t to = static_cast<std::int64_t>(Mix(base + stretch + 1) % span);
  return low + from + (to - from) * (number % kStretch) / kStretch;
}

std::int64_t Soil::Battery(std::int64_t number) const {
  return Drift(kBatteryChannel, number, 11800, 12900);
}

std::int64_t Soil::Ambient(std::int64_t number, Seconds date) const {
  return Drift(kAmbientChannel, number, 28500, 29800) + Warmth(date) / 2;
}

void Soil::AppendReading(std::string& out, std::int64_t number, Seconds date) const {
  AppendTime(out, date);
  for (const std::int64_t item : {Battery(number), Ambient(number, date), number % 65536}) {
    out += ',';
    AppendNumber(out, item);
  }
  const std::int64_t warmth = Warmth(date);
  for (int sensor = 0; sensor < sensors_; ++sensor) {
    const int channel = kFirstSensorChannel + 3 * sensor;
    const std::int64_t temperature = Drift(channel + 2, number, 28300, 29700) + warmth / (4 + 4 * sensor);
    for (const std::int64_t item :
         {Drift(channel, number, 400, 3600), Drift(channel + 1, number, 500, 3500), temperature}) {
      out += ',';
      AppendNumber(out, item);
    }
  }
}

}  // namespace corvane::basestation
