#include "data/gap_splice.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/files.h"
#include "base/line_reader.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "data/raw_line.h"

namespace corvane {
namespace {

constexpr std::size_t kCopyBytes = std::size_t{256} * 1024;

/// Looks through a raw file from its begin for the place between two readings, and for readings that it holds already.
class PlaceSearch {
 public:
  PlaceSearch(const ReadingPair& av_Pair, const std::vector<std::string>& as_Readings)
      : pair_(av_Pair), wanted_(as_Readings.begin(), as_Readings.end()) {}

  void Take(std::string_view as_Block) {
    for (std::size_t end = as_Block.find('\n'); end != std::string_view::npos; end = as_Block.find('\n')) {
      at_ += static_cast<std::int64_t>(end) + 1;
      part_ += as_Block.substr(0, end);
      TakeLine(part_);
      part_.clear();
      as_Block.remove_prefix(end + 1);
    }
    at_ += static_cast<std::int64_t>(as_Block.size());
    part_ += as_Block;
    // No line is that long: it is no reading, whatever else it holds.
    if (part_.size() > LineReader::kLongestLine) part_.assign(1, '\0');
  }
  /// Bytes that stand before the place; none when the pair was not found.
  [[nodiscard]] std::optional<std::int64_t> place() const { return place_; }
  [[nodiscard]] bool Holds(const std::string& as_Reading) const { return !wanted_.contains(as_Reading); }

 private:
  void TakeLine(std::string_view as_Line) {
    if (as_Line.ends_with('\r')) as_Line.remove_suffix(1);
    const auto date = DateOfReading(as_Line);
    if (!date) return;
    if (last_ == pair_.from && *date == pair_.to && !place_) place_ = behind_last_;
    if (const auto found = wanted_.find(as_Line); found != wanted_.end()) wanted_.erase(found);
    last_ = *date;
    behind_last_ = at_;
  }

  ReadingPair pair_;
  std::set<std::string, std::less<>> wanted_;  ///< and not met yet
  std::string part_;                           ///< of a line whose end has not come
  std::int64_t at_ = 0;
  DateTime last_;
  std::int64_t behind_last_ = 0;
  std::optional<std::int64_t> place_;
};

bool AreBetween(const ReadingPair& av_Pair, const std::vector<std::string>& as_Readings) {
  DateTime last = av_Pair.from;
  return std::all_of(as_Readings.begin(), as_Readings.end(), [&](const std::string& reading) {
    const auto date = DateOfReading(reading);
    const bool between = date && *date > last && *date < av_Pair.to && reading.find('\n') == std::string::npos;
    if (between) last = *date;
    return between;
  });
}

/// Hands on a part of a file, block by block; false when the caller or its poll wants no more.
bool ReadBlocks(const std::string& as_File, std::int64_t al_Begin, std::int64_t al_End,
                const std::function<bool()>& av_Poll, const std::function<void(const std::string& block)>& av_Take) {
  for (std::string block; al_Begin < al_End; al_Begin += static_cast<std::int64_t>(block.size())) {
    const auto length = static_cast<std::size_t>(al_End - al_Begin);
    Require(ReadAt(as_File, al_Begin, std::min(length, kCopyBytes), block));
    if (block.empty()) return true;
    av_Take(block);
    if (!av_Poll()) return false;
  }
  return true;
}

/// A raw file while it is written anew beside itself.
class SplicedFile {
 public:
  explicit SplicedFile(std::string as_File) : name_(std::move(as_File)), info_(ExamineFile(name_)), file_(name_) {
    if (!info_) throw RunTimeError(name_ + " is missing");
    Require(file_.OpenInPlace());
  }
  [[nodiscard]] std::int64_t size() const { return info_->size; }
  /// Copies a part of the former file; false when the poll wants no more.
  [[nodiscard]] bool Copy(std::int64_t al_Begin, std::int64_t al_End, const std::function<bool()>& av_Poll) {
    return ReadBlocks(name_, al_Begin, al_End, av_Poll, [this](const std::string& block) { Add(block); });
  }
  void Add(std::string_view as_Text) {
    written_ += static_cast<std::int64_t>(as_Text.size());
    file_.buffer() += as_Text;
    Require(file_.FlushWhenFull());
  }
  /// Puts the new file in place of the former; false when that has changed meanwhile or `al_Size` bytes were not
  /// written. `av_Synced`: whether its name is on the disk.
  [[nodiscard]] bool PutInPlace(std::int64_t al_Size, Status& av_Synced) {
    const auto now = ExamineFile(name_);
    if (!now || now->size != info_->size || now->modified != info_->modified || written_ != al_Size) return false;
    const std::string former = name_ + std::string(kFormerRawFile);
    Require(GiveSecondName(name_, former));
    const Status put = file_.Commit();
    static_cast<void>(RemoveFile(former));
    if (!file_.InPlace()) Require(put);
    av_Synced = put;
    return true;
  }

 private:
  std::string name_;
  std::optional<FileInfo> info_;
  ReplacementFile file_;
  std::int64_t written_ = 0;
};

}  // namespace

std::optional<DateTime> DateOfReading(std::string_view as_Line) {
  const bool has_shape =
      std::count(as_Line.begin(), as_Line.end(), ',') >= 2 && as_Line.find('\0') == std::string_view::npos;
  return has_shape ? ParseReadingDate(as_Line.substr(0, as_Line.find(','))) : std::nullopt;
}

SpliceResult SpliceReadings(const std::string& as_File, const ReadingPair& av_Pair,
                            const std::vector<std::string>& as_Readings, const std::function<bool()>& av_Poll) {
  if (as_Readings.empty()) return {};
  if (!AreBetween(av_Pair, as_Readings)) return {SpliceOutcome::NotBetween};
  std::string name;
  Require(FollowLink(as_File, name));
  SplicedFile file(name);
  PlaceSearch search(av_Pair, as_Readings);
  const auto take = [&search](const std::string& block) { search.Take(block); };
  if (!ReadBlocks(name, 0, file.size(), av_Poll, take)) return {SpliceOutcome::Stopped};
  if (!search.place()) return {SpliceOutcome::NotTogether};

  if (!file.Copy(0, *search.place(), av_Poll)) return {SpliceOutcome::Stopped};
  SpliceResult result;
  std::int64_t size = file.size();
  for (const std::string& reading : as_Readings) {
    if (search.Holds(reading)) continue;
    const std::string line = reading + std::string(kLineBreak);
    file.Add(line);
    size += static_cast<std::int64_t>(line.size());
    ++result.added;
  }
  if (result.added == 0) return {SpliceOutcome::NothingNew};
  if (!file.Copy(*search.place(), file.size(), av_Poll)) return {SpliceOutcome::Stopped};
  result.outcome = file.PutInPlace(size, result.synced) ? SpliceOutcome::Done : SpliceOutcome::Changed;
  return result.outcome == SpliceOutcome::Done ? result : SpliceResult{result.outcome};
}

}  // namespace corvane
