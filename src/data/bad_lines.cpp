#include "data/bad_lines.h"

#include "base/files.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/status.h"
#include "base/synced_file.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr char kTab = '\t';
constexpr std::size_t kShortestLine = 12;
constexpr int kTriesOfRightLine = 2;
constexpr int kTriesOfDisturbedLine = 3;
constexpr std::size_t kMostSuspects = 100;

/// True when a file is missing, empty or ends with a line end.
bool EndsWithLineEnd(const std::string& as_File) {
  const auto info = ExamineFile(as_File);
  if (!info || info->size == 0) return true;
  std::string last;
  Require(ReadAt(as_File, info->size - 1, 1, last));
  return last == "\n";
}

}  // namespace

void BadLines::BeginDownload(const std::string& as_RawFile, std::string_view as_LastGood, std::int64_t al_Round) {
  file_ = as_RawFile + ".bad";
  last_good_ = as_LastGood;
  round_ = al_Round;
  lines_.clear();
  LineReader reader;
  // One that cannot be read takes no further line either: the download ends at such a line.
  if (!reader.Open(file_).ok()) return;
  std::string_view row;
  while (reader.Next(row)) {
    const auto fields = Split(row, kTab);
    if (reader.terminated() && fields.size() == 3) lines_.emplace(fields[2]);
  }
}

bool BadLines::Hold(std::string_view as_Line) const {
  return !lines_.empty() && lines_.contains(Visible(as_Line));
}

bool BadLines::IsTheCause(std::string_view as_Line, bool ab_ChecksumGood) {
  if (as_Line.size() < kShortestLine) return false;
  auto& of_file = suspects_[file_];
  if (of_file.size() > kMostSuspects) of_file.clear();
  Suspect& suspect = of_file[std::string(as_Line)];
  if (suspect.tries == 0 || suspect.behind != last_good_) suspect = {last_good_, 0, round_};
  ++suspect.tries;
  if (ab_ChecksumGood) return suspect.tries >= kTriesOfRightLine;
  return suspect.tries >= kTriesOfDisturbedLine && round_ > suspect.first_round;
}

void BadLines::Add(DateTime av_Now, std::string_view as_Reason, std::string_view as_Line) {
  const std::string line = Visible(as_Line);
  std::string row = GeneralDate(av_Now) + kTab + std::string(as_Reason) + kTab + line;
  row += kLineBreak;
  // A kill may have left half a line.
  if (!EndsWithLineEnd(file_)) row.insert(0, kLineBreak);
  const auto info = ExamineFile(file_);
  if (info && info->size + static_cast<std::int64_t>(row.size()) > kMostBytes) {
    throw RunTimeError(file_ + " would become larger than 1 MB");
  }
  SyncedFile out;
  Require(info ? out.OpenForAppending(file_) : out.Create(file_, ""));
  Require(out.Write(row));
  Require(out.Sync());
  lines_.insert(line);
}

}  // namespace corvane
