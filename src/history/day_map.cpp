#include "history/day_map.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "history/gap_book.h"
#include "history/status_texts.h"
#include "history/unit_status.h"
#include "lang/date_words.h"
#include "state/records.h"

namespace corvane {
namespace {

constexpr std::array<std::string_view, 6> kGrades = {"no readings due", "whole",       "most", "part",
                                                     "nothing",         "not heard of"};
constexpr std::int64_t kMostTenths = 9;

std::int32_t Small(std::int64_t al_Count) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(al_Count, 0, std::numeric_limits<std::int32_t>::max()));
}

DateTime FirstDay(Moment av_Now, std::int64_t al_Days) {
  return av_Now.Local().Midnight() - (al_Days - 1) * kSecondsPerDay;
}

/// One unit's row, from what is known of its days and gaps.
class RowMaker {
 public:
  RowMaker(const UnitHistory& av_History, DateTime av_First, DateTime av_Now, const NetworkRecord& av_Network)
      : history_(av_History), first_(av_First), now_(av_Now), network_(av_Network) {
    row_.unit = av_History.unit->key;
    row_.cells.resize(static_cast<std::size_t>((av_Now.Midnight() - av_First) / kSecondsPerDay + 1));
  }

  DayRow Make() {
    for (const DayRecord& day : history_.days) {
      DayCell* const cell = CellOf(day.day);
      if (cell == nullptr) continue;
      cell->expected = Small(day.expected);
      cell->stored = Small(day.stored);
      cell->by_itself = true;
    }
    for (const GapRecord& gap : history_.gaps) Take(gap);
    for (DayCell& cell : row_.cells) Settle(cell);
    MarkUnheard();
    return std::move(row_);
  }

 private:
  [[nodiscard]] DayCell* CellOf(DateTime av_When) {
    const std::int64_t place = (av_When.Midnight() - first_) / kSecondsPerDay;
    return av_When < first_ || place >= std::ssize(row_.cells) ? nullptr : &row_.cells[static_cast<std::size_t>(place)];
  }

  /// Spreads the readings of a gap over its days, as evenly as they were due.
  void Take(const GapRecord& av_Gap) {
    const bool lost = av_Gap.state == GapState::Lost;
    const bool open = av_Gap.state == GapState::Found || av_Gap.state == GapState::Asked;
    if ((!lost && !open) || av_Gap.missing <= 0 || av_Gap.to <= first_) return;
    const double step = static_cast<double>(av_Gap.to - av_Gap.from) / static_cast<double>(av_Gap.missing + 1);
    // How many of them were due before a time.
    const auto before = [&av_Gap, step](DateTime when) {
      const double due = static_cast<double>(when - av_Gap.from) / step;
      return std::clamp(static_cast<std::int64_t>(std::ceil(due - 1e-9)), std::int64_t{1}, av_Gap.missing + 1) - 1;
    };
    for (DateTime day = std::max(first_, av_Gap.from.Midnight()); day < av_Gap.to; day = day + kSecondsPerDay) {
      DayCell* const cell = CellOf(day);
      if (cell == nullptr) return;
      const std::int64_t due = before(day + kSecondsPerDay) - before(day);
      std::int32_t& count = lost ? cell->lost : cell->open;
      count = Small(count + due);
      if (open && due > 0 && !WillBeAsked(av_Gap)) cell->by_itself = false;
    }
  }

  [[nodiscard]] bool CanBeAsked() const {
    const UnitRecord& unit = *history_.unit;
    return unit.active && unit.get_from == kFromRadio;
  }

  [[nodiscard]] bool WillBeAsked(const GapRecord& av_Gap) const {
    return network_.repairs_gaps && CanBeAsked() &&
           IsAskedForByItself(av_Gap, history_.unit->get_from, now_, network_.repair_limit);
  }

  /// The day's own numbers count: a gap's places within a day follow from its ends alone.
  void Settle(DayCell& av_Cell) const {
    av_Cell.lost = std::min(av_Cell.lost, av_Cell.missing());
    av_Cell.open = CanBeAsked() ? std::min(av_Cell.open, av_Cell.missing() - av_Cell.lost) : 0;
    av_Cell.by_itself = av_Cell.by_itself && av_Cell.open > 0;
    av_Cell.to_come = CanBeAsked() && av_Cell.missing() > av_Cell.lost + av_Cell.open;
  }

  /// Until when it is known what the unit has logged; none where nobody waits for it.
  [[nodiscard]] DateTime KnownUntil() const {
    const UnitRecord& unit = *history_.unit;
    if (!unit.active || unit.get_from == kFromNone) return {};
    if (!unit.last_answered.IsNone()) return unit.last_answered.Local();
    if (!history_.days.empty()) return history_.days.back().day;
    return unit.added.IsNone() ? DateTime() : unit.added.Local();
  }

  void MarkUnheard() {
    const DateTime known = KnownUntil();
    if (known.IsNone()) return;
    if (history_.unit->last_answered.IsNone() && history_.days.empty()) {
      for (DayCell& cell : row_.cells) cell.unknown = true;
    }
    for (DateTime day = std::max(first_, known.Midnight()); day <= now_; day = day + kSecondsPerDay) {
      DayCell* const cell = CellOf(day);
      if (cell == nullptr) return;
      cell->unheard = day == known.Midnight() ? now_ - known > kHeardLately : cell->expected == 0;
    }
  }

  const UnitHistory& history_;
  DateTime first_;
  DateTime now_;
  const NetworkRecord& network_;
  DayRow row_;
};

constexpr struct {
  Phrase day_unheard{1369, "the unit was not heard of"};
  Phrase none_due{1370, "no readings were due"};
  Phrase unknown{1886, "nothing is known of this day yet"};
  Phrase rest_unheard{1371, "and the unit was not heard of for the rest of the day"};
  Phrase its_one{1372, "its one reading"};
  Phrase all{1373, "all %1 readings"};
  Phrase some{1374, "%1 of %2, %3 missing"};
  Phrase part{1375, "%1 of them %2"};
  Phrase lost{1376, "lost for ever"};
  Phrase by_itself{1377, "asked for by the next repair"};
  Phrase open{1378, "open to a repair"};
  Phrase to_come{1379, "to come with the next download"};
  Phrase not_now{1380, "not to be asked for now"};
} kDayMapSays;

/// "lost for ever", or "3 of them lost for ever" where others are not.
std::string PartText(std::int32_t ai_Part, std::int32_t ai_Missing, const Phrase& av_What, const Phrases& av_Phrases) {
  if (ai_Part == 0) return "";
  const std::string what = av_Phrases.Text(av_What);
  return ", " + (ai_Part == ai_Missing ? what : av_Phrases.Text(kDayMapSays.part, {std::to_string(ai_Part), what}));
}

/// What became of the readings that a day lacks.
std::string MissingText(const DayCell& av_Cell, const Phrases& av_Phrases) {
  const std::int32_t missing = av_Cell.missing();
  const std::int32_t unsettled = missing - av_Cell.lost - av_Cell.open;
  return PartText(av_Cell.lost, missing, kDayMapSays.lost, av_Phrases) +
         PartText(av_Cell.open, missing, av_Cell.by_itself ? kDayMapSays.by_itself : kDayMapSays.open, av_Phrases) +
         PartText(unsettled, missing, av_Cell.to_come ? kDayMapSays.to_come : kDayMapSays.not_now, av_Phrases);
}

}  // namespace

std::string_view NameOf(DayGrade ae_Grade) {
  return kGrades[static_cast<std::size_t>(ae_Grade)];
}

DayGrade GradeOf(const DayCell& av_Cell) {
  if ((av_Cell.unheard || av_Cell.unknown) && av_Cell.missing() == 0) return DayGrade::Unheard;
  if (av_Cell.expected <= 0) return DayGrade::NotDue;
  if (av_Cell.missing() == 0) return DayGrade::Whole;
  if (av_Cell.stored <= 0) return DayGrade::Nothing;
  return std::int64_t{10} * av_Cell.stored >= kMostTenths * av_Cell.expected ? DayGrade::Most : DayGrade::Part;
}

const DayRow* DayMap::Find(std::int64_t al_Key) const {
  const auto found = std::lower_bound(rows.begin(), rows.end(), al_Key,
                                      [](const DayRow& row, std::int64_t key) { return row.unit < key; });
  return found != rows.end() && found->unit == al_Key ? &*found : nullptr;
}

HistoryQuery DayMapQuery(Moment av_Now, std::int64_t al_Days) {
  HistoryQuery query;
  query.contacts_since = {std::numeric_limits<std::int64_t>::max(), 0};
  query.days_since = FirstDay(av_Now, al_Days);
  query.gaps = true;
  return query;
}

DayMap MakeDayMap(const HistoryContents& av_History, Moment av_Now, std::int64_t al_Days) {
  DayMap map;
  map.first = FirstDay(av_Now, al_Days);
  const NetworkRecord network = av_History.network.value_or(NetworkRecord());
  for (const UnitRecord& unit : av_History.units) {
    if (unit.position <= 0) continue;
    const UnitHistory history = HistoryOf(av_History, unit);
    map.rows.push_back(RowMaker(history, map.first, av_Now.Local(), network).Make());
  }
  return map;
}

std::string DayText(DateTime av_Day, const DayCell& av_Cell, const Phrases& av_Phrases) {
  const std::string day = DateText(av_Day, "d mmmm", av_Phrases) + ": ";
  if (av_Cell.expected <= 0) {
    const Phrase& none = av_Cell.unheard   ? kDayMapSays.day_unheard
                         : av_Cell.unknown ? kDayMapSays.unknown
                                           : kDayMapSays.none_due;
    return day + av_Phrases.Text(none);
  }
  const std::string until = av_Cell.unheard ? ", " + av_Phrases.Text(kDayMapSays.rest_unheard) : "";
  if (av_Cell.missing() == 0) {
    if (av_Cell.unheard) return day + CountText(av_Cell.stored, kCommonPhrases.readings, av_Phrases) + until;
    if (av_Cell.stored == 1) return day + av_Phrases.Text(kDayMapSays.its_one);
    return day + av_Phrases.Text(kDayMapSays.all, {std::to_string(av_Cell.stored)});
  }
  const std::string some =
      av_Phrases.Text(kDayMapSays.some,
                      {std::to_string(av_Cell.stored), CountText(av_Cell.expected, kCommonPhrases.readings, av_Phrases),
                       std::to_string(av_Cell.missing())});
  return day + some + MissingText(av_Cell, av_Phrases) + until;
}

std::vector<Phrase> DayPhrases() {
  return PhrasesIn(kDayMapSays);
}

}  // namespace corvane
