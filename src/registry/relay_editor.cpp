#include "registry/relay_editor.h"

#include <utility>

#include "base/numbers.h"

namespace corvane {

// Intended: the relay list asks for "a unit" too; a relay is a unit of the network to its users.
RelayEditor::RelayEditor(const Parts& av_Parts)
    : RecordEditorOf(av_Parts, av_Parts.registry.Relays, av_Parts.form.Lst_Relays, av_Parts.form.Txt_RelayName,
                     "Choose a unit") {}

void RelayEditor::ShowFields(std::int64_t al_Index) {
  const Relay& relay = registry_.Relays[al_Index];
  form_.Txt_RelayID.SetText(std::to_string(relay.ID));
  form_.Opt_Password.SetOptionIndex(relay.PasswordStyle);
}

void RelayEditor::StoreFields(std::int64_t al_Index) {
  Relay& relay = registry_.Relays[al_Index];
  relay.PasswordStyle = static_cast<std::int16_t>(form_.Opt_Password.GetOptionIndex());
  const std::int32_t id = LeadingInteger(form_.Txt_RelayID.text());
  if (id == relay.ID) return;
  relay.ID = id;
  FillRelaySelector();
}

void RelayEditor::ClearFields() {
  form_.Txt_RelayID.SetText("");
  form_.Opt_Password.SetOptionIndex(0);
}

void RelayEditor::AppendNew() {
  Relay relay;
  relay.ID = registry_.Relays.count() + 1;
  relay.Name = "Relay " + std::to_string(relay.ID);
  registry_.Relays.Append(std::move(relay));
}

}  // namespace corvane
