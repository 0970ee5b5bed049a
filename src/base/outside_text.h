// Text that came from outside (the radio line, a server, names that people enter, files) on its way to where something
// else would act on it.
#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// `text` fit for a terminal: one line of UTF-8 that steers nothing.
///
/// Control characters, those of code 128 to 159 included, are shown as "[" + decimal code + "]"; bytes that are no
/// UTF-8, and characters that turn the direction of writing, as "?".
[[nodiscard]] std::string Printable(std::string_view text);

/// `text` fit for a field of a comma-separated file: as for a terminal, and with "'" before what a spreadsheet would
/// run (text that begins with "=", "+", "-", "@" or a tab, behind blanks and double quotes, and is no number).
[[nodiscard]] std::string SpreadsheetField(std::string_view text);

}  // namespace corvane
