#pragma once

#include <optional>
#include <string>

#include "base/dates.h"
#include "base/status.h"
#include "options.h"

namespace corvane::console {

/// The end of a note as `--until` names it: a date is meant to its last second. None when the text is no date.
[[nodiscard]] std::optional<DateTime> NoteEnd(const std::string& text);
/// Writes the note of the options about a unit into the history, beside a program that runs. Throws `UsageError`.
Status WriteNote(const Options& options, const std::string& folder);

}  // namespace corvane::console
