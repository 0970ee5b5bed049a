#pragma once

#include <vector>

#include "lang/phrases.h"

namespace corvane {

/// All phrases that setting a network up is told in.
[[nodiscard]] std::vector<Phrase> SetupPhrases();

}  // namespace corvane
