#pragma once

#include <cstdint>

namespace corvane {

/// Bytes of a connection that the kernel holds and the far end has not acknowledged; 0 when it does not tell.
[[nodiscard]] std::int64_t UnsentBytes(int socket);
/// Bytes that this program has taken out of a connection since it was made.
[[nodiscard]] std::int64_t TakenBytes(int socket);
/// True when the connection is over for both directions, as after a reset.
[[nodiscard]] bool IsOver(int socket);
/// Waits until there is something to take, or the far end has closed; false after `milliseconds`.
[[nodiscard]] bool WaitReadable(int socket, int milliseconds);

}  // namespace corvane
