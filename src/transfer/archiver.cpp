#include "transfer/archiver.h"

#include "transfer/mxceed.h"

namespace corvane {
namespace {

constexpr std::int32_t kReplaceExisting = 2;

}  // namespace

Archiver::Archiver(ZipComponent& av_Zip, ProgressBars& av_Bars, Messages& av_Messages, Trace& av_Trace)
    : zip_(av_Zip), bars_(av_Bars), messages_(av_Messages), trace_(av_Trace) {
  zip_.SetProgressHandlers([this](std::int64_t total) { bars_.Download.Initialise(total); },
                           [this](std::int64_t done) { bars_.Download.SetValue(done); });
}

std::int16_t Archiver::Zip(const std::string& as_File, const std::string& as_Archive, const std::string& as_Status) {
  zip_.SetPreservePaths(false);
  zip_.SetFilesToProcess(as_File);
  zip_.SetZipFilename(as_Archive);
  return Run(&ZipComponent::Zip, as_Status);
}

std::int16_t Archiver::Unzip(const std::string& as_Archive, const std::string& as_File, const std::string& as_Folder) {
  zip_.SetPreservePaths(false);
  zip_.SetZipFilename(as_Archive);
  zip_.SetFilesToProcess(as_File);
  zip_.SetUnzipFolder(as_Folder);
  zip_.SetOverwrite(kReplaceExisting);
  return Run(&ZipComponent::Unzip, "Unzip " + as_Archive);
}

std::int16_t Archiver::Run(std::int16_t (ZipComponent::*av_Run)(), const std::string& as_Status) {
  trace_.Status(as_Status);
  bars_.Download.SetProcessText(as_Status);
  bars_.Download.Initialise(0);
  const std::int16_t result = (zip_.*av_Run)();
  if (result != kZipOk) ShowZipError(result, as_Status, zip_, messages_, trace_);
  bars_.Download.Hide();
  return result;
}

std::string Archiver::WhyNotPacked(std::int16_t ai_Result) const {
  if (ai_Result == kZipOk) return {};
  const std::string words = zip_.LastErrorText();
  return words.empty() ? "result " + std::to_string(ai_Result) + " of the archiver" : words;
}

}  // namespace corvane
