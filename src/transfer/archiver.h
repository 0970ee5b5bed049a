#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/zip_component.h"
#include "trace/trace.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Packs and unpacks one file, with status line, progress bar and report. What runs **yields**.
class Archiver {
 public:
  static constexpr std::string_view kExtension = "zip";

  /// Takes over the component's progress handlers; all must outlive this object.
  Archiver(ZipComponent& av_Zip, ProgressBars& av_Bars, Messages& av_Messages, Trace& av_Trace);
  Archiver(const Archiver&) = delete;
  Archiver& operator=(const Archiver&) = delete;

  /// Packs a file; the component's result, a failure has been shown.
  std::int16_t Zip(const std::string& as_File, const std::string& as_Archive, const std::string& as_Status);
  /// Unpacks one file of an archive into a folder, over an existing one; the component's result, a failure has been
  /// shown.
  std::int16_t Unzip(const std::string& as_Archive, const std::string& as_File, const std::string& as_Folder);
  /// The component's words about a run with that result; empty after a success.
  [[nodiscard]] std::string WhyNotPacked(std::int16_t ai_Result) const;
  /// Ends what runs, within a second.
  void Abort() { zip_.Abort(); }

 private:
  std::int16_t Run(std::int16_t (ZipComponent::*av_Run)(), const std::string& as_Status);

  ZipComponent& zip_;
  ProgressBars& bars_;
  Messages& messages_;
  Trace& trace_;
};

}  // namespace corvane
