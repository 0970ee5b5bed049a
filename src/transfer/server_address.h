#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

struct ServerAddress {
  std::string host;
  std::int32_t port = 0;  ///< 0 when what stands for it is none
};

/// Reads "host", "host:port" or "[address]:port"; the port is 21 where none is written.
[[nodiscard]] ServerAddress ParseServer(std::string_view as_Server);

}  // namespace corvane
