#pragma once

#include <set>
#include <string>

namespace corvane::test {

/// How many of the next calls of `fdatasync` fail and lose the last bytes of their file, as a failing disk does.
inline int failing_syncs = 0;
/// How many of the next calls of `fsync` fail, which is used for folders.
inline int failing_folder_syncs = 0;
/// How many of the next calls of `link` fail, as on a disk where a file has one name only.
inline int failing_links = 0;
/// How many of the next calls that read "corvane.ini" fail, and with which error; with EMFILE it cannot be opened.
inline int failing_reads = 0;
inline int read_error = 0;
/// What was brought to the disk by `fsync`, which is used for folders.
inline std::set<std::string> synced_folders;
/// Before which of the next calls that change a file or folder the process is killed; 0 never.
inline int kill_before_change = 0;
inline constexpr int kKilled = 99;  ///< how it then ends

}  // namespace corvane::test
