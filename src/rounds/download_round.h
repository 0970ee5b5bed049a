#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "rounds/backup.h"
#include "rounds/batch_conversion.h"
#include "rounds/round_journal.h"
#include "rounds/sessions.h"
#include "rounds/transfer_round.h"

namespace corvane {

/// The modes of a chained download.
enum DownloadMode : std::int16_t { kHandHeldUnits = 0, kRadioUnits = 1, kCurrentUnit = 2 };

/// A download session and the conversion, fetch, send and backup that follow it.
class DownloadRound {
 public:
  /// What a round strings together; all must outlive it.
  struct Parts {
    Form& form;
    const LinkState& link;
    Sessions& sessions;
    BatchConversion& conversion;
    TransferRound& transfers;
    Backup& backup;
    Schedule& schedule;
    const FileNames& names;
    RoundJournal& journal;
    Trace& trace;
  };
  explicit DownloadRound(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs the chain of a mode; every step after the first runs only while nothing was cancelled. **Yields.**
  void DownloadAllUnits(bool ab_All, std::int16_t ai_Mode);
  /// Downloads those of these units (positions from 1) that are active and read by radio, then converts and sends their
  /// files; `av_Select` selects one. Serves no schedule: last and next download stay what they were. **Yields.**
  void CollectUnits(const std::vector<std::int64_t>& av_Units, const std::function<void(std::int64_t)>& av_Select);
  /// Fetches from one source (3 FTP, 4 web data) and converts what came when it is raw. **Yields.**
  void FetchAndConvert(bool ab_All, std::int32_t al_Source);
  /// Converts and sends the files of units in which a repair has filled gaps; `av_Select` selects one. **Yields.**
  void AfterRepair(const std::vector<std::int64_t>& av_Units, const std::function<void(std::int64_t)>& av_Select);

 private:
  void RunMode(bool ab_All, std::int16_t ai_Mode);
  void RadioRound(bool ab_All);
  void HandHeldRound(bool ab_All);
  void CurrentUnitRound();
  void FetchEverything(bool ab_All);
  void ConvertFetched(bool ab_All, std::int32_t al_Source);
  void SendEverything(bool ab_All, std::int32_t al_GetFrom);

  Parts p_;
};

}  // namespace corvane
