// The file of the history as one among others: where it lies, what stands beside it, how it is set aside.
#pragma once

#include <cstdint>
#include <string>

#include "base/status.h"

namespace corvane {

/// Whether the folder of the file is on another computer: a write-ahead log needs memory that its users share.
[[nodiscard]] bool IsOnNetwork(const std::string& file);

/// What stands at a path.
struct FileState {
  int error = 0;  ///< why nothing is known of it
  bool there = false;
  bool plain = false;
  bool empty = false;       ///< or missing
  std::uint64_t inode = 0;  ///< which file it is
};
[[nodiscard]] FileState StateOf(const std::string& file);
/// Whether this user may read the file.
Status MayRead(const std::string& file);

/// Makes an empty file that the user's group may read too.
Status MakeHistoryFile(const std::string& file);
/// Gives the file and what belongs to it the name "<file>.bad"; what bore that is gone. It must be closed.
Status SetAsideAsBad(const std::string& file);

}  // namespace corvane
