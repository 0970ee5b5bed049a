#include "zip/libzip_component.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <string_view>
#include <utility>

#include "base/files.h"
#include "base/paths.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "zip/zip_reader.h"
#include "zip/zip_writer.h"

namespace corvane {
namespace {

constexpr std::int64_t kProgressSteps = 50;

bool IsFullPath(const std::string& path) {
  return path.starts_with('/') && path.find('\0') == std::string::npos;
}

/// A name that stands for a file in a folder and nothing else.
bool IsPlainName(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && !HasControlCharacter(name);
}

}  // namespace

void LibzipComponent::SetProgressHandlers(std::function<void(std::int64_t)> on_total,
                                          std::function<void(std::int64_t)> on_done) {
  on_total_ = std::move(on_total);
  on_done_ = std::move(on_done);
}

std::int16_t LibzipComponent::Zip() {
  const std::string archive = archive_;
  const std::string source = files_;
  if (!IsFullPath(archive) || !IsFullPath(source) || !IsPlainName(FileNameOf(source)) || archive == source) {
    return End({kZipBadProperties, "cannot zip \"" + source + "\" into \"" + archive + "\""});
  }
  return Run([this, archive, source] {
    Sweep(archive);
    return ZipOneFile(archive, source, progress_);
  });
}

void LibzipComponent::Sweep(const std::string& archive) {
  constexpr std::chrono::hours kBetween(24);
  const auto now = std::chrono::steady_clock::now();
  const auto [folder, first] = swept_folders_.try_emplace(std::string(FolderOf(archive)), now);
  if (!first && now - folder->second < kBetween) return;
  folder->second = now;
  RemoveForsaken(folder->first);
}

std::int16_t LibzipComponent::Unzip() {
  const std::string archive = archive_;
  const std::string name(FileNameOf(files_));
  if (!IsFullPath(archive) || !IsFullPath(folder_) || !IsPlainName(name)) {
    return End(
        {kZipBadProperties, "cannot unzip \"" + files_ + "\" from \"" + archive + "\" into \"" + folder_ + "\""});
  }
  const auto folder = ExamineFile(folder_);
  if (!folder || !folder->is_folder) return End({kZipCreateProblem, folder_ + ": there is no such folder"});
  ReplacementFile target(AddBackslash(folder_) + name);
  return Run([this, archive, name, &target] { return UnzipOneFile(archive, name, target, progress_); });
}

std::int16_t LibzipComponent::Run(const std::function<ZipOutcome()>& work) {
  if (std::exchange(running_, true)) return kZipBadProperties;
  progress_.total = -1;
  progress_.done = 0;
  progress_.cancelled = false;
  told_total_ = -1;
  told_done_ = 0;
  ZipOutcome outcome;
  try {
    loop_.Aside([&] { outcome = work(); }, [this] { TellProgress(false); });
  } catch (const std::exception& failure) {
    outcome = {kZipNoMemory, archive_ + ": " + failure.what()};
  }
  TellProgress(outcome.code == kZipOk);
  running_ = false;
  return End(outcome);
}

void LibzipComponent::TellProgress(bool at_end) {
  const std::int64_t total = progress_.total;
  if (total < 0) return;
  if (std::exchange(told_total_, total) < 0 && on_total_) on_total_(total);
  const std::int64_t done = at_end ? total : std::min<std::int64_t>(progress_.done, total);
  const std::int64_t step = at_end ? 1 : std::max<std::int64_t>(total / kProgressSteps, 1);
  if (done - told_done_ < step) return;
  told_done_ = done;
  if (on_done_) on_done_(done);
}

std::int16_t LibzipComponent::End(const ZipOutcome& outcome) {
  error_text_ = outcome.text;
  return outcome.code;
}

}  // namespace corvane
