// What a command gets on its standard input when there is something to tell. Format: docs/formats/alert-event.md.
#pragma once

#include <string>
#include <vector>

#include "history/alert_book.h"
#include "history/network_status.h"

namespace corvane {

/// All events in one line, as the subject of a mail has it.
[[nodiscard]] std::string AlertSubject(const std::vector<AlertEvent>& av_Events);
/// The document for the command; `av_Events` holds at least one event.
[[nodiscard]] std::string AlertMessage(const std::vector<AlertEvent>& av_Events, const NetworkStatus& av_Status);

}  // namespace corvane
