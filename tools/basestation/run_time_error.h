#pragma once

#include <stdexcept>

namespace corvane::basestation {

/// A run-time error; `what()` is its description, written for the user. `main` is the one handler.
class RunTimeError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace corvane::basestation
