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

// Both add what is wrong with lists as a whole. What was so before the table may stay so, and what only follows from a
// fault of a row's own is left out.

/// Names and IDs that two relays or two clients bear, or that stand for none.
void CheckCarriers(const StationLists& av_Lists, std::vector<StationFault>& av_Faults);
/// Names and raw files that two units would share, relays and clients that would be missing.
void CheckStations(const StationLists& av_Lists, std::vector<StationFault>& av_Faults);

}  // namespace corvane
