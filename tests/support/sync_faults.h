#pragma once

namespace corvane::test {

/// How many of the next calls of `fdatasync` fail and lose the last bytes of their file, as a failing disk does.
inline int failing_syncs = 0;

}  // namespace corvane::test
