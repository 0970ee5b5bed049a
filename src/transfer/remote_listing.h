#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/internet_client.h"

namespace corvane {

/// One file of a remote folder.
struct RemoteFile {
  std::string name;
  std::int64_t size = 0;  ///< bytes
  std::string size_text;
  DateTime created;
  DateTime last_accessed;
  DateTime last_written;
};

/// Which time of a remote file.
enum RemoteFileTime : std::int16_t { kCreated = 0, kLastWritten = 1, kLastAccessed = 2 };

/// The folders and files of the last listing of a remote folder, each sorted by name without regard to letter case.
class RemoteListing {
 public:
  void Clear();
  void Add(const FindRecord& av_Record);
  void Sort();

  [[nodiscard]] std::int64_t FolderCount() const { return static_cast<std::int64_t>(folders_.size()); }
  /// The name of folder `al_Index`, 1 to `FolderCount()`; folder 0 is always "..".
  [[nodiscard]] std::string FolderName(std::int64_t al_Index) const;
  [[nodiscard]] bool HasFolder(std::string_view as_Name) const;
  [[nodiscard]] std::int64_t FileCount() const { return static_cast<std::int64_t>(files_.size()); }
  /// File `al_Index`, 1 to `FileCount()`.
  [[nodiscard]] const RemoteFile& File(std::int64_t al_Index) const {
    return files_[static_cast<std::size_t>(al_Index - 1)];
  }
  /// A time of file `al_Index` in the general date format; empty where the server does not tell it.
  [[nodiscard]] std::string FileTime(std::int64_t al_Index, RemoteFileTime av_Which) const;

 private:
  std::vector<std::string> folders_;
  std::vector<RemoteFile> files_;
};

}  // namespace corvane
