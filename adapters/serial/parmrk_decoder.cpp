#include "serial/parmrk_decoder.h"

namespace corvane {

namespace {

constexpr char kMark = '\xFF';

}  // namespace

LineMarks ParmrkDecoder::Decode(std::string_view raw, std::string& out) {
  LineMarks marks;
  while (!raw.empty()) {
    if (state_ == State::Plain) {
      const std::string_view plain = raw.substr(0, raw.find(kMark));
      out += plain;
      raw.remove_prefix(plain.size());
      if (raw.empty()) break;
    }
    DecodeByte(raw.front(), out, marks);
    raw.remove_prefix(1);
  }
  return marks;
}

void ParmrkDecoder::DecodeByte(char byte, std::string& out, LineMarks& marks) {
  if (state_ == State::Plain) {
    state_ = State::Marked;
    return;
  }
  if (state_ == State::Marked && byte == '\0') {
    state_ = State::Damaged;
    return;
  }
  if (state_ == State::Marked) {
    out += kMark;
    if (byte != kMark) out += byte;  // no mark that the driver writes: the bytes stay as they came
  } else if (byte == '\0') {
    ++marks.breaks;
  } else {
    ++marks.damaged;
    out += '?';
  }
  state_ = State::Plain;
}

}  // namespace corvane
