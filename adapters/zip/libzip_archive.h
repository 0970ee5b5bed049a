#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/archive.h"
#include "zip/zip_run.h"

namespace corvane {

/// Archives of many files by libzip.
class LibzipArchive : public Archive {
 public:
  /// `cancelled` is asked again and again while an archive is written; true ends that with a failure.
  explicit LibzipArchive(std::function<bool()> cancelled = {}) : cancelled_(std::move(cancelled)) {}

  Status Add(const std::string& path, const std::string& name, const std::vector<ArchiveSource>& sources) override;
  Status Open(const std::string& path) override;
  Status List(std::vector<ArchiveEntry>& entries) override;
  Status Read(const std::string& name, std::int64_t limit, std::string& text) override;
  Status Extract(const std::string& name, const std::string& target, unsigned mode) override;

 private:
  using Take = std::function<Status(const char* bytes, std::size_t length)>;

  /// Hands the bytes of an entry to `take`, block by block, and holds them against size and checksum.
  Status Walk(const std::string& name, const Take& take);

  std::function<bool()> cancelled_;
  std::string path_;
  ArchiveHandle archive_;
};

}  // namespace corvane
