#pragma once

#include <cstddef>
#include <memory>

#include <zip.h>

namespace corvane {

inline constexpr std::size_t kZipBlock = 64 * 1024;  ///< bytes that are read of an entry at a time
inline constexpr int kDeflateLevel = 6;

struct CloseZipEntry {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};
/// An entry that is open for reading.
using ZipEntry = std::unique_ptr<zip_file_t, CloseZipEntry>;

}  // namespace corvane
