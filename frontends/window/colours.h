#pragma once

#include <QColor>

namespace corvane::window {

/// The lists stand on it in every colour scheme.
inline constexpr QColor kCream(255, 251, 240);
inline constexpr QColor kTextOnCream(32, 30, 26);
/// Of what is disabled: 5:1 against the ground, so that it can still be read.
inline constexpr QColor kDisabledOnCream(108, 102, 91);

}  // namespace corvane::window
