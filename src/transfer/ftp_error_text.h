#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// The text of an FTP error number; `as_Reply` are the server's last words, for the number that stands for a refusal.
[[nodiscard]] std::string FtpErrorText(int al_Code, std::string_view as_Reply);

}  // namespace corvane
