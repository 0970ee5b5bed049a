#pragma once

#include <vector>

#include "setup/stations_list.h"
#include "setup/stations_table.h"
#include "state/records.h"

namespace corvane {

/// What a table makes of the three lists.
struct StationLists {
  const StationList<Relay>& relays;
  const StationList<Client>& clients;
  const StationList<Unit>& units;
};

/// Adds what is wrong with the lists as a whole: names and IDs that two records bear, raw files that two units would
/// share, relays and clients that would be missing. What was so before the table may stay so.
void CheckStations(const StationLists& av_Lists, std::vector<StationFault>& av_Faults);

}  // namespace corvane
