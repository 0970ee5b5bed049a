#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "lang/phrases.h"
#include "registry/record_editor.h"
#include "setup/stations_table.h"
#include "state/records.h"

namespace corvane {

/// How a table is to be put in.
struct StationsWish {
  /// Records that the table does not have are deleted, of the kinds that it has rows of; "Direct" stays.
  bool deletes = false;
  /// The raw file of the unit at a position (from 1) of the list, empty where there is none; an empty function: none.
  std::function<std::string(std::int64_t position)> raw_file;
  Phrases phrases = {};
};

/// What putting a table in would come to.
struct StationsPlan {
  std::vector<StationFault> faults;  ///< all of them; with any, nothing is to be put in
  std::vector<std::string> changes;  ///< a sentence each, without a full stop; none: nothing would change
  std::vector<std::string> notes;    ///< what else is to be known, such as columns that are not used
  // The lists as they would be.
  std::vector<Placed<Unit>> units;
  std::vector<Placed<Relay>> relays;
  std::vector<Placed<Client>> clients;
};

/// All rows that a registry comes to, in its order. Putting them in again changes nothing.
[[nodiscard]] StationTable TableOf(const Registry& av_Registry);
/// Works out what a table would change; changes nothing. What the editors show must have been stored.
[[nodiscard]] StationsPlan PlanStations(const Registry& av_Registry, const StationTable& av_Table,
                                        const StationsWish& av_Wish);

}  // namespace corvane
