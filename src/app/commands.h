#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "app/conversion_commands.h"
#include "app/registry_commands.h"
#include "app/transfer_commands.h"
#include "app/unit_commands.h"
#include "link/link_writer.h"
#include "link/port_link.h"
#include "rounds/file_transfer.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"

namespace corvane {

/// The operations of the program as one list, and what ends them.
///
/// Operations run in the operation slot; a second one is refused. Every command first stores the registry editors.
class Commands {
 public:
  /// The families of commands and what a cancel reaches; all must outlive this object.
  struct Parts {
    UnitCommands& units;
    ConversionCommands& conversion;
    TransferCommands& transfer;
    RegistryCommands& registry;
    LinkState& link;
    RunFlags& flags;
    const OperationSlot& slot;
    FileTransfer& files;
    PortLink& port;
    LinkWriter& writer;
    Trace& trace;
  };
  explicit Commands(const Parts& av_Parts) : p_(av_Parts) {}

  // Operations; all **yield** and are refused, returning false, while another one runs.

  bool DownloadAll(bool ab_All, DownloadMode av_Mode, bool ab_Automatic) {
    return p_.units.DownloadAll(ab_All, av_Mode, ab_Automatic);
  }
  bool Collect(const std::vector<std::int64_t>& av_Units) { return p_.units.Collect(av_Units); }
  bool Process(bool ab_All, std::int16_t ai_Command) { return p_.units.Process(ab_All, ai_Command); }
  bool RepairUnits(const std::vector<std::int64_t>& av_Units, DateTime av_Since) {
    return p_.units.RepairUnits(av_Units, av_Since);
  }
  bool TestPort(std::int16_t ai_Index) { return p_.units.TestPort(ai_Index); }
  bool FindPort(std::int16_t ai_Index) { return p_.units.FindPort(ai_Index); }
  bool ConvertAll(bool ab_All) { return p_.conversion.ConvertAll(ab_All); }
  bool Send(bool ab_All) { return p_.transfer.Send(ab_All); }
  /// Fetches the units' files from the FTP server and converts what came raw.
  bool Fetch(bool ab_All) { return p_.transfer.Fetch(ab_All, kFromFtp); }
  bool Backup() { return p_.transfer.BackUp(); }

  /// Makes these units (positions from 1) active, or no longer so. **Yields.**
  void SetActive(const std::vector<std::int64_t>& av_Units, bool ab_Active) {
    p_.registry.SetActive(av_Units, ab_Active);
  }

  /// The units, relays and clients as they are, to be written as a table or asked what one would change. **Yields.**
  [[nodiscard]] StationsQuestion AskStations() { return p_.registry.AskStations(); }
  /// Puts in what an answer without faults says; false, without doing anything, when the lists are not as they were.
  /// **Yields.**
  bool PutInStations(const StationsQuestion& av_Question, StationsPlan av_Answer) {
    return p_.registry.PutInStations(av_Question, std::move(av_Answer));
  }

  /// Cancels what runs; while idle tells the base station to stop whatever it does.
  void Cancel();
  /// Asks the program to end: what runs is cancelled and unwinds, then the main loop closes.
  ///
  /// `ab_Silently`: ended by a signal or the session; no box is shown any more.
  void Close(bool ab_Silently);
  /// Called once when the end is asked for, by whatever way.
  std::function<void()> on_close;

 private:
  Parts p_;
};

}  // namespace corvane
