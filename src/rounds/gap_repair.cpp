#include "rounds/gap_repair.h"

#include <algorithm>
#include <utility>

#include "base/files.h"
#include "base/format.h"
#include "base/status.h"
#include "data/gap_splice.h"
#include "history/network_settings.h"
#include "ui/mouse_pointer.h"

namespace corvane {
namespace {

constexpr std::int64_t kSilentUnits = 3;  ///< in a row: then the base station may be silent
constexpr std::string_view kUnfinishedFile = ".part";

bool IsGap(const RepairResult& av_Row) {
  return !av_Row.gap.to.IsNone();
}

/// In words, for the log.
std::string LineOf(const RepairResult& av_Row) {
  const std::string gap =
      IsGap(av_Row) ? ", from " + GeneralDate(av_Row.gap.from) + " to " + GeneralDate(av_Row.gap.to) : "";
  return "Repair: " + av_Row.name + gap + ": " + av_Row.result;
}

}  // namespace

void GapRepair::RepairAll(bool ab_All) {
  const std::int64_t selected = p_.units.Selected();
  if (ab_All) return RepairUnits(RadioUnits(), DateTime());
  if (!p_.registry.Units.Has(selected)) throw RunTimeError("Choose a unit");
  RepairUnits({selected}, DateTime());
}

std::vector<std::int64_t> GapRepair::RadioUnits() const {
  std::vector<std::int64_t> units;
  for (std::int64_t index = 1; index <= p_.registry.Units.count(); ++index) {
    const Unit& unit = p_.registry.Units[index];
    if (unit.Active != 0 && unit.GetFrom == kFromRadio) units.push_back(index);
  }
  return units;
}

void GapRepair::RepairUnits(const std::vector<std::int64_t>& av_Units, DateTime av_Since) {
  results_.clear();
  RemoveLeftOvers();
  Collect(av_Units, av_Since);
  Run();
  p_.flags.problems += std::count_if(results_.begin(), results_.end(), [](const auto& row) { return row.problem; });
  Summarise();
}

void GapRepair::AfterRound() {
  if (!p_.form.Chk_RepairGaps.ticked() || Cancelled(p_.link, p_.flags) || !p_.link.ContinueOk() || p_.link.PortFailed) {
    return;
  }
  results_.clear();
  for (const std::int64_t unit : Candidates()) {
    results_.clear();
    Collect({unit}, DateTime());
    std::erase_if(results_, [&](const auto& row) { return !IsGap(row) || !IsAskedByItself(unit, row.gap); });
    if (!results_.empty()) break;
  }
  if (results_.empty()) return;
  if (results_.size() > kMostInRound) results_.resize(kMostInRound);
  Run();
  Summarise();
}

std::vector<std::int64_t> GapRepair::Candidates() {
  std::vector<std::pair<DateTime, std::int64_t>> newest;
  for (const std::int64_t unit : RadioUnits()) {
    if (!p_.registry.Units[unit].Marked || p_.registry.Units[unit].Problem || !p_.gaps.WhyNone(unit).empty()) continue;
    DateTime to;
    try {
      for (const GapRecord& gap : p_.gaps.Remembered(unit, [this] { return Cancelled(p_.link, p_.flags); })) {
        if (IsAskedByItself(unit, gap)) to = std::max(to, gap.to);
      }
    } catch (const RunTimeError& error) {
      p_.trace.TraceDecision("Repair: " + p_.registry.Units[unit].Name + ": " + error.what());
    }
    if (!to.IsNone()) newest.emplace_back(to, unit);
  }
  std::stable_sort(newest.begin(), newest.end(),
                   [](const auto& one, const auto& other) { return one.first > other.first; });
  std::vector<std::int64_t> units;
  for (const auto& [to, unit] : newest) units.push_back(unit);
  return units;
}

std::string GapRepair::RawFileOf(std::int64_t al_Unit) const {
  return p_.names.DataFileName(static_cast<std::int32_t>(al_Unit), false);
}

bool GapRepair::IsAskedByItself(std::int64_t al_Unit, const GapRecord& av_Gap) const {
  if (av_Gap.tries >= kMostTries) return false;
  const std::int64_t most = ReadNetworkSettings(p_.form).repair_limit;
  // From an earlier date on the unit sends more, never less.
  const std::string file = RawFileOf(al_Unit);
  const auto announced = announced_.lower_bound({file, av_Gap.from});
  if (announced != announced_.end() && announced->first.first == file && announced->second > most) return false;
  return IsInReach(av_Gap, p_.exchange.Now(), most);
}

void GapRepair::Collect(const std::vector<std::int64_t>& av_Units, DateTime av_Since) {
  for (const std::int64_t unit : av_Units) {
    if (Cancelled(p_.link, p_.flags)) return;
    RepairResult row;
    row.unit = unit;
    row.name = p_.registry.Units[unit].Name;
    row.result = p_.gaps.WhyNone(unit);
    try {
      if (!row.result.empty()) throw RunTimeError(row.result);
      for (const GapRecord& gap : p_.gaps.Find(unit, [this] { return Cancelled(p_.link, p_.flags); })) {
        if (gap.to > av_Since) results_.push_back({unit, row.name, gap});
      }
    } catch (const RunTimeError& error) {
      row.result = error.what();
      results_.push_back(row);
    }
  }
}

void GapRepair::Run() {
  if (std::none_of(results_.begin(), results_.end(), IsGap)) return;
  const std::int64_t selected = p_.units.Selected();
  const bool all = results_.front().unit != results_.back().unit;
  p_.journal.Run(RoundKind::Repair, all, [this] {
    AskOverPort();
    CountRound();
    ConvertAndSend();
  });
  p_.units.ReselectUnit(selected);
}

void GapRepair::AskOverPort() {
  const BusyPointer busy(p_.form.Frm_Main);
  p_.port.ClearEverything();
  if (p_.port.OpenPort(PortIndexForUnit(kFromRadio))) {
    p_.exchange.Begin();
    std::int64_t silent_in_a_row = 0;
    for (auto row = results_.begin(); row != results_.end() && silent_in_a_row < kSilentUnits;) {
      if (Cancelled(p_.link, p_.flags) || !p_.port.IsOpen()) break;
      const auto end = std::find_if(row, results_.end(), [&](const auto& each) { return each.unit != row->unit; });
      if (IsGap(*row)) silent_in_a_row = AskUnit(row, end) ? 0 : silent_in_a_row + 1;
      row = end;
    }
  } else {
    for (RepairResult& row : results_) {
      if (IsGap(row)) row.result = "not asked: the port did not open";
    }
  }
  p_.exchange.End();
}

bool GapRepair::AskUnit(Row av_First, Row av_End) {
  p_.journal.BeginTurn(av_First->unit);
  GapAnswer answer;
  answer.heard = true;
  for (auto row = av_First; row != av_End && answer.heard && !Cancelled(p_.link, p_.flags); ++row) {
    answer = p_.exchange.Ask(row->unit, row->gap);
    Take(*row, answer);
  }
  p_.journal.EndTurn(av_First->unit);
  return !answer.silent;
}

void GapRepair::Take(RepairResult& av_Row, const GapAnswer& av_Answer) {
  av_Row.added = av_Answer.added;
  av_Row.result = av_Answer.result;
  av_Row.asked = true;
  av_Row.heard = av_Answer.heard;
  av_Row.problem = av_Answer.state != GapState::Filled && av_Answer.state != GapState::Lost;
  const std::pair gap(RawFileOf(av_Row.unit), av_Row.gap.from);
  if (!av_Row.problem) {
    announced_.erase(gap);
  } else if (av_Answer.announced > 0) {
    announced_[gap] = av_Answer.announced;
  }
  p_.trace.LogWrite(LineOf(av_Row));
  if (av_Answer.state == GapState::Found) return;
  GapRecord noted = av_Row.gap;
  noted.state = av_Answer.state;
  ++noted.tries;
  p_.gaps.Note(av_Row.unit, noted);
}

void GapRepair::ConvertAndSend() {
  std::vector<std::int64_t> units;
  for (const RepairResult& row : results_) {
    if (row.added > 0 && (units.empty() || units.back() != row.unit)) units.push_back(row.unit);
  }
  p_.round.AfterRepair(units, [this](std::int64_t unit) { p_.units.ReselectUnit(unit); });
}

void GapRepair::CountRound() const {
  RoundRecord counts;
  std::int64_t unit = 0;
  for (const RepairResult& row : results_) {
    const bool first = row.asked && row.unit != unit;
    counts.asked += first ? 1 : 0;
    counts.answered += first && row.heard ? 1 : 0;
    counts.stored += row.added;
    counts.problems += row.problem ? 1 : 0;
    unit = row.unit;
  }
  p_.journal.Count(counts);
}

void GapRepair::Summarise() const {
  const auto gaps = std::count_if(results_.begin(), results_.end(), IsGap);
  if (gaps == 0) return p_.trace.Status("No gaps to repair");
  std::int64_t added = 0;
  for (const RepairResult& row : results_) added += row.added;
  const auto settled = std::count_if(results_.begin(), results_.end(), [](const auto& row) { return !row.problem; });
  p_.trace.Status("Repair: " + std::to_string(settled) + " of " + std::to_string(gaps) + " gap(s) settled, " +
                  std::to_string(added) + " reading(s) put in");
}

void GapRepair::BeginOperation() {
  results_.clear();
  if (p_.form.Chk_RepairGaps.ticked()) RemoveLeftOvers();
}

void GapRepair::RemoveLeftOvers() {
  if (std::exchange(tidied_, true)) return;
  for (std::int32_t unit = 1; unit <= p_.registry.Units.count(); ++unit) {
    const std::string raw_file = p_.names.DataFileName(unit, false);
    static_cast<void>(RemoveFile(raw_file + std::string(RawKeeper::kRepairFile)));
    std::string target;
    // A file that a link leads to is written anew beside itself.
    if (!FollowLink(raw_file, target).ok()) continue;
    for (const std::string_view behind : {kFormerRawFile, kUnfinishedFile}) {
      static_cast<void>(RemoveFile(target + std::string(behind)));
    }
  }
}

}  // namespace corvane
