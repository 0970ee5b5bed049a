#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/files.h"
#include "base/status.h"

namespace corvane {

/// A file that is appended to line by line and from time to time brought to the disk.
///
/// What was written since the last sync stays in memory: the system forgets the pages of a sync that failed and calls
/// the next one a success.
class SyncedFile {
 public:
  Status OpenForAppending(const std::string& path);
  /// Creates `path` or empties it, writes its first line, and waits until its name is on the disk.
  Status Create(const std::string& path, std::string_view first_line);
  [[nodiscard]] bool IsOpen() const { return file_.IsOpen(); }
  /// Appends a line, with its line end; a part that the device took is taken back when it fails.
  Status Write(std::string_view line);
  /// Waits until all lines are on the disk; writes them a second time where that fails. When that fails too, the file
  /// is cut to what had reached the disk before.
  Status Sync();
  /// Lines that failed syncs have taken back since the file was opened.
  [[nodiscard]] std::int64_t taken_back() const { return taken_back_; }
  /// Closes without syncing; does nothing when closed.
  void Close();

 private:
  void Begin();

  OutputFile file_;
  std::int64_t synced_size_ = 0;
  std::string unsynced_;
  std::int64_t taken_back_ = 0;
};

}  // namespace corvane
