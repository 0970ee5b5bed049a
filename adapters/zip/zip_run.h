// What a run on its own thread shares with the loop's thread, and how it ends.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include <zip.h>

#include "base/status.h"
#include "platform/zip_component.h"

namespace corvane {

/// Written by the run, read by the loop's thread; `cancelled` the other way round.
struct ZipProgress {
  std::atomic<std::int64_t> total{-1};  ///< bytes, -1 until it is known
  std::atomic<std::int64_t> done{0};
  std::atomic<bool> cancelled{false};
};

/// The end of a run: its result code and, after a failure, the words for the log.
struct ZipOutcome {
  ZipResult code = kZipOk;
  std::string text;
};

/// An archive open for a run; let go of without a change to the file.
struct DiscardArchive {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ArchiveHandle = std::unique_ptr<zip_t, DiscardArchive>;

/// A failure of the library; `path` is the file it was about.
[[nodiscard]] ZipOutcome OutcomeOf(zip_error_t& error, const std::string& path);
/// One that only a code of the library tells.
[[nodiscard]] ZipOutcome OutcomeOf(int library_code, const std::string& path);
/// A failure of the file system; `otherwise` is the code unless there is no room left.
[[nodiscard]] ZipOutcome OutcomeOf(const Status& failure, ZipResult otherwise);
[[nodiscard]] ZipOutcome AbortedOutcome(const std::string& path);
/// Opens an archive; null with the failure in `outcome`.
[[nodiscard]] ArchiveHandle OpenArchive(const std::string& path, int flags, ZipOutcome& outcome);

}  // namespace corvane
