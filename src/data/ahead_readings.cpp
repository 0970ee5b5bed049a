#include "data/ahead_readings.h"

#include <algorithm>
#include <string_view>

#include "base/files.h"
#include "base/status.h"
#include "data/raw_line.h"

namespace corvane {
namespace {

constexpr std::int64_t kBlockBytes = std::int64_t{256} * 1024;

using LineHandler = std::function<void(DateTime date, std::string_view line)>;

/// Hands on the readings of the whole lines from `al_Begin` on; returns where the last of them ends.
std::int64_t ReadReadings(const std::string& as_File, std::int64_t al_Begin, const std::function<bool()>& av_Poll,
                          const LineHandler& av_Handler) {
  const auto info = ExamineFile(as_File);
  for (std::string block; info && al_Begin < info->size;) {
    Require(ReadAt(as_File, al_Begin, kBlockBytes, block));
    const std::size_t whole = block.rfind('\n') + 1;
    if (whole == 0) break;
    for (std::size_t begin = 0; begin < whole;) {
      const std::size_t end = block.find('\n', begin);
      std::string_view line = std::string_view(block).substr(begin, end - begin);
      if (line.ends_with('\r')) line.remove_suffix(1);
      if (const auto date = ParseReadingDate(line.substr(0, line.find(',')))) av_Handler(*date, line);
      begin = end + 1;
    }
    al_Begin += static_cast<std::int64_t>(whole);
    if (!av_Poll()) break;
  }
  return al_Begin;
}

}  // namespace

std::set<std::string, std::less<>> AheadReadings::Find(const std::string& as_File, DateTime av_Last,
                                                       const std::function<bool()>& av_Poll) {
  Known& known = known_[as_File];
  const auto info = ExamineFile(as_File);
  if (!info || info->size < known.bytes) known = {};
  known.bytes = ReadReadings(as_File, known.bytes, av_Poll, [&known](DateTime date, std::string_view) {
    known.latest = std::max(known.latest, date);
  });
  std::set<std::string, std::less<>> ahead;
  if (known.latest <= av_Last) return ahead;
  DateTime latest;
  const std::int64_t read = ReadReadings(as_File, 0, av_Poll, [&](DateTime date, std::string_view line) {
    latest = std::max(latest, date);
    if (date > av_Last) ahead.emplace(line);
  });
  // The lines may have been taken out since; a search that was ended early does not know.
  if (read >= known.bytes) known.latest = latest;
  return ahead;
}

}  // namespace corvane
