// Zip archives by libzip.
//
// A run works on a thread of its own; the loop's thread only passes on how far it is.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "platform/event_loop.h"
#include "platform/zip_component.h"
#include "zip/zip_run.h"

namespace corvane {

class LibzipComponent : public ZipComponent {
 public:
  /// `loop` must outlive it.
  explicit LibzipComponent(EventLoop& loop) : loop_(loop) {}

  /// Changes nothing: entries always have bare names.
  void SetPreservePaths(bool /*preserve*/) override {}
  void SetZipFilename(const std::string& path) override { archive_ = path; }
  [[nodiscard]] const std::string& ZipFilename() const override { return archive_; }
  void SetFilesToProcess(const std::string& files) override { files_ = files; }
  void SetUnzipFolder(const std::string& folder) override { folder_ = folder; }
  /// Changes nothing: an existing file is always replaced.
  void SetOverwrite(std::int32_t /*overwrite*/) override {}

  [[nodiscard]] std::int16_t Zip() override;
  [[nodiscard]] std::int16_t Unzip() override;
  void Abort() override { progress_.cancelled = true; }

  [[nodiscard]] bool DiskWasNotEmpty() const override { return false; }
  [[nodiscard]] std::string LastErrorText() const override { return error_text_; }
  void SetProgressHandlers(std::function<void(std::int64_t)> on_total,
                           std::function<void(std::int64_t)> on_done) override;

 private:
  /// Runs `work` aside, tells how far it is and keeps its outcome; a second run at the same time is refused.
  std::int16_t Run(const std::function<ZipOutcome()>& work);
  /// Takes away what killed runs left in the archive's folder, once a day.
  void Sweep(const std::string& archive);
  void TellProgress(bool at_end);
  std::int16_t End(const ZipOutcome& outcome);

  EventLoop& loop_;
  std::string archive_;
  std::string files_;
  std::string folder_;
  std::string error_text_;
  std::function<void(std::int64_t)> on_total_;
  std::function<void(std::int64_t)> on_done_;
  ZipProgress progress_;
  std::int64_t told_total_ = -1;
  std::int64_t told_done_ = 0;
  bool running_ = false;
  std::map<std::string, std::chrono::steady_clock::time_point> swept_folders_;  ///< and when; touched by the run only
};

}  // namespace corvane
