#include "registry/relay_editor.h"

#include <algorithm>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"

namespace corvane {

// Intended: the relay list asks for "a unit" too; a relay is a unit of the network to its users.
RelayEditor::RelayEditor(const Parts& av_Parts)
    : RecordEditorOf(av_Parts, av_Parts.registry.Relays, av_Parts.form.Lst_Relays, av_Parts.form.Txt_RelayName,
                     "Choose a unit") {
  WatchForEdits({&p_.form.Opt_Password});
  p_.form.Txt_RelayID.on_change = [this] {
    typing_ = !p_.form.Suppress.set();
    NoticeEdit();
  };
}

void RelayEditor::Keep(std::int64_t al_Index) {
  RecordEditorOf::Keep(al_Index);
  units_ = UnitsWith(kept_.ID, &Unit::RelayID, p_.form.Cmb_Relay);
}

void RelayEditor::PutBack(std::int64_t al_Index) {
  RecordEditorOf::PutBack(al_Index);
  FillRelaySelector();
  Refer(units_, kept_.ID, &Unit::RelayID, p_.form.Cmb_Relay);
}

void RelayEditor::ShowFields(std::int64_t al_Index) {
  const Relay& relay = p_.registry.Relays[al_Index];
  p_.form.Txt_RelayID.SetText(std::to_string(relay.ID));
  p_.form.Opt_Password.SetOptionIndex(relay.PasswordStyle);
  typing_ = false;
}

void RelayEditor::StoreFields(std::int64_t al_Index) {
  Relay& relay = p_.registry.Relays[al_Index];
  relay.PasswordStyle = static_cast<std::int16_t>(p_.form.Opt_Password.GetOptionIndex());
  const std::int32_t id = LeadingInteger(p_.form.Txt_RelayID.text());
  if (id == relay.ID) return;
  if (!change_ || change_->to != relay.ID) {
    change_ = {relay.ID, relay.ID, UnitsWith(relay.ID, &Unit::RelayID, p_.form.Cmb_Relay)};
  }
  change_->to = id;
  relay.ID = id;
  FillRelaySelector();
}

void RelayEditor::LetUnitsFollow() {
  typing_ = false;
  if (!change_) return;
  const Change change = *std::exchange(change_, std::nullopt);
  // Units without a relay are reached directly, whatever number the entry for that bears.
  if (change.from == 0 || change.units.empty()) return;
  const std::size_t count = change.units.size();
  const std::string units = std::to_string(count) + (count == 1 ? " unit" : " units");
  const bool alone = RelaysWith(change.from) == 0 && RelaysWith(change.to) == 1;
  const bool back = change.to == change.from;
  const std::string question =
      units + (count == 1 ? " is reached through it. Let it follow?" : " are reached through it. Let them follow?");
  if (back || (alone && p_.messages.Ask(question, p_.registry.FindRelay(change.to)->Name, kSecondDefault))) {
    return Refer(change.units, change.to, &Unit::RelayID, p_.form.Cmb_Relay);
  }
  TellWhatStays(change);
}

void RelayEditor::TellWhatStays(const Change& av_Change) {
  const std::int64_t shown = p_.form.Lst_Units.current() + 1;
  // The empty selector of the unit in the editor is stored as none.
  const bool loses = p_.form.Cmb_Relay.current() < 0 && std::ranges::count(av_Change.units, shown) > 0;
  const std::size_t count = av_Change.units.size() - (loses ? 1 : 0);
  std::string text = std::to_string(count) + (count == 1 ? " unit stays" : " units stay") + " with the relay ID " +
                     std::to_string(av_Change.from);
  if (loses) {
    text += std::string(kLineBreak) + "\"" + p_.registry.Units[shown].Name +
            "\", which is shown, has no relay now: choose one for it";
  }
  p_.messages.Show(text);
}

std::int64_t RelayEditor::RelaysWith(std::int32_t al_ID) const {
  return std::count_if(records_.begin(), records_.end(), [al_ID](const Relay& relay) { return relay.ID == al_ID; });
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
