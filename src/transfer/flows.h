#pragma once

#include <cstdint>

namespace corvane {

/// The transfer steps of a round: send, fetch and backup.
///
/// No transfer is built in yet: nothing is sent, fetched or backed up, and no text says it was.
class TransferFlows {
 public:
  /// Sends the files of a range of units to a destination (1 FTP, 2 web data); `al_GetFrom` -1 means any.
  void ftpAllUnits(bool /*ab_All*/, std::int32_t /*al_GetFrom*/, std::int16_t /*ai_Destination*/) {}
  /// Fetches the files of a range of units from a source (3 FTP, 4 web data); true when files arrived.
  [[nodiscard]] bool FetchAllUnits(bool /*ab_All*/, std::int32_t /*al_Source*/) { return false; }
  void DoBackup() {}
};

}  // namespace corvane
