#include "data/completeness.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <map>

#include "base/checksum.h"
#include "base/files.h"
#include "data/channel_watch.h"
#include "data/day_book.h"
#include "data/gap_finder.h"
#include "data/jump_places.h"
#include "data/line_blocks.h"
#include "data/raw_items.h"
#include "data/reading_date.h"
#include "data/scan_state.h"

namespace corvane {
namespace {

static_assert(LineBlocks::kSlack >= ChannelWatch::kPart + 8);

constexpr std::int64_t kStateVersion = 1;
constexpr std::int64_t kTailBytes = 4096;
// What more has to be remembered is found again by reading the whole file; hardly ever is it more than a few.
constexpr std::int64_t kMostKept = 400;

/// The sum of the bytes before `al_End`, 4 KiB at most.
std::uint32_t TailSum(const InputFile& av_File, std::int64_t al_End) {
  std::array<char, kTailBytes> tail;
  const std::int64_t begin = std::max<std::int64_t>(al_End - kTailBytes, 0);
  std::size_t got = 0;
  Require(av_File.Read(begin, tail.data(), static_cast<std::size_t>(al_End - begin), got));
  return Crc32({tail.data(), got});
}

/// Stands for the hints that bear on what is settled: clock steps up to `av_Settled`, periods up to `av_Last`.
std::int64_t HintSum(const ScanHints& av_Hints, DateTime av_Settled, DateTime av_Last) {
  ScanStateWriter text;
  for (const ClockStep& step : av_Hints.steps) {
    if (step.from > av_Settled) continue;
    text.PutDate(step.from);
    text.PutDate(step.to);
    text.Put(step.seconds.value_or(-1));
  }
  for (const PeriodChange& change : av_Hints.periods) {
    if (change.at >= av_Last) continue;
    text.PutDate(change.at);
    text.Put(change.certain ? change.seconds : -change.seconds);
    text.Put(change.placed ? 1 : 0);
  }
  for (const auto& range : {av_Hints.moisture, av_Hints.salinity}) {
    text.Put(range ? std::bit_cast<std::int64_t>(range->least) : 0);
    text.Put(range ? std::bit_cast<std::int64_t>(range->most) : 0);
  }
  return Crc32(text.text());
}

/// One scan: what is known is put back, what is new is read, and what comes out of both is told and remembered.
class Scan {
 public:
  /// `av_Located`: the hints with clock steps in the places that a scan has found for them.
  Scan(const InputFile& av_File, const ScanRecord& av_Former, const ScanHints& av_Hints, const ScanHints& av_Located)
      : file_(av_File),
        former_(av_Former),
        hints_(av_Hints),
        finder_(av_Located),
        jumps_(av_Located),
        watch_(av_Hints) {
    for (const GapRecord& gap : av_Hints.known) known_[gap.from] = {gap.to, false};
  }

  /// Puts back what the former scan knew; false when the file is another one by now.
  [[nodiscard]] bool Resume();
  enum class End : std::uint8_t { Done, Cancelled, TooEarly };
  /// Reads on. `TooEarly`: a reading came that is earlier than what is known goes back.
  [[nodiscard]] End Read(const std::function<bool()>& av_Poll);
  [[nodiscard]] RawScan Result();
  [[nodiscard]] const JumpPlaces& jumps() const { return jumps_; }

 private:
  [[nodiscard]] bool IsSameFile() const;
  [[nodiscard]] bool RestoreFrom(ScanStateReader& av_State);
  void RestoreDay(ScanStateReader& av_State);
  [[nodiscard]] std::string State() const;
  /// False when the line is a reading that is too early.
  [[nodiscard]] bool TakeLine(std::string_view as_Line);
  void TakeReading(std::size_t al_Items, DateTime av_When);
  void Miss(const Verdict& av_Verdict);
  void AddGap(std::vector<GapRecord>& av_Gaps, const Verdict& av_Verdict);
  void FinishDay();
  /// A reading stands between the ends of a known gap.
  void Fill(DateTime av_When);

  struct KnownGap {
    DateTime to;
    bool filled = false;
  };
  const InputFile& file_;
  const ScanRecord& former_;
  const ScanHints& hints_;
  GapFinder finder_;
  JumpPlaces jumps_;
  ChannelWatch watch_;
  DayBook book_;
  ReadingDateReader dates_;
  std::vector<GapRecord> gaps_;         ///< that no more readings change
  std::map<DateTime, KnownGap> known_;  ///< by begin
  DateTime known_from_;                 ///< days and gaps before are not known here
  std::int64_t offset_ = 0;
  std::int64_t readings_ = 0;
  DateTime first_;
  DateTime last_;
  bool first_line_ = true;  ///< is still to come
  bool has_header_ = false;
  DayCount* day_ = nullptr;  ///< of the reading before
  std::uint64_t battery_ = 0;
};

bool Scan::Resume() {
  ScanStateReader state(former_.state);
  return RestoreFrom(state) && IsSameFile() && state.AtEnd();
}

/// Our own writer only appends, or cuts off a torn last line; whoever else writes makes another file of it.
bool Scan::IsSameFile() const {
  const FileIdentity& now = file_.identity();
  if (now.inode != former_.inode || now.size < offset_ || now.modified < former_.modified) return false;
  if (now.size == former_.size && now.modified != former_.modified) return false;
  return TailSum(file_, offset_) == former_.tail_crc;
}

std::string Scan::State() const {
  ScanStateWriter state;
  const DateTime boundary = finder_.Boundary();
  std::size_t settled = 0;
  const std::vector<Distance> kept = finder_.Kept(settled);
  const auto first_day = book_.days().lower_bound(boundary.Midnight());
  const auto days = std::distance(first_day, book_.days().end());
  const auto matters = [&](const GapRecord& gap) { return gap.to > boundary; };
  const auto gaps = std::count_if(gaps_.begin(), gaps_.end(), matters);
  if (days > kMostKept || gaps > kMostKept || JumpPlaces::AreOpen(hints_, gaps_, boundary)) return "";
  state.Put(kStateVersion);
  state.Put(offset_);
  state.Put(first_line_ ? 1 : 0);
  state.Put(has_header_ ? 1 : 0);
  state.Put(readings_);
  state.PutDate(first_);
  state.PutDate(last_);
  state.Put(HintSum(hints_, boundary, last_));
  state.Put(static_cast<std::int64_t>(settled));
  state.Put(static_cast<std::int64_t>(kept.size()));
  for (const Distance& distance : kept) {
    state.PutDate(distance.from);
    state.PutDate(distance.to);
  }
  state.Put(gaps);
  for (const GapRecord& gap : gaps_) {
    if (!matters(gap)) continue;
    state.PutDate(gap.from);
    state.PutDate(gap.to);
    state.Put(gap.missing);
  }
  watch_.Save(state);
  state.Put(days);
  for (auto day = first_day; day != book_.days().end(); ++day) {
    state.PutDate(day->first);
    state.Put(day->second.stored);
    state.Put(day->second.missing);
    state.PutDate(day->second.first);
    state.PutDate(day->second.last);
    state.Put(day->second.battery ? std::bit_cast<std::int64_t>(*day->second.battery) : -1);
    state.Put(static_cast<std::int64_t>(day->second.outside.size()));
    for (const std::int64_t count : day->second.outside) state.Put(count);
  }
  return state.text();
}

bool Scan::RestoreFrom(ScanStateReader& av_State) {
  if (av_State.Take() != kStateVersion) return false;
  offset_ = av_State.Take(0);
  first_line_ = av_State.Take(0, 1) != 0;
  has_header_ = av_State.Take(0, 1) != 0;
  readings_ = av_State.Take(0);
  first_ = av_State.TakeDate();
  last_ = av_State.TakeDate();
  const std::int64_t hint_sum = av_State.Take();
  const std::int64_t settled = av_State.Take(0, GapFinder::kWindow);
  std::vector<Distance> kept(static_cast<std::size_t>(av_State.Take(settled, 2 * GapFinder::kWindow)));
  for (Distance& distance : kept) {
    distance.from = av_State.TakeDate();
    distance.to = av_State.TakeDate();
  }
  finder_.Restore(kept, static_cast<std::size_t>(settled), last_);
  for (std::int64_t left = av_State.Take(0, kMostKept); left > 0; --left) {
    GapRecord& gap = gaps_.emplace_back();
    gap.from = av_State.TakeDate();
    gap.to = av_State.TakeDate();
    gap.missing = av_State.Take(0);
    gap.state = gap.missing == 0 ? GapState::Clock : GapState::Found;
    gap.unit = former_.unit;
  }
  if (!watch_.Restore(av_State)) return false;
  for (std::int64_t left = av_State.Take(0, kMostKept); left > 0; --left) RestoreDay(av_State);
  known_from_ = finder_.Boundary();
  return av_State.good() && hint_sum == HintSum(hints_, known_from_, last_);
}

void Scan::RestoreDay(ScanStateReader& av_State) {
  const DateTime midnight = av_State.TakeDate();
  DayCount day;
  day.stored = av_State.Take(0);
  day.missing = av_State.Take(0);
  day.first = av_State.TakeDate();
  day.last = av_State.TakeDate();
  const std::int64_t battery = av_State.Take();
  if (battery != -1) day.battery = std::bit_cast<double>(battery);
  day.outside.resize(static_cast<std::size_t>(av_State.Take(0, ChannelWatch::kMostItems)));
  for (std::int64_t& count : day.outside) count = av_State.Take(0);
  book_.Put(midnight, day);
}

Scan::End Scan::Read(const std::function<bool()>& av_Poll) {
  LineBlocks blocks(file_, offset_);
  std::string_view line;
  while (blocks.Read()) {
    while (blocks.Next(line)) {
      if (!TakeLine(line)) return End::TooEarly;
    }
    if (av_Poll && !av_Poll()) return End::Cancelled;
  }
  offset_ = blocks.offset();
  FinishDay();
  return End::Done;
}

bool Scan::TakeLine(std::string_view as_Line) {
  const char* const end = as_Line.data() + as_Line.size();
  const char* items = nullptr;
  const std::optional<DateTime> when = dates_.Read(as_Line.data(), end, items);
  const std::size_t count = when ? watch_.Split(items, end) : 0;
  if (count >= reading_item::kFewest) {
    if (*when < known_from_) return false;
    TakeReading(count, *when);
  } else if (first_line_) {
    has_header_ = watch_.TakeHeader(as_Line);
  }
  first_line_ = false;
  return true;
}

void Scan::TakeReading(std::size_t al_Items, DateTime av_When) {
  if (finder_.Push(av_When)) AddGap(gaps_, finder_.settled());
  if (!known_.empty()) Fill(av_When);
  DayCount& day = book_.Store(av_When);
  if (&day != day_) FinishDay();
  day_ = &day;
  battery_ = watch_.battery();
  watch_.Watch(al_Items, av_When, day);
  if (readings_++ == 0) first_ = av_When;
  last_ = av_When;
}

void Scan::Fill(DateTime av_When) {
  const auto behind = known_.lower_bound(av_When);
  if (behind == known_.begin()) return;
  KnownGap& gap = std::prev(behind)->second;
  gap.filled = gap.filled || av_When < gap.to;
}

void Scan::FinishDay() {
  if (day_ != nullptr) day_->battery = ChannelWatch::VoltsOf(battery_);
}

void Scan::AddGap(std::vector<GapRecord>& av_Gaps, const Verdict& av_Verdict) {
  GapRecord gap;
  gap.unit = former_.unit;
  gap.from = av_Verdict.from;
  gap.to = av_Verdict.to;
  gap.missing = av_Verdict.missing;
  gap.state = av_Verdict.kind == Verdict::Clock ? GapState::Clock : GapState::Found;
  av_Gaps.push_back(gap);
  jumps_.Take(av_Verdict);
  Miss(av_Verdict);
}

void Scan::Miss(const Verdict& av_Verdict) {
  for (const Stretch& stretch : av_Verdict.Stretches()) book_.Miss(stretch.behind, stretch.period, stretch.count);
}

RawScan Scan::Result() {
  RawScan result;
  result.scan.unit = former_.unit;
  result.scan.inode = file_.identity().inode;
  result.scan.size = std::max(file_.identity().size, offset_);
  result.scan.modified = file_.identity().modified;
  result.scan.tail_crc = TailSum(file_, offset_);
  result.scan.state = State();
  result.scan.readings = readings_;
  result.scan.first = first_;
  result.scan.last = last_;
  result.scan.period = finder_.Period();
  result.scan.still_channel = static_cast<std::int32_t>(watch_.Still(result.scan.still_since));
  result.changed_from = known_from_;
  result.has_header = has_header_;
  result.out_of_order = finder_.out_of_order();
  for (const Verdict& verdict : finder_.Unsettled()) AddGap(gaps_, verdict);
  Miss(finder_.Behind(hints_.last_contact));
  result.gaps = std::move(gaps_);
  for (const auto& [from, gap] : known_) {
    if (gap.filled) result.filled.push_back(from);
  }
  result.days = book_.Records(known_from_, former_.unit);
  return result;
}

}  // namespace

RawScan ScanRawFile(const std::string& as_File, const ScanRecord& av_Former, const ScanHints& av_Hints,
                    const std::function<bool()>& av_Poll) {
  RawScan result;
  result.scan.unit = av_Former.unit;
  result.whole = true;
  InputFile file;
  const Status opened = file.Open(as_File);
  result.missing = opened.code() == ENOENT;
  if (result.missing) return result;
  Require(opened);
  for (const bool resume : {true, false}) {
    Scan scan(file, av_Former, av_Hints, av_Hints);
    if (resume && !scan.Resume()) continue;
    const Scan::End end = scan.Read(av_Poll);
    if (end == Scan::End::TooEarly) continue;
    if (end == Scan::End::Cancelled) break;
    result = scan.Result();
    result.whole = !resume;
    if (const auto located = scan.jumps().Located()) {
      // The places of jumps before are found only by all that may hold them.
      if (resume) continue;
      Scan again(file, av_Former, av_Hints, *located);
      if (again.Read(av_Poll) == Scan::End::Cancelled) break;
      result = again.Result();
      result.whole = true;
    }
    return result;
  }
  result.scan = av_Former;
  result.whole = false;
  result.cancelled = true;
  return result;
}

}  // namespace corvane
