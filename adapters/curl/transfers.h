#pragma once

#include <cstdint>
#include <string>

#include "curl/ftp_connection.h"

namespace corvane {

/// Stores the file `local` under `remote`, and asks a server that tells sizes whether all of it is there. **Yields.**
[[nodiscard]] bool UploadFile(FtpConnection& ftp, const std::string& local, const std::string& remote);
/// Fetches `remote`, of at most `limit` bytes; `local` is replaced only when all of it has come and is on the disk.
/// **Yields.**
[[nodiscard]] bool DownloadFile(FtpConnection& ftp, EventLoop& loop, const std::string& remote,
                                const std::string& local, std::int64_t limit);

}  // namespace corvane
