#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// What one command brought from a unit and what is wrong with it: sessions, tables and journals take their words from
/// here.
struct DownloadTally {
  std::int64_t announced = 0;    ///< data lines that the header announced, 0 when it announced none
  std::int64_t arrived = 0;      ///< readings that arrived whole: stored, skipped or passed over
  std::int64_t stored = 0;       ///< readings added to the raw file
  std::int64_t rejected = 0;     ///< data lines that were dropped behind an overrun
  std::int64_t passed_over = 0;  ///< lines that stand in the file of bad lines
  std::int64_t kept_aside = 0;   ///< readings that are kept beside the raw file because their date is to come
  std::string problem;           ///< what is wrong, whichever way the command ended; empty when nothing is
  bool one_try_only = false;     ///< another try would end the same way

  /// Adds a problem to those that are known.
  void AddProblem(const std::string& as_Problem) { problem += (problem.empty() ? "" : "; ") + as_Problem; }
};

}  // namespace corvane
