#include "transfer/server_address.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace corvane {
namespace {

constexpr std::int32_t kFtpPort = 21;

}  // namespace

ServerAddress ParseServer(std::string_view as_Server) {
  const std::size_t colon = as_Server.rfind(':');
  const bool bare_address = as_Server.find(':') != colon && !as_Server.starts_with('[');
  if (colon == std::string_view::npos || bare_address || as_Server.ends_with(']')) {
    return {std::string(as_Server), kFtpPort};
  }
  const std::string_view digits = as_Server.substr(colon + 1);
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  const bool is_port = error == std::errc() && end == digits.data() + digits.size();
  return {std::string(as_Server.substr(0, colon)), is_port ? port : 0};
}

}  // namespace corvane
