#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "data/calibrated_converter.h"
#include "data/local_files.h"
#include "data/lookup.h"
#include "state/run_flags.h"

namespace corvane {

/// What became of one raw file.
struct ConversionResult {
  std::int64_t unit = 0;
  std::optional<std::int64_t> readings;  ///< in the raw file; none when no calibrated file was made
  std::int64_t bad_lines = 0;
};

/// The conversion of one raw file after the other within a command: tables, counters, problems and results.
class RawConversion {
 public:
  /// All must outlive this object.
  RawConversion(RunFlags& av_Flags, const LocalFiles& av_Files, Lookups& av_Lookups, CalibratedConverter& av_Converter)
      : flags_(av_Flags), files_(av_Files), lookups_(av_Lookups), converter_(av_Converter) {}

  /// Sets the counters of lines and errors to zero: a conversion command begins.
  void ResetCounters();
  /// Reads the three lookup files anew; false at the first that fails, which has been shown. **Yields** then.
  [[nodiscard]] bool InitialiseLookups();
  /// Converts the raw file of unit `al_Unit` (from 1), which is selected; one that failed or has bad lines counts as a
  /// problem of the operation. **Yields.**
  void Convert(std::int64_t al_Unit, const std::string& as_RawFile);
  /// The raw files that the present or last operation has tried, in order.
  [[nodiscard]] const std::vector<ConversionResult>& Results() const { return results_; }
  /// Forgets them: an operation begins.
  void ClearResults() { results_.clear(); }

  /// A raw file was converted, or could not be; set by the composition root.
  std::function<void(const ConversionResult& av_Result, const std::string& as_RawFile)> on_converted;

 private:
  RunFlags& flags_;
  const LocalFiles& files_;
  Lookups& lookups_;
  CalibratedConverter& converter_;
  std::vector<ConversionResult> results_;
};

}  // namespace corvane
