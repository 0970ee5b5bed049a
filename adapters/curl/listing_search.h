#pragma once

#include <string>
#include <vector>

#include "curl/ftp_connection.h"

namespace corvane {

/// The entries of the folder of `path` that match its last part; none is a success too. **Yields.**
[[nodiscard]] bool ListFolder(FtpConnection& ftp, EventLoop& loop, const std::string& path,
                              std::vector<FindRecord>& records);
/// The file `path`, by its size and time alone. **Yields.**
[[nodiscard]] bool FindOneFile(FtpConnection& ftp, EventLoop& loop, const std::string& path,
                               std::vector<FindRecord>& records);

}  // namespace corvane
