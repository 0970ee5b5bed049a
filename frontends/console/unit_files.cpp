#include "unit_files.h"

#include "base/files.h"
#include "base/format.h"
#include "data/raw_file.h"

namespace corvane::console {
namespace {

constexpr int kMostLooks = 1000;  ///< for a date: lines of a short file, blocks of a long one from its end

}  // namespace

std::string LastReading(const std::string& raw_file) {
  if (!ExamineFile(raw_file)) return "";
  // A file that is none of ours must not hold the table up.
  const auto look_further = [looks = 0]() mutable { return ++looks < kMostLooks; };
  try {
    const DateTime last = ReadLastDate(raw_file, look_further).last_date;
    return last.IsNone() ? "" : FormatDate(last, "yyyy-mm-dd HH:MM");
  } catch (const RunTimeError&) {
    return "unreadable";
  }
}

}  // namespace corvane::console
