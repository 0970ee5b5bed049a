#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "form/form.h"
#include "history/gap_book.h"
#include "link/port_link.h"
#include "registry/unit_editor.h"
#include "rounds/download_round.h"
#include "rounds/gap_exchange.h"
#include "rounds/round_journal.h"
#include "rounds/unit_gaps.h"
#include "state/file_names.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// What became of one gap, or why a unit was not asked for its own.
struct RepairResult {
  std::int64_t unit = 0;  ///< position, from 1
  std::string name;
  GapRecord gap;           ///< as it was found; without dates: the unit was left out
  std::int64_t added = 0;  ///< readings
  std::string result = "not asked";
  bool asked = false;
  bool heard = false;   ///< the unit has answered when it was asked for
  bool problem = true;  ///< the unit may still hold readings that are missing
};

/// Asks units for readings that their raw files lack.
class GapRepair {
 public:
  /// By itself a gap is asked for so often.
  static constexpr std::int64_t kMostTries = kMostGapTries;
  /// So many gaps are asked for by themselves behind one round: the next one must not have to wait.
  static constexpr std::size_t kMostInRound = 5;

  /// All must outlive this object.
  struct Parts {
    Form& form;
    const Registry& registry;
    const LinkState& link;
    RunFlags& flags;
    const FileNames& names;
    UnitEditor& units;
    PortLink& port;
    GapExchange& exchange;
    UnitGaps& gaps;
    DownloadRound& round;
    RoundJournal& journal;
    Trace& trace;
  };
  explicit GapRepair(const Parts& av_Parts) : p_(av_Parts) {}

  /// Asks these units (positions from 1) for all their gaps that end behind `av_Since`, the newest first; then
  /// converts and sends the files in which something was filled. **Yields.**
  void RepairUnits(const std::vector<std::int64_t>& av_Units, DateTime av_Since);
  /// The same with all active units that are read by radio, or with the selected unit. **Yields.**
  void RepairAll(bool ab_All);
  /// Behind a round over all units, where the setting wants it: of the units that the round has reached, repairs the
  /// one with the newest gap that was not asked for too often and is not beyond the limit of lines. **Yields.**
  void AfterRound();
  /// What became of the gaps of the last repair, in the order in which they were asked for.
  [[nodiscard]] const std::vector<RepairResult>& Results() const { return results_; }
  /// An operation begins. Where gaps are repaired by themselves, what a repair that was killed has left beside the raw
  /// files is taken away at the first one, else when somebody wants a repair: a program that only reads leaves alone
  /// what belongs to another one.
  void BeginOperation();

 private:
  using Row = std::vector<RepairResult>::iterator;

  [[nodiscard]] std::vector<std::int64_t> RadioUnits() const;
  /// Radio units that have answered well in the last round and have gaps that are asked for by themselves, that with
  /// the newest one first.
  [[nodiscard]] std::vector<std::int64_t> Candidates();
  [[nodiscard]] std::string RawFileOf(std::int64_t al_Unit) const;
  [[nodiscard]] bool IsAskedByItself(std::int64_t al_Unit, const GapRecord& av_Gap) const;
  /// Lists the gaps of the units, and the units that cannot be asked.
  void Collect(const std::vector<std::int64_t>& av_Units, DateTime av_Since);
  /// Asks for the gaps that are listed.
  void Run();
  void AskOverPort();
  /// Asks the unit of a row for its gaps until it does not answer; false when the base station has not either.
  [[nodiscard]] bool AskUnit(Row av_First, Row av_End);
  void Take(RepairResult& av_Row, const GapAnswer& av_Answer);
  void ConvertAndSend();
  void CountRound() const;
  void Summarise() const;
  void RemoveLeftOvers();

  Parts p_;
  std::vector<RepairResult> results_;
  /// Lines that a unit has announced for an open gap, by raw file and the gap's begin.
  std::map<std::pair<std::string, DateTime>, std::int64_t> announced_;
  bool tidied_ = false;  ///< what a former run of the program has left is gone
};

}  // namespace corvane
