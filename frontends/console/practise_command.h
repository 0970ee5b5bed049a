#pragma once

#include <functional>

#include "options.h"

namespace corvane::console {

/// `practise`: begins a practice, with a first round by `run`, or ends those there are; returns the exit status.
[[nodiscard]] int Practise(const Options& options, const std::function<int(const Options&)>& run);

}  // namespace corvane::console
