#pragma once

#include "registry/client_editor.h"
#include "registry/relay_editor.h"
#include "registry/unit_editor.h"

namespace corvane {

/// The three registry editors.
struct RegistryEditors {
  explicit RegistryEditors(const RecordEditor::Parts& av_Parts)
      : units(av_Parts), relays(av_Parts), clients(av_Parts) {}

  /// Stores what the editors show into their records.
  void StoreRecords() {
    units.StoreRecord();
    relays.StoreRecord();
    clients.StoreRecord();
  }

  UnitEditor units;
  RelayEditor relays;
  ClientEditor clients;
};

}  // namespace corvane
