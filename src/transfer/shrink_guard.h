#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// Keeps a file that is about to be replaced by a shorter one.
///
/// Readings are only ever appended, so a file that has become shorter was cut on its way or is another one. Until it is
/// known that the former file is not needed it stays as "<file>.before": a fetch that was killed half-way is guarded by
/// the next one.
class ShrinkGuard {
 public:
  /// Gives the file, if there is one, a second name, unless a longer one has it already. A failure throws
  /// `RunTimeError`.
  explicit ShrinkGuard(std::string as_File);
  ~ShrinkGuard();
  ShrinkGuard(const ShrinkGuard&) = delete;
  ShrinkGuard& operator=(const ShrinkGuard&) = delete;

  /// When the file is shorter now, keeps the former one as "<file>.old" and returns that name; else an empty text.
  ///
  /// A longer file that was kept before stays; a failure throws `RunTimeError` and leaves "<file>.before".
  [[nodiscard]] std::string KeepIfShorter();

 private:
  /// True when the file has all that the former one had, or more.
  [[nodiscard]] bool IsWhole() const;

  std::string file_;
  std::string former_;
  std::int64_t size_ = -1;  ///< of the former file, -1 when there was none
  bool kept_ = false;
};

}  // namespace corvane
