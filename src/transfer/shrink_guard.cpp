#include "transfer/shrink_guard.h"

#include <utility>

#include "base/files.h"
#include "base/status.h"

namespace corvane {
namespace {

/// The size of a file, -1 when there is none.
std::int64_t SizeOf(const std::string& path) {
  const auto found = ExamineFile(path);
  return found && !found->is_folder ? found->size : -1;
}

}  // namespace

ShrinkGuard::ShrinkGuard(std::string as_File) : file_(std::move(as_File)), former_(file_ + ".before") {
  size_ = SizeOf(former_);
  if (size_ < 0 || IsWhole()) {
    size_ = SizeOf(file_);
    if (size_ >= 0) Require(GiveSecondName(file_, former_));
  }
}

ShrinkGuard::~ShrinkGuard() {
  if (size_ >= 0 && (kept_ || IsWhole())) static_cast<void>(RemoveFile(former_));
}

bool ShrinkGuard::IsWhole() const {
  return SizeOf(file_) >= size_;
}

std::string ShrinkGuard::KeepIfShorter() {
  if (IsWhole()) return {};
  const std::string kept = file_ + ".old";
  if (SizeOf(kept) < size_) Require(GiveSecondName(former_, kept));
  kept_ = true;
  return kept;
}

}  // namespace corvane
