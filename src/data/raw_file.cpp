#include "data/raw_file.h"

#include <algorithm>

#include "base/files.h"
#include "base/line_reader.h"
#include "base/text.h"
#include "data/raw_line.h"

namespace corvane {
namespace {

constexpr std::int64_t kTailBytes = 1024;
constexpr std::int64_t kSearchBytes = std::int64_t{64} * 1024;
constexpr std::size_t kShortestReading = 11;
constexpr int kMostProblems = 5;

std::string ReadBlock(const std::string& as_File, std::int64_t al_Begin, std::int64_t al_End) {
  std::string block;
  Require(ReadAt(as_File, al_Begin, static_cast<std::size_t>(al_End - al_Begin), block));
  return block;
}

/// True when a line has the shape of a reading: more than two items and nothing that a power cut left.
bool HasReadingShape(std::string_view as_Line) {
  return std::count(as_Line.begin(), as_Line.end(), ',') >= 2 && as_Line.find('\0') == std::string_view::npos;
}

std::optional<DateTime> DateOfLine(std::string_view as_Line) {
  return ParseReadingDate(as_Line.substr(0, as_Line.find(',')));
}

/// Takes the lines of blocks that come from the end of a file to its beginning.
class BackwardSearch {
 public:
  /// Looks through the block before the one given last; true when it holds the last reading.
  bool Take(std::string as_Block, LastDateResult& av_Result) {
    as_Block += front_;
    std::size_t end = as_Block.size();
    for (std::size_t mark = as_Block.rfind('\n'); mark != std::string::npos; mark = Before(as_Block, mark)) {
      const std::string_view line = std::string_view(as_Block).substr(mark + 1, end - mark - 1);
      if (whole_ && TakeLine(line, av_Result)) return true;
      whole_ = true;
      end = mark;
    }
    front_.assign(as_Block, 0, end);
    whole_ = whole_ && front_.size() <= LineReader::kLongestLine;
    if (!whole_) front_.clear();
    return false;
  }

 private:
  static std::size_t Before(const std::string& as_Block, std::size_t al_Mark) {
    return al_Mark == 0 ? std::string::npos : as_Block.rfind('\n', al_Mark - 1);
  }
  static bool TakeLine(std::string_view as_Line, LastDateResult& av_Result) {
    if (!as_Line.empty() && as_Line.back() == '\r') as_Line.remove_suffix(1);
    if (!HasReadingShape(as_Line)) return false;
    const auto date = DateOfLine(as_Line);
    if (!date) return false;
    av_Result.last_date = *date;
    av_Result.line_text = as_Line;
    return true;
  }

  std::string front_;   ///< the end of a line that begins in an earlier block
  bool whole_ = false;  ///< the line that is being put together has its line end and is short enough
};

LastDateResult ReadBackwards(const std::string& as_File, std::int64_t al_Size, const std::function<bool()>& av_Poll) {
  LastDateResult result;
  BackwardSearch search;
  std::int64_t wanted = kTailBytes;
  for (std::int64_t end = al_Size; end > 0;) {
    const std::int64_t begin = std::max<std::int64_t>(0, end - wanted);
    std::string block = ReadBlock(as_File, begin, end);
    if (begin == 0) block.insert(0, 1, '\n');
    if (search.Take(std::move(block), result) || !av_Poll()) break;
    end = begin;
    wanted = kSearchBytes;
  }
  return result;
}

LastDateResult ReadForwards(const std::string& as_File, const std::function<bool()>& av_Poll) {
  LastDateResult result;
  LineReader reader;
  Require(reader.Open(as_File));
  std::string_view line;
  int problems = 0;
  for (std::int64_t number = 1; problems <= kMostProblems && reader.Next(line); ++number) {
    if (number > 1 && line.size() >= kShortestReading && reader.terminated() && HasReadingShape(line)) {
      if (const auto date = DateOfLine(line)) {
        result.last_date = *date;
        result.line_text = line;
      } else {
        ++problems;
        result.problems += "Line: " + std::to_string(number) + " " + std::string(line) + std::string(kLineBreak);
      }
    }
    if (!av_Poll()) break;
  }
  Require(reader.status());
  return result;
}

}  // namespace

LastDateResult ReadLastDate(const std::string& as_File, const std::function<bool()>& av_Poll) {
  const auto info = ExamineFile(as_File);
  if (!info) return {};
  return info->size < kTailBytes ? ReadForwards(as_File, av_Poll) : ReadBackwards(as_File, info->size, av_Poll);
}

}  // namespace corvane
