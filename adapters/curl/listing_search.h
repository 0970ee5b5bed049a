#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "curl/ftp_connection.h"

namespace corvane {

/// Looks for the entries of the folder of `path` that match its last part; none is a success too. **Yields.**
[[nodiscard]] bool ListFolder(FtpConnection& ftp, const EventLoop& loop, const std::string& path,
                              std::vector<FindRecord>& records);
/// Looks for the one file `path`. **Yields.**
[[nodiscard]] bool FindOneFile(FtpConnection& ftp, const EventLoop& loop, const std::string& path,
                               std::vector<FindRecord>& records);

/// The size in a server's reply to SIZE, -1 when there is none.
[[nodiscard]] std::int64_t SizeIn(const FtpExchange& reply);

}  // namespace corvane
