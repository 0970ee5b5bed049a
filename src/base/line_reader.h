#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/files.h"
#include "base/status.h"

namespace corvane {

/// Reads a text file line by line in blocks, with bounded memory whatever the file's size.
///
/// Lines end with LF or CR LF; neither is part of the line. A line longer than `kLongestLine` is delivered cut, its
/// rest dropped.
class LineReader {
 public:
  static constexpr std::size_t kLongestLine = 64 * 1024;

  LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  Status Open(const std::string& path);
  /// Delivers the next line, valid until the next call. False at the end of the file or after a read error.
  [[nodiscard]] bool Next(std::string_view& line);
  /// True when the line just delivered had its line end (the last one of a torn file has not).
  [[nodiscard]] bool terminated() const { return terminated_; }
  /// Ok unless reading failed.
  [[nodiscard]] const Status& status() const { return status_; }
  void Close();

 private:
  /// Moves what is left of the block to its front.
  void MoveToFront();
  /// Reads behind what the block holds until it is full; false when nothing more came.
  bool ReadMore();
  /// The next line feed, nullptr when the line is too long or the file ends; `length` is the line's so far.
  const char* FindLineEnd(std::size_t& length);
  /// Drops what follows up to the line's end, keeping the first `kLongestLine` bytes of the block; false at the file's
  /// end.
  bool DropRest();

  InputFile file_;
  std::int64_t offset_ = 0;  ///< bytes that were read
  std::unique_ptr<char[]> block_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool terminated_ = false;
  bool at_end_ = false;
  Status status_;
};

}  // namespace corvane
