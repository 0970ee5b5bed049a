// What a unit's fields offer and take: texts of its selectors and the numbers that are stored, limits.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "state/records.h"

namespace corvane {

struct UnitChoice {
  std::string_view text;
  std::int32_t number;
};

/// Where a unit's readings come from, in the order of the selector.
inline constexpr std::array<UnitChoice, 4> kGetFromChoices = {
    {{"None", kFromNone}, {"Radio", kFromRadio}, {"Hand held", kFromHandHeld}, {"ftp", kFromFtp}}};
/// Where a unit's file is sent.
inline constexpr std::array<UnitChoice, 2> kSendToChoices = {{{"None", 0}, {"ftp", 1}}};

/// Most that a correction factor is to be.
inline constexpr double kLargestCorrection = 50;

}  // namespace corvane
