#include "data/raw_repair.h"

#include <algorithm>

#include "base/files.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/numbers.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "data/raw_items.h"
#include "data/raw_line.h"

namespace corvane {
namespace {

constexpr std::int64_t kPartBytes = std::int64_t{64} * 1024;
constexpr std::int64_t kMostToCut = std::int64_t{64} * 1024;
constexpr std::size_t kFewestHeaderItems = 6;

std::string BlockOf(const std::string& as_File, std::int64_t al_Begin, std::int64_t al_End) {
  std::string block;
  Require(ReadAt(as_File, al_Begin, static_cast<std::size_t>(al_End - al_Begin), block));
  return block;
}

/// The position behind the last line end of a file of `al_Size` bytes, 0 when it has none; the text behind it, without
/// NULs, is put in front of `as_Tail`.
std::int64_t EndOfLastLine(const std::string& as_File, std::int64_t al_Size, std::string& as_Tail) {
  for (std::int64_t end = al_Size; end > 0;) {
    const std::int64_t begin = std::max<std::int64_t>(0, end - kPartBytes);
    const std::string block = BlockOf(as_File, begin, end);
    const std::size_t behind = block.rfind('\n') + 1;
    std::string text = block.substr(behind);
    std::erase(text, '\0');
    as_Tail.insert(0, text);
    if (as_Tail.size() > kLongestTail) {
      throw NoRawFile(as_File + " is no raw file: too much text stands behind its last line end. Move it away");
    }
    if (behind > 0) return begin + static_cast<std::int64_t>(behind);
    end = begin;
  }
  return 0;
}

/// A name beside `as_File` that no file has.
std::string NameForCut(const std::string& as_File, DateTime av_Now) {
  const std::string name = as_File + ".cut-" + FormatDate(av_Now, "yyyymmddHHNNSS");
  std::string free = name;
  for (int number = 2; ExamineFile(free); ++number) free = name + "-" + std::to_string(number);
  return free;
}

}  // namespace

std::optional<std::string> RepairTornTail(const std::string& as_File) {
  const auto info = ExamineFile(as_File);
  if (!info) return std::nullopt;
  std::string tail;
  const std::int64_t whole = EndOfLastLine(as_File, info->size, tail);
  if (whole == info->size) return std::nullopt;
  Require(CutFile(as_File, whole));
  return tail;
}

std::optional<RawHoles::Hole> RawHoles::Mend(const std::string& as_File, DateTime av_Now,
                                             const std::function<bool()>& av_Poll) {
  const auto info = ExamineFile(as_File);
  if (!info) return std::nullopt;
  Whole& whole = whole_[as_File];
  if (whole.bytes > info->size) whole = {};
  while (whole.bytes < info->size) {
    const std::string block = BlockOf(as_File, whole.bytes, std::min(info->size, whole.bytes + kPartBytes));
    if (block.empty()) return std::nullopt;
    const std::size_t nul = block.find('\0');
    const std::string_view good = std::string_view(block).substr(0, nul);
    whole.lines += std::count(good.begin(), good.end(), '\n');
    if (const std::size_t end = good.rfind('\n'); end != std::string_view::npos) {
      whole.line_begin = whole.bytes + static_cast<std::int64_t>(end) + 1;
    }
    whole.bytes += static_cast<std::int64_t>(good.size());
    if (nul != std::string::npos) break;
    if (!av_Poll()) return std::nullopt;
  }
  if (whole.bytes >= info->size) return std::nullopt;
  Hole hole{whole.lines + 1, {}};
  if (whole.bytes < info->size - kMostToCut) return hole;
  hole.kept_as = NameForCut(as_File, av_Now);
  // In this order a power cut between the two steps leaves the lines in both files and in none never.
  Require(WriteFileAtomically(hole.kept_as, BlockOf(as_File, whole.line_begin, info->size)));
  Require(CutFile(as_File, whole.line_begin));
  whole.bytes = whole.line_begin;
  return hole;
}

bool CutLastLine(const std::string& as_File, const std::string& as_Line) {
  const auto info = ExamineFile(as_File);
  for (const std::string_view line_end : {kLineBreak, std::string_view("\n")}) {
    const std::string line = as_Line + std::string(line_end);
    const std::int64_t begin = info ? info->size - static_cast<std::int64_t>(line.size()) : 0;
    // A line stands behind another one's end.
    if (begin < 1 || BlockOf(as_File, begin - 1, info->size) != "\n" + line) continue;
    Require(CutFile(as_File, begin));
    return true;
  }
  return false;
}

std::string FirstLineOf(const std::string& as_File) {
  LineReader reader;
  std::string_view line;
  if (!reader.Open(as_File).ok() || !reader.Next(line)) return {};
  return std::string(line);
}

bool IsRightHeader(std::string_view as_Line) {
  RawLine line;
  SplitLine(as_Line, line);
  return line.checksum_good && line.items.size() >= kFewestHeaderItems &&
         !ParseReadingDate(line.items[reading_item::kDate]);
}

std::optional<std::string> SiteIDOf(std::string_view as_Line) {
  if (!IsRightHeader(as_Line)) return std::nullopt;
  RawLine line;
  SplitLine(as_Line, line);
  return std::string(line.items[header_item::kSiteID]);
}

bool IsSameSiteID(std::string_view as_One, std::string_view as_Other) {
  const auto one = ParseNumber(as_One);
  return Trim(as_One) == Trim(as_Other) || (one && one == ParseNumber(as_Other));
}

bool ReplaceFirstLine(const std::string& as_File, std::string_view as_Header, const std::function<bool()>& av_Poll) {
  const auto info = ExamineFile(as_File);
  ReplacementFile file(as_File);
  Require(file.OpenInPlace());
  file.buffer() = std::string(as_Header) + std::string(kLineBreak);
  bool in_first = true;
  for (std::int64_t at = 0; info && at < info->size;) {
    std::string block = BlockOf(as_File, at, std::min(info->size, at + kPartBytes));
    if (block.empty()) throw RunTimeError(as_File + " became shorter while it was read");
    at += static_cast<std::int64_t>(block.size());
    if (in_first) {
      const std::size_t end = block.find('\n');
      in_first = end == std::string::npos;
      block.erase(0, in_first ? end : end + 1);
    }
    file.buffer() += block;
    Require(file.FlushWhenFull());
    if (!av_Poll()) return false;
  }
  Require(file.Commit());
  return true;
}

}  // namespace corvane
