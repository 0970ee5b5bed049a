#include "base/status.h"

#include <system_error>

namespace corvane {

Status Status::FromErrno(const std::string& what, int error) {
  return {error, what + ": " + std::generic_category().message(error)};
}

}  // namespace corvane
