// The module MXceed: what an archive run's result code means to people.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/zip_component.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane {

/// Reports the result of a run that failed: a log line with the component's own words, and a message box unless the
/// code is one that is no reason to stop. Does nothing for 0 and negative codes. **Yields.**
///
/// `as_Operation` is the text that the flow shows as its status, such as "Unzip " and the archive. Boxes are of one
/// kind for each code.
void ShowZipError(std::int16_t ai_Code, std::string_view as_Operation, const ZipComponent& av_Component,
                  Messages& av_Messages, Trace& av_Trace);

}  // namespace corvane
