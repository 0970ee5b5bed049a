#pragma once

#include <string>
#include <vector>

#include "history/network_status.h"
#include "lang/phrases.h"

namespace corvane {

/// How the network stands in one sentence for a person: how many units are fine, which are not and since when, and when
/// the next round begins.
[[nodiscard]] std::string HeadlineOf(const NetworkStatus& av_Status, const Phrases& av_Phrases = {});

/// What it is made of.
[[nodiscard]] std::vector<Phrase> HeadlinePhrases();

}  // namespace corvane
