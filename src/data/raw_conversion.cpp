#include "data/raw_conversion.h"

namespace corvane {

void RawConversion::ResetCounters() {
  flags_.error_counter = 0;
  flags_.line_counter = 0;
}

bool RawConversion::InitialiseLookups() {
  const bool ready = lookups_.Moisture.Initialise(files_.SettingsFile(0)) &&
                     lookups_.Salinity.Initialise(files_.SettingsFile(1)) &&
                     lookups_.Correction.Initialise(files_.SettingsFile(2));
  if (!ready) ++flags_.problems;
  return ready;
}

void RawConversion::Convert(std::int64_t al_Unit, const std::string& as_RawFile) {
  const std::int64_t errors_before = flags_.error_counter;
  const bool finished = converter_.ConvertToCalibrated(as_RawFile);
  results_.push_back({al_Unit, converter_.Readings(), flags_.error_counter - errors_before});
  if (on_converted) on_converted(results_.back(), as_RawFile);
  if (!finished || flags_.error_counter > errors_before) ++flags_.problems;
}

}  // namespace corvane
