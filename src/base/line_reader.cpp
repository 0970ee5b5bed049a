#include "base/line_reader.h"

#include <algorithm>
#include <cstring>

namespace corvane {
namespace {

constexpr std::size_t kLineBlock = 128 * 1024;

}  // namespace

LineReader::LineReader() : block_(std::make_unique_for_overwrite<char[]>(kLineBlock)) {}

Status LineReader::Open(const std::string& path) {
  begin_ = end_ = 0;
  offset_ = 0;
  at_end_ = terminated_ = false;
  status_ = Status::Ok();
  return file_.Open(path);
}

void LineReader::MoveToFront() {
  std::memmove(block_.get(), block_.get() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
}

bool LineReader::ReadMore() {
  if (at_end_ || !file_.IsOpen()) return false;
  std::size_t got = 0;
  status_ = file_.Read(offset_, block_.get() + end_, kLineBlock - end_, got);
  offset_ += static_cast<std::int64_t>(got);
  end_ += got;
  at_end_ = got == 0;
  return got > 0 && status_.ok();
}

const char* LineReader::FindLineEnd(std::size_t& length) {
  length = 0;
  while (true) {
    const char* const start = block_.get() + begin_;
    const void* const found = std::memchr(start + length, '\n', end_ - begin_ - length);
    if (found != nullptr) {
      length = static_cast<std::size_t>(static_cast<const char*>(found) - start);
      return static_cast<const char*>(found);
    }
    length = end_ - begin_;
    if (length > kLongestLine) return nullptr;
    MoveToFront();
    if (!ReadMore()) return nullptr;
  }
}

bool LineReader::DropRest() {
  while (true) {
    const char* const rest = block_.get() + begin_;
    const void* const found = std::memchr(rest, '\n', end_ - begin_);
    if (found != nullptr) {
      begin_ += static_cast<std::size_t>(static_cast<const char*>(found) - rest) + 1;
      return true;
    }
    begin_ = end_ = kLongestLine;
    if (!ReadMore()) return false;
  }
}

bool LineReader::Next(std::string_view& line) {
  std::size_t length = 0;
  terminated_ = FindLineEnd(length) != nullptr;
  if (!status_.ok() || (!terminated_ && length == 0)) return false;
  if (!terminated_ && length > kLongestLine) {
    MoveToFront();
    line = {block_.get(), kLongestLine};
    begin_ += kLongestLine;
    terminated_ = DropRest();
  } else {
    line = {block_.get() + begin_, std::min(length, kLongestLine)};
    begin_ += length + (terminated_ ? 1 : 0);
  }
  if (line.ends_with('\r')) line.remove_suffix(1);
  return status_.ok();
}

void LineReader::Close() {
  file_.Close();
}

}  // namespace corvane
