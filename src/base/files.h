// Files and folders: the one place that talks to the file system.
//
// Every call takes a full path (it begins with "/") and refuses any other with a text that says so, so that nothing is
// ever resolved against the current folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "base/status.h"

namespace corvane {

/// The permission of files that hold a password.
inline constexpr unsigned kOwnerOnly = 0600;

/// What is known of a file or folder.
struct FileInfo {
  std::int64_t size = 0;  ///< bytes
  DateTime modified;      ///< local time
  bool is_folder = false;
};

/// One entry of a folder, by its bare name.
struct FolderEntry {
  std::string name;
  FileInfo info;
};

/// What stands at `path`; none when nothing does or it cannot be examined.
[[nodiscard]] std::optional<FileInfo> ExamineFile(const std::string& path);
/// The regular files of a folder and links to such whose name `wanted` takes, in no particular order; what vanishes
/// meanwhile is left out.
Status ListFiles(const std::string& folder, const std::function<bool(std::string_view name)>& wanted,
                 std::vector<FolderEntry>& entries);
/// Creates one folder and lets its parent reach the disk; the parent must exist. One that exists already is a success.
Status MakeFolder(const std::string& path);
Status RemoveFile(const std::string& path);
/// Lets `second` be another name of the file `path`, in place of what bears it; where there are no such names, a copy
/// that is on the disk. After a failure `second` is not there.
Status GiveSecondName(const std::string& path, const std::string& second);
/// What `path` leads to, all links followed. A link that another user made is refused.
Status FollowLink(const std::string& path, std::string& target);
/// Reads a whole file of at most `limit` bytes; a longer one fails.
Status ReadFile(const std::string& path, std::string& contents, std::int64_t limit);
/// Lets a log go over to another file: `path` becomes `path`.1, that one .2 and so on; `kept` of them stay.
///
/// After a failure `path` is where it was.
Status RotateFile(const std::string& path, int kept);

/// A file being written, unbuffered: a `Write` that succeeded has reached the kernel.
class OutputFile {
 public:
  OutputFile() = default;
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Opens `path` for appending, creating it with `mode` when missing; `kOwnerOnly` is also given to one that is there.
  /// A link that another user made is refused.
  Status OpenForAppending(const std::string& path, unsigned mode = 0644);
  /// Creates `path` or empties it.
  Status Create(const std::string& path, unsigned mode = 0644);
  [[nodiscard]] bool IsOpen() const { return descriptor_ >= 0; }
  [[nodiscard]] const std::string& path() const { return path_; }
  /// Writes all of `text`. When the device takes only a part of it (full disk), the part is taken back and it fails.
  Status Write(std::string_view text);
  /// Takes over the permissions of the file `path` and, where that can be, its owner.
  Status TakeOwnerAndMode(const std::string& path);
  /// Waits until what was written is on the disk.
  Status Sync();
  /// Closes without syncing; does nothing when closed.
  void Close();

 private:
  Status Open(const std::string& path, int flags, unsigned mode);

  int descriptor_ = -1;
  std::string path_;
};

/// What tells whether a file is the one that was looked at before.
struct FileIdentity {
  std::uint64_t inode = 0;
  std::int64_t size = 0;      ///< bytes
  std::int64_t modified = 0;  ///< nanoseconds since 1970
};

/// A file being read in pieces of the reader's choice.
class InputFile {
 public:
  InputFile() = default;
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  /// Opens a regular file; anything else is refused.
  Status Open(const std::string& path);
  void Close();
  [[nodiscard]] bool IsOpen() const { return descriptor_ >= 0; }
  /// What the file was when it was opened.
  [[nodiscard]] const FileIdentity& identity() const { return identity_; }
  /// Reads `length` bytes at `offset`; `got` is how many there were.
  Status Read(std::int64_t offset, char* bytes, std::size_t length, std::size_t& got) const;

 private:
  int descriptor_ = -1;
  std::string path_;
  FileIdentity identity_;
};

/// Reads up to `length` bytes at `offset`; fewer only at the end of the file.
Status ReadAt(const std::string& path, std::int64_t offset, std::size_t length, std::string& bytes);
/// Writes `bytes` over what stands at `offset` and behind it, and syncs them.
Status WriteAt(const std::string& path, std::int64_t offset, std::string_view bytes);
/// Waits until what the file holds is on the disk.
Status SyncFile(const std::string& path);
/// Waits until the name of the file or folder `path` is on the disk: syncs the folder that it stands in.
Status SyncFolderOf(const std::string& path);
/// Cuts the file to `size` bytes and syncs it.
Status CutFile(const std::string& path, std::int64_t size);

}  // namespace corvane
