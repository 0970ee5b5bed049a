#include "rounds/unit_gaps.h"

#include <algorithm>
#include <atomic>

#include "base/status.h"
#include "history/gap_book.h"

namespace corvane {
namespace {

bool IsWorthAsking(const GapRecord& av_Gap) {
  return av_Gap.state == GapState::Found || av_Gap.state == GapState::Asked;
}

}  // namespace

std::string UnitGaps::WhyNone(std::int64_t al_Unit) const {
  const Unit& unit = registry_.Units[al_Unit];
  if (unit.Active == 0) return "not asked: the unit is not active";
  if (unit.GetFrom != kFromRadio) return "not asked: only gaps of units that are read by radio can be filled";
  if (names_.OtherUnitOfFile(static_cast<std::int32_t>(al_Unit), unit.ID, unit.ClientID) != 0) {
    return "not asked: another unit has the same raw file";
  }
  return {};
}

UnitGaps::Known& UnitGaps::Of(std::int64_t al_Unit) {
  return known_[names_.DataFileName(static_cast<std::int32_t>(al_Unit), false)];
}

std::vector<GapRecord> UnitGaps::Find(std::int64_t al_Unit, const std::function<bool()>& av_Stopped) {
  Known& known = Of(al_Unit);
  Scan(al_Unit, known, av_Stopped);
  std::vector<GapRecord> found;
  for (GapRecord gap : known.gaps) {
    TakeState(al_Unit, gap);
    if (IsWorthAsking(gap)) found.push_back(gap);
  }
  std::sort(found.begin(), found.end(), [](const auto& one, const auto& other) { return one.to > other.to; });
  return found;
}

std::vector<GapRecord> UnitGaps::Remembered(std::int64_t al_Unit, const std::function<bool()>& av_Stopped) {
  if (!history_.Kept()) return Find(al_Unit, av_Stopped);
  const std::int64_t key = history_.KeyOf(al_Unit);
  if (key == 0) return {};
  std::vector<GapRecord> gaps = history_.Of(key).gaps;
  std::erase_if(gaps, [](const GapRecord& gap) { return !IsWorthAsking(gap); });
  return gaps;
}

ScanHints UnitGaps::HintsFor(std::int64_t al_Unit) {
  // What a clock has passed over would be asked for without the history, and be taken for lost.
  const bool readable = !history_.Kept() || history_.IsReady();
  const std::int64_t key = history_.KeyOf(al_Unit);
  if (!readable || (key != 0 && !history_.WithClock(key).clock_read)) {
    throw RunTimeError("not asked: the history cannot be read now");
  }
  return key == 0 ? ScanHints() : history_.Of(key).clock.hints();
}

void UnitGaps::Scan(std::int64_t al_Unit, Known& av_Known, const std::function<bool()>& av_Stopped) {
  const std::string file = names_.DataFileName(static_cast<std::int32_t>(al_Unit), false);
  ScanHints hints = HintsFor(al_Unit);
  hints.known = av_Known.gaps;
  RawScan scan;
  std::atomic<bool> stopped = false;
  loop_.Aside([&] { scan = ScanRawFile(file, av_Known.scan, hints, [&stopped] { return !stopped; }); },
              [&] { stopped = av_Stopped(); });
  if (scan.cancelled) throw RunTimeError("not asked: cancelled");
  if (scan.missing && av_Known.scan.inode != 0) throw RunTimeError("not asked: its raw file is not there");
  std::vector<GapRecord> gaps = MergeGaps(av_Known.gaps, scan, loop_.NowUtc());
  for (const GapRecord& gap : av_Known.gaps) {
    if (gap.to <= scan.changed_from) gaps.push_back(gap);
  }
  std::erase_if(gaps, [](const GapRecord& gap) { return gap.state == GapState::Dropped; });
  av_Known.gaps = std::move(gaps);
  av_Known.scan = scan.scan;
}

void UnitGaps::TakeState(std::int64_t al_Unit, GapRecord& av_Gap) {
  const std::int64_t key = history_.KeyOf(al_Unit);
  if (key == 0) return;
  for (const GapRecord& known : history_.Of(key).gaps) {
    if (known.from > av_Gap.from || known.to < av_Gap.to) continue;
    av_Gap.tries = std::max(av_Gap.tries, known.tries);
    const bool same = known.from == av_Gap.from && known.to == av_Gap.to;
    if (same && known.state != GapState::Dropped) av_Gap.state = known.state;
  }
}

void UnitGaps::Note(std::int64_t al_Unit, const GapRecord& av_Gap) {
  std::vector<GapRecord>& gaps = Of(al_Unit).gaps;
  std::erase_if(gaps, [&av_Gap](const GapRecord& each) { return each.from == av_Gap.from; });
  gaps.push_back(av_Gap);
  history_.NoteGaps(al_Unit, {av_Gap});
}

}  // namespace corvane
