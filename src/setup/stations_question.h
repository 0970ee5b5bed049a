#pragma once

#include <string>
#include <vector>

#include "registry/editors.h"
#include "setup/stations_plan.h"
#include "state/records.h"

namespace corvane {

/// The three lists as they are at one moment, to be asked what a table would change in them, on any thread.
struct StationsQuestion {
  Registry registry;
  std::vector<std::string> raw_files;  ///< full names by unit, whether they are there or not
  Phrases phrases = {};                ///< the language of the answer

  /// What the table would change; looks at the disk for raw files.
  [[nodiscard]] StationsPlan Answer(const StationTable& av_Table, bool ab_Deletes) const;
  /// The lists as a table's file.
  [[nodiscard]] std::string File() const { return StationsFile(TableOf(registry)); }
  /// True while everything that is saved of the lists is as it was.
  [[nodiscard]] bool StillHolds(const Registry& av_Registry) const;
};

/// Puts the lists of a plan in, through the editors; the plan was made for `av_Registry` as it is and has no faults.
/// False, without doing anything, while an operation runs. **Yields** last, where the file list has a message.
bool PutInStations(StationsPlan av_Plan, const Registry& av_Registry, RegistryEditors& av_Editors);

}  // namespace corvane
