#include "data/day_book.h"

#include <algorithm>

#include "data/gap_finder.h"

namespace corvane {
namespace {

DayRecord RecordOf(DateTime av_Midnight, const DayCount& av_Day, std::int64_t al_Unit) {
  DayRecord record;
  record.unit = al_Unit;
  record.day = av_Midnight;
  record.expected = av_Day.stored + av_Day.missing;
  record.stored = av_Day.stored;
  record.first = av_Day.first;
  record.last = av_Day.last;
  record.battery = av_Day.battery;
  const auto worst = std::max_element(av_Day.outside.begin(), av_Day.outside.end());
  if (worst != av_Day.outside.end() && *worst > 0) {
    record.outside = *worst;
    record.outside_channel = static_cast<std::int32_t>(worst - av_Day.outside.begin());
  }
  return record;
}

}  // namespace

void DayBook::Turn(DateTime av_When) {
  midnight_ = av_When.Midnight();
  day_ = &days_[midnight_];
}

void DayBook::Miss(DateTime av_From, std::int64_t al_Period, std::int64_t al_Count) {
  for (std::int64_t done = 0; done < al_Count;) {
    const DateTime due = av_From + (done + 1) * al_Period;
    const std::int64_t more_today = (kSecondsPerDay - 1 - due.TimeOfDay()) / al_Period;
    const std::int64_t today = std::min(al_Count - done, 1 + more_today);
    days_[due.Midnight()].missing += today;
    done += today;
  }
}

std::vector<DayRecord> DayBook::Records(DateTime av_From, std::int64_t al_Unit) const {
  std::vector<DayRecord> records;
  for (auto day = days_.lower_bound(av_From.Midnight()); day != days_.end(); ++day) {
    if (!records.empty() && day->first - records.back().day <= GapFinder::kLongestGap) {
      for (DateTime none = records.back().day + kSecondsPerDay; none < day->first; none = none + kSecondsPerDay) {
        records.push_back(RecordOf(none, {}, al_Unit));
      }
    }
    records.push_back(RecordOf(day->first, day->second, al_Unit));
  }
  return records;
}

}  // namespace corvane
