#include "unit_files.h"

#include <sys/stat.h>

#include <algorithm>

#include "base/files.h"
#include "base/format.h"
#include "data/raw_file.h"

namespace corvane::console {

std::optional<std::int64_t> CountReadings(const std::string& raw_file) {
  LineReader reader;
  if (!reader.Open(raw_file).ok()) return std::nullopt;
  std::int64_t lines = 0;
  std::string_view line;
  while (reader.Next(line)) lines += reader.terminated() ? 1 : 0;
  return std::max<std::int64_t>(lines - 1, 0);
}

std::string LastReading(const std::string& raw_file) {
  if (!ExamineFile(raw_file)) return "";
  try {
    const DateTime last = ReadLastDate(raw_file, [] { return true; }).last_date;
    return last.IsNone() ? "" : FormatDate(last, "yyyy-mm-dd HH:MM");
  } catch (const RunTimeError&) {
    return "unreadable";
  }
}

std::uint64_t FileMark(const std::string& file) {
  struct stat found {};
  if (stat(file.c_str(), &found) != 0) return 0;
  const auto nanoseconds = static_cast<std::uint64_t>(found.st_mtim.tv_sec) * 1'000'000'000U +
                           static_cast<std::uint64_t>(found.st_mtim.tv_nsec);
  return nanoseconds ^ (static_cast<std::uint64_t>(found.st_ino) << 20U);
}

}  // namespace corvane::console
