#pragma once

#include <cstdint>

namespace corvane::basestation {

/// Scrambles a number into 64 evenly spread bits; the same number always gives the same bits (splitmix64).
constexpr std::uint64_t Mix(std::uint64_t number) {
  number += 0x9e3779b97f4a7c15U;
  number = (number ^ (number >> 30)) * 0xbf58476d1ce4e5b9U;
  number = (number ^ (number >> 27)) * 0x94d049bb133111ebU;
  return number ^ (number >> 31);
}

/// A sequence of random numbers that depends on its seed alone, on every machine.
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(Mix(seed)) {}

  std::uint64_t Next() { return Mix(state_++); }
  /// A number from 0 to `limit` - 1; `limit` must not be 0.
  std::uint64_t Below(std::uint64_t limit) { return Next() % limit; }
  /// True with the given probability (0 never, 1 always).
  bool Chance(double probability) { return static_cast<double>(Next() >> 11) * 0x1p-53 < probability; }

 private:
  std::uint64_t state_;
};

}  // namespace corvane::basestation
