#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "calendar.h"

namespace corvane::basestation {

/// A unit and the relay that it is behind (0: none).
struct Place {
  int unit = 0;
  int relay = 0;
};

/// What the command line asks for.
struct Options {
  std::string link;
  std::vector<Place> places;
  std::int64_t readings = 100;
  std::int64_t interval = 15;
  std::int64_t sensors = 3;
  std::int64_t seed = 1;
  Seconds start = 0;
  std::int64_t advance = 0;
  double clock_speed = 0;
  std::int64_t baud = 0;
  bool echo = true;
  std::string state;
  std::string script;
  std::string faults;
  std::string log;
  std::int64_t idle_exit = 0;
  bool end_with_input = false;
  bool end_with_link = false;
  bool help = false;
  bool version = false;
};

/// A command line that cannot be followed; `what()` says why.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the command line (without the program's name); throws `UsageError`.
[[nodiscard]] Options ParseOptions(const std::vector<std::string>& arguments);

/// The text of --help.
[[nodiscard]] std::string HelpText();

/// The text of --version.
[[nodiscard]] std::string VersionText();

}  // namespace corvane::basestation
