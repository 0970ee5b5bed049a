#include "transfer/shrink_guard.h"

#include <utility>

#include "base/files.h"
#include "base/status.h"

namespace corvane {

ShrinkGuard::ShrinkGuard(std::string as_File) : file_(std::move(as_File)), former_(file_ + ".before") {
  const auto found = ExamineFile(file_);
  if (!found || found->is_folder) return;
  Require(GiveSecondName(file_, former_));
  size_ = found->size;
}

ShrinkGuard::~ShrinkGuard() {
  if (size_ >= 0) static_cast<void>(RemoveFile(former_));
}

std::string ShrinkGuard::KeepIfShorter() {
  const auto now = ExamineFile(file_);
  if (size_ < 0 || (now && now->size >= size_)) return {};
  const std::string kept = file_ + ".old";
  const auto kept_before = ExamineFile(kept);
  if (!kept_before || kept_before->size < size_) Require(GiveSecondName(former_, kept));
  return kept;
}

}  // namespace corvane
