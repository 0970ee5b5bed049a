#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

/// Damage that the terminal driver marked in a piece of input.
struct LineMarks {
  int breaks = 0;
  int damaged = 0;
};

/// Reads input of a terminal with INPCK and PARMRK set, in pieces of any size.
///
/// The driver writes FF FF for a byte FF, FF 00 c for a byte c with a framing or parity error, FF 00 00 for a break. A
/// damaged byte becomes "?", so that no damaged line can pass for a good one; a break leaves nothing.
class ParmrkDecoder {
 public:
  /// Appends the bytes of `raw` to `out` and returns the marks found.
  LineMarks Decode(std::string_view raw, std::string& out);
  void Reset() { state_ = State::Plain; }

 private:
  enum class State : std::uint8_t { Plain, Marked, Damaged };
  void DecodeByte(char byte, std::string& out, LineMarks& marks);

  State state_ = State::Plain;
};

}  // namespace corvane
