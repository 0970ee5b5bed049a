#include "registry/relay_editor.h"

#include <utility>

#include "base/numbers.h"

namespace corvane {

// Intended: the relay list asks for "a unit" too; a relay is a unit of the network to its users.
RelayEditor::RelayEditor(const Parts& av_Parts)
    : RecordEditorOf(av_Parts, av_Parts.registry.Relays, av_Parts.form.Lst_Relays, av_Parts.form.Txt_RelayName,
                     "Choose a unit") {}

void RelayEditor::ShowFields(std::int64_t al_Index) {
  const Relay& relay = p_.registry.Relays[al_Index];
  p_.form.Txt_RelayID.SetText(std::to_string(relay.ID));
  p_.form.Opt_Password.SetOptionIndex(relay.PasswordStyle);
}

void RelayEditor::StoreFields(std::int64_t al_Index) {
  Relay& relay = p_.registry.Relays[al_Index];
  relay.PasswordStyle = static_cast<std::int16_t>(p_.form.Opt_Password.GetOptionIndex());
  const std::int32_t id = LeadingInteger(p_.form.Txt_RelayID.text());
  if (id == relay.ID) return;
  relay.ID = id;
  FillRelaySelector();
}

void RelayEditor::ClearFields() {
  p_.form.Txt_RelayID.SetText("");
  p_.form.Opt_Password.SetOptionIndex(0);
}

void RelayEditor::AppendNew() {
  Relay relay;
  relay.ID = p_.registry.Relays.count() + 1;
  relay.Name = "Relay " + std::to_string(relay.ID);
  p_.registry.Relays.Append(std::move(relay));
}

}  // namespace corvane
