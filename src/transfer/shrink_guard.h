#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// Keeps a raw file that is about to be replaced by a shorter one.
///
/// Readings are only ever appended, so a raw file that has become shorter was cut on its way or is another one.
class ShrinkGuard {
 public:
  /// Gives the file, if there is one, a second name; an empty name guards nothing. A failure throws `RunTimeError`.
  explicit ShrinkGuard(std::string as_File);
  ~ShrinkGuard();
  ShrinkGuard(const ShrinkGuard&) = delete;
  ShrinkGuard& operator=(const ShrinkGuard&) = delete;

  /// When the file is shorter now, keeps the former one as "<file>.old" and returns that name; else an empty text.
  ///
  /// A longer file that was kept before stays; a failure throws `RunTimeError`.
  [[nodiscard]] std::string KeepIfShorter();

 private:
  std::string file_;
  std::string former_;
  std::int64_t size_ = -1;  ///< of the former file, -1 when there was none
};

}  // namespace corvane
