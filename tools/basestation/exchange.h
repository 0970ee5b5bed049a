#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "faults.h"
#include "random.h"
#include "soil.h"
#include "unit.h"

namespace corvane::basestation {

/// What the line has to do once the bytes produced so far are out.
struct Step {
  enum class Kind { More, Pause, HangUp, End };
  Kind kind = Kind::More;
  /// `Pause`: milliseconds to wait. `HangUp`: milliseconds until the line comes back, -1 for never.
  std::int64_t amount = 0;
};

/// The answer to one command, produced piece by piece: echo, header or only line, data lines, "OK", with its faults.
class Exchange {
 public:
  /// An answer of one line. `echo` and `line` carry their own line ends; an empty `echo` is not sent.
  Exchange(std::string echo, std::string line, std::vector<Fault> faults, std::uint64_t seed);

  /// A download of `unit` (it need not outlive this call) later than `after`, found in `readings`.
  Exchange(std::string echo, const Unit& unit, Selection readings, std::vector<Fault> faults, std::uint64_t seed);

  /// Appends the next bytes to `out`, up to a few ten thousand; says what comes after them.
  Step Produce(std::string& out);

  /// The unit whose download this is, 0 for any other answer.
  [[nodiscard]] int download_unit() const { return download_unit_; }
  /// Whether the answer ran to its regular end.
  [[nodiscard]] bool complete() const { return complete_; }
  /// Whether neither an escape nor a busy reply interrupts this answer.
  [[nodiscard]] bool stubborn() const { return babbling_; }
  /// Bytes to send at once: 0 any number, -1 a random number each time.
  [[nodiscard]] std::int64_t piece_size() const { return piece_size_; }

 private:
  void ArrangeFaults();
  Step Meet(const Fault& fault, std::string& out);
  void AppendLine(std::string& out);
  void AppendReading(std::string& out);
  void Spoil(const Fault& fault, std::string& out, std::size_t line_start);
  void LowerChecksum(std::string& out, std::size_t line_start);
  [[nodiscard]] std::string Noise(std::int64_t bytes);
  [[nodiscard]] bool FaultDue(FaultKind first, FaultKind last) const;
  [[nodiscard]] std::int64_t EndLine() const { return lines_ + 1; }

  std::string echo_;
  std::string head_;  ///< header or only line
  std::vector<Fault> faults_;
  Random random_;
  Soil soil_{0, 0, 0};
  Selection readings_;
  int download_unit_ = 0;
  std::int64_t lines_ = 0;
  std::int64_t line_ = -1;  ///< the line to come: -1 the echo, 0 the header or only line, `EndLine()` the "OK"
  std::size_t next_fault_ = 0;
  std::int64_t flood_left_ = 0;
  std::int64_t piece_size_ = 0;
  bool babbling_ = false;
  bool lower_checksum_due_ = false;
  bool sends_ok_ = false;
  bool ended_ = false;
  bool complete_ = false;
};

}  // namespace corvane::basestation
