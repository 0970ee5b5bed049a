#include "registry/relay_editor.h"

#include <utility>

#include "base/numbers.h"

namespace corvane {

// Intended: the relay list asks for "a unit" too; a relay is a unit of the network to its users.
RelayEditor::RelayEditor(const Parts& av_Parts)
    : RecordEditor(av_Parts, av_Parts.form.Lst_Relays, av_Parts.form.Txt_RelayName, "Choose a unit") {}

void RelayEditor::FillRelaySelector() {
  const SuppressEvents::Guard guard(form_.Suppress);
  Selector& selector = form_.Cmb_Relay;
  const bool had_entry = selector.current() >= 0;
  const std::int32_t number = selector.SelectedItemData();
  selector.Clear();
  for (const Relay& relay : registry_.Relays) selector.Add(relay.Name, relay.ID);
  if (had_entry) selector.SelectByItemData(number);
}

const std::string& RelayEditor::NameOf(std::int64_t al_Index) const {
  return registry_.Relays[al_Index].Name;
}

void RelayEditor::SetName(std::int64_t al_Index, std::string_view as_Name) {
  if (registry_.Relays[al_Index].Name == as_Name) return;
  registry_.Relays[al_Index].Name = as_Name;
  FillRelaySelector();
}

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

// Intended: "Direct" may be deleted like any other; the relay that then stands first becomes "Direct" at the next
// start.
void RelayEditor::RemoveAt(std::int64_t al_Index) {
  registry_.Relays.Remove(al_Index);
}

void RelayEditor::Swap(std::int64_t al_First, std::int64_t al_Second) {
  std::swap(registry_.Relays[al_First], registry_.Relays[al_Second]);
}

}  // namespace corvane
