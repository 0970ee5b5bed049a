#pragma once

#include <string>

#include "curl/ftp_connection.h"

namespace corvane {

/// Stores the file `local` under `remote`. **Yields.**
[[nodiscard]] bool UploadFile(FtpConnection& ftp, const std::string& local, const std::string& remote);
/// Fetches `remote`; `local` is replaced only when all of it has come and is on the disk. **Yields.**
[[nodiscard]] bool DownloadFile(FtpConnection& ftp, EventLoop& loop, const std::string& remote,
                                const std::string& local);

}  // namespace corvane
