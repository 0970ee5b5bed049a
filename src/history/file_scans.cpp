#include "history/file_scans.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <set>
#include <string>

#include "base/files.h"
#include "base/status.h"
#include "data/lookup.h"
#include "history/gap_book.h"

namespace corvane {
namespace {

constexpr std::int64_t kLongestRun = 30'000;        ///< milliseconds
constexpr std::int64_t kLongestBehindCancel = 500;  ///< milliseconds
constexpr std::int64_t kPollStep = 20;              ///< milliseconds
constexpr std::int16_t kMoistureTable = 0;          ///< places among the files of the settings
constexpr std::int16_t kSalinityTable = 1;
constexpr std::int64_t kSmallPart = 1'000'000;  ///< bytes that are read without a thread of their own

/// The values that a lookup table covers; none where there is no such table. What is wrong with one, a conversion says.
std::optional<TableRange> RangeOf(const std::string& as_Table) {
  std::optional<TableRange> range;
  try {
    ReadLookupPoints(as_Table, [&range](double x, double /*y*/) {
      range = range ? TableRange{std::min(range->least, x), std::max(range->most, x)} : TableRange{x, x};
    });
  } catch (const RunTimeError&) {
    return std::nullopt;
  }
  return range;
}

}  // namespace

bool FileScans::Stopped() const {
  if (asked_only_ && p_.loop.MonotonicMilliseconds() >= end_) return true;
  return p_.flags.closing || (p_.link.UserCancel && !was_cancelled_);
}

void FileScans::Run() {
  asked_only_ = false;
  ScanAll(kLongestRun);
}

void FileScans::RunForAsked() {
  asked_only_ = true;
  ScanAll(kLongestBehindCancel);
}

void FileScans::ScanAll(std::int64_t al_Milliseconds) {
  if (!p_.history.IsReady()) return;
  was_cancelled_ = p_.link.UserCancel;
  moisture_ = RangeOf(p_.files.SettingsFile(kMoistureTable));
  salinity_ = RangeOf(p_.files.SettingsFile(kSalinityTable));
  std::int64_t polled = p_.loop.MonotonicMilliseconds();
  end_ = polled + al_Milliseconds;
  const std::int64_t count = p_.history.Positions();
  std::set<std::int64_t> scanned;
  for (std::int64_t turn = 0; turn < count && !Stopped() && p_.history.IsReady(); ++turn) {
    if (next_ > count) next_ = 1;
    const std::int64_t key = p_.history.KeyOf(next_);
    const bool has_turn = key != 0 && (!asked_only_ || p_.history.Of(key).contacted);
    if (has_turn && scanned.insert(key).second) ScanUnit(next_, key);
    ++next_;
    const std::int64_t now = p_.loop.MonotonicMilliseconds();
    if (now >= end_) return;
    if (now - polled < kPollStep) continue;
    p_.loop.Poll();
    polled = now;
  }
}

void FileScans::ScanUnit(std::int64_t al_Position, std::int64_t al_Key) {
  const std::string file = p_.names.DataFileName(static_cast<std::int32_t>(al_Position), false);
  ScanRecord former = p_.history.Of(al_Key).scan;
  former.unit = al_Key;
  const bool contacted = p_.history.Of(al_Key).contacted;
  // Without what is known of the unit's clock, what the clock has passed over would be told as missing.
  if (!p_.history.WithClock(al_Key).clock_read) return;
  try {
    const RawScan scan = Scan(file, former, HintsFor(al_Key));
    // A file that is out of reach for now says nothing of its gaps.
    if (scan.cancelled || (scan.missing && former.inode != 0)) return;
    const bool same = scan.scan.size == former.size && scan.scan.modified == former.modified &&
                      scan.scan.inode == former.inode && scan.scan.tail_crc == former.tail_crc;
    if (same && !contacted) return;
    const auto gaps = MergeGaps(p_.history.Of(al_Key).gaps, scan, p_.loop.NowUtc());
    if (p_.history.NoteScan(al_Key, scan, gaps)) p_.history.Of(al_Key).contacted = false;
  } catch (const RunTimeError& error) {
    p_.trace.LogWrite("What " + file + " lacks is not known: " + error.what());
  }
}

RawScan FileScans::Scan(const std::string& as_File, const ScanRecord& av_Former, const ScanHints& av_Hints) {
  const auto info = ExamineFile(as_File);
  const std::int64_t grown = info ? info->size - av_Former.size : 0;
  const bool small = info && (info->size <= kSmallPart || (grown >= 0 && grown <= kSmallPart));
  if (!info || small) return ScanRawFile(as_File, av_Former, av_Hints, [this] { return !Stopped(); });
  RawScan scan;
  std::atomic<bool> stopped = false;
  p_.loop.Aside([&] { scan = ScanRawFile(as_File, av_Former, av_Hints, [&stopped] { return !stopped; }); },
                [&] { stopped = Stopped(); });
  return scan;
}

ScanHints FileScans::HintsFor(std::int64_t al_Key) const {
  ScanHints hints = p_.history.WithClock(al_Key).clock.hints();
  hints.moisture = moisture_;
  hints.salinity = salinity_;
  hints.known = p_.history.Of(al_Key).gaps;
  return hints;
}

}  // namespace corvane
