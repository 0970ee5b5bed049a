// Archives of many files, each under a name that may hold folders.
//
// Calls wait for the disk.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/status.h"

namespace corvane {

/// What goes into an archive.
struct ArchiveSource {
  std::string name;  ///< in the archive; folders are separated by "/"
  std::string file;  ///< full path; empty: `text` is what goes in
  std::string text;
};

/// What an archive holds.
struct ArchiveEntry {
  std::string name;
  std::int64_t size = 0;  ///< bytes
  std::uint32_t crc = 0;  ///< CRC-32 of them
};

class Archive {
 public:
  virtual ~Archive() = default;
  Archive() = default;
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;

  /// Puts the sources into the file `as_Path`, made when it is missing and readable for its owner only; entries that
  /// are there stay. Of a file that is written or replaced meanwhile, what it held when its turn came. After a failure
  /// the file is as it was.
  /// Failures call it `as_Name`.
  virtual Status Add(const std::string& as_Path, const std::string& as_Name,
                     const std::vector<ArchiveSource>& av_Sources) = 0;
  /// Opens for reading; closed by the next call, or with this object. A file that is no whole archive fails.
  virtual Status Open(const std::string& as_Path) = 0;
  /// What the open archive says that it holds, in its order; what it does not keep to fails when it is read.
  virtual Status List(std::vector<ArchiveEntry>& av_Entries) = 0;
  /// Reads a whole entry of at most `al_Limit` bytes.
  virtual Status Read(const std::string& as_Name, std::int64_t al_Limit, std::string& as_Text) = 0;
  /// Reads an entry to its end into the file `as_Target` of that mode, which is synced (its
  /// name is not); an empty one: to see that it is whole. Bytes that are not those of the checksum fail.
  virtual Status Extract(const std::string& as_Name, const std::string& as_Target, unsigned al_Mode) = 0;
};

}  // namespace corvane
