#pragma once

#include "registry/client_editor.h"
#include "registry/relay_editor.h"
#include "registry/unit_editor.h"

namespace corvane {

/// The three registry editors.
struct RegistryEditors {
  explicit RegistryEditors(const RecordEditor::Parts& av_Parts)
      : units(av_Parts), relays(av_Parts), clients(av_Parts) {}

  /// Stores what the editors show into their records; a relay whose ID is being typed only where `ab_Typed`.
  void StoreRecords(bool ab_Typed = true) {
    units.StoreRecord();
    if (ab_Typed || !relays.Typing()) relays.StoreRecord();
    clients.StoreRecord();
  }

  UnitEditor units;
  RelayEditor relays;
  ClientEditor clients;
};

}  // namespace corvane
