#pragma once

namespace corvane::window {

/// The key code that the program's own key handling and its log use: upper-case letters and digits are themselves,
/// named keys have the standard numbers (27 Escape, 112 F1).
[[nodiscard]] int KeyCode(int toolkit_key);

}  // namespace corvane::window
