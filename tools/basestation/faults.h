#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "random.h"
#include "text.h"

namespace corvane::basestation {

/// What can go wrong in one exchange; docs/formats/simulator-script.md describes each.
enum class FaultKind {
  // Instead of a line or before it.
  Error,
  Silence,
  HangUp,
  Babble,
  Noise,
  Flood,
  Delay,
  // Within a line.
  WrongItems,
  BadDate,
  FutureDate,
  BadChecksum,
  LowerChecksum,
  NoiseWithin,
  // Of the whole answer.
  NoOk,
  Pieces,
  Reply,
  Header,
};

/// One fault of one exchange.
struct Fault {
  FaultKind kind = FaultKind::Error;
  /// The line that it falls on or comes before: -1 the echo, 0 the header or the only line, 1 and up the data lines.
  std::int64_t line = -1;
  /// Error number, bytes, milliseconds or piece size; -1 when the script gave none.
  std::int64_t amount = -1;
  std::string text;  ///< the line of `Reply` and `Header`
};

/// The name of a fault kind in scripts and on the command line.
[[nodiscard]] std::string_view FaultName(FaultKind kind);

/// The faults of a whole run: scripted rules, and kinds that strike at random with a probability.
class FaultPlan {
 public:
  explicit FaultPlan(std::uint64_t seed) : random_(seed) {}

  /// Adds the rules of a script; throws `RunTimeError` with the number of the first wrong line and what is wrong with
  /// it.
  void ReadScript(std::istream& script);
  /// Adds the kinds of "kind=probability,..."; throws `RunTimeError` when the text is something else.
  void ReadProbabilities(std::string_view text);

  /// The faults of the `attempt`-th time (from 1) that a unit gets a command (named as in scripts).
  ///
  /// A random fault falls on one of the `lines` data lines of the answer.
  [[nodiscard]] std::vector<Fault> For(int unit, std::string_view command, std::int64_t attempt, std::int64_t lines);

 private:
  struct Rule {
    NumberSet units;
    std::string command;
    NumberSet attempts;
    Fault fault;
  };
  struct Chance {
    FaultKind kind;
    double probability;
  };

  [[nodiscard]] static Rule ParseRule(std::string_view line);
  [[nodiscard]] Fault RandomFault(FaultKind kind, std::int64_t lines);

  Random random_;
  std::vector<Rule> rules_;
  std::vector<Chance> chances_;
};

}  // namespace corvane::basestation
