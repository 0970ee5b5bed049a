#pragma once

#include <vector>

#include "lang/phrases.h"

namespace corvane {

/// All phrases that the history and the status of a network are told in.
[[nodiscard]] std::vector<Phrase> HistoryPhrases();

}  // namespace corvane
