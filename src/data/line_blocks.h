#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>

#include "base/files.h"
#include "base/line_reader.h"

namespace corvane {

/// Reads the whole lines of a file in blocks; a torn last line is none.
///
/// A line longer than `LineReader::kLongestLine` or with a NUL is left out. Line ends are LF or CR LF.
class LineBlocks {
 public:
  /// So many bytes behind the end of a line may be read.
  static constexpr std::size_t kSlack = 128;

  LineBlocks(const InputFile& av_File, std::int64_t al_Offset)
      : file_(av_File), block_(std::make_unique<char[]>(kBlock + kSlack)), offset_(al_Offset) {}

  /// Reads the next block; false at the end of the file. Throws `RunTimeError` when it cannot be read.
  [[nodiscard]] bool Read() {
    std::memmove(block_.get(), block_.get() + at_, end_ - at_);
    end_ -= at_;
    at_ = 0;
    if (end_ == kBlock) {
      dropped_ += static_cast<std::int64_t>(end_);
      end_ = 0;
    }
    std::size_t got = 0;
    Require(file_.Read(offset_ + dropped_ + static_cast<std::int64_t>(end_), block_.get() + end_, kBlock - end_, got));
    end_ += got;
    holds_nul_ = std::memchr(block_.get(), 0, end_) != nullptr;
    return got > 0;
  }
  /// The next line of the block, without its end; false when the rest of the block is none.
  [[nodiscard]] bool Next(std::string_view& av_Line) {
    while (true) {
      const char* const begin = block_.get() + at_;
      const auto* const feed = static_cast<const char*>(std::memchr(begin, '\n', end_ - at_));
      if (feed == nullptr) return false;
      const auto length = static_cast<std::size_t>(feed - begin);
      at_ += length + 1;
      offset_ += static_cast<std::int64_t>(length) + 1 + dropped_;
      const bool whole = dropped_ == 0 && length <= LineReader::kLongestLine;
      dropped_ = 0;
      av_Line = {begin, length - (length > 0 && feed[-1] == '\r' ? 1 : 0)};
      if (whole && !(holds_nul_ && av_Line.find('\0') != std::string_view::npos)) return true;
    }
  }
  /// Where the line behind the last one begins in the file.
  [[nodiscard]] std::int64_t offset() const { return offset_; }

 private:
  static constexpr std::size_t kBlock = std::size_t{256} * 1024;

  const InputFile& file_;
  std::unique_ptr<char[]> block_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
  std::int64_t offset_ = 0;
  std::int64_t dropped_ = 0;  ///< bytes of a line without an end, up to the block
  bool holds_nul_ = false;
};

}  // namespace corvane
