// Files that appear under their name only when they are whole.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

#include "base/files.h"
#include "base/status.h"

namespace corvane {

/// Writes `contents` to a `ReplacementFile` and puts it in place: temporary file, sync, rename, sync of the folder.
///
/// `mode` is the permission of the file. After a failure the old file is whole and the temporary one is gone.
Status WriteFileAtomically(const std::string& path, std::string_view contents, unsigned mode = 0644);

/// A file that appears under its name only when it is whole: written as "<name>.part", renamed by `Commit`.
///
/// Buffered. Destroyed without `Commit`, it leaves nothing behind and the old file as it was.
class ReplacementFile {
 public:
  explicit ReplacementFile(std::string path, unsigned mode = 0644);
  ~ReplacementFile();
  ReplacementFile(const ReplacementFile&) = delete;
  ReplacementFile& operator=(const ReplacementFile&) = delete;

  Status Open();
  /// Opens for another version of the file that is there: it keeps its permissions and, where that can be, its owner;
  /// a link stays and what it leads to is replaced.
  Status OpenInPlace();
  /// The buffer to append to; call `FlushWhenFull` after each row.
  std::string& buffer() { return buffer_; }
  /// Hands the buffer to the kernel once it holds 64 kB or more.
  Status FlushWhenFull() { return buffer_.size() < kFlushSize ? Status::Ok() : Flush(); }
  /// Flushes, syncs and renames over the final name.
  Status Commit();
  /// The new file bears its name, also where a power cut may still bring the former one back because `Commit` failed
  /// behind the renaming.
  [[nodiscard]] bool InPlace() const { return in_place_; }

  /// Takes away what every file not committed has so far: the process ends without destroying them.
  static void RemoveUnfinished();

 private:
  static constexpr std::size_t kFlushSize = 64 * 1024;

  Status Flush();
  void Discard();

  std::string path_;
  std::string temporary_;
  unsigned mode_;
  std::string buffer_;
  OutputFile file_;
  ReplacementFile* older_;  ///< the one that was made before this one
  // Need no construction: the end of the process asks for them.
  static inline std::mutex list_;  ///< files are made and destroyed in several threads
  static inline ReplacementFile* newest_ = nullptr;
  bool in_place_ = false;
  Status failure_;  ///< the first write that failed; nothing is committed after it
};

}  // namespace corvane
