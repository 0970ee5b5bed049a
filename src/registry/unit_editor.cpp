#include "registry/unit_editor.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/numbers.h"

namespace corvane {
namespace {

float SinglePrecision(std::string_view text) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(LeadingNumber(text), -kLargest, kLargest));
}

}  // namespace

UnitEditor::UnitEditor(const Parts& av_Parts)
    : RecordEditorOf(av_Parts, av_Parts.registry.Units, av_Parts.form.Lst_Units, av_Parts.form.Txt_UnitName,
                     "Choose a unit") {
  list_.on_check = [this](std::int64_t row) { OnCheck(row); };
  p_.form.Chk_UnitActive.on_change = [this] { OnActiveTicked(); };
  WatchForEdits({&p_.form.Txt_UnitID, &p_.form.Cmb_Relay, &p_.form.Cmb_Client, &p_.form.Cmb_GetFrom,
                 &p_.form.Cmb_SendTo, &p_.form.Txt_Correction[0], &p_.form.Txt_Correction[1]});
}

bool UnitEditor::IsChecked(std::int64_t al_Index) const {
  return p_.registry.Units[al_Index].Active != 0;
}

void UnitEditor::ShowFields(std::int64_t al_Index) {
  const Unit& unit = p_.registry.Units[al_Index];
  p_.form.Txt_UnitID.SetText(std::to_string(unit.ID));
  p_.form.Chk_UnitActive.SetTicked(unit.Active != 0);
  p_.form.Cmb_Relay.SelectByItemData(unit.RelayID);
  p_.form.Cmb_Client.SelectByItemData(unit.ClientID);
  p_.form.Cmb_GetFrom.SelectByItemData(unit.GetFrom);
  p_.form.Cmb_SendTo.SelectByItemData(unit.ftpFile);
  p_.form.Txt_Correction[0].SetText(ShortestText(unit.MoistureCorrection));
  p_.form.Txt_Correction[1].SetText(ShortestText(unit.SalinityCorrection));
  p_.form.Txt_Depths.SetText(unit.Depths);
}

void UnitEditor::StoreFields(std::int64_t al_Index) {
  Unit& unit = p_.registry.Units[al_Index];
  // Intended: IDs are taken as entered; stations being exchanged may bear the same number for a while.
  unit.ID = LeadingInteger(p_.form.Txt_UnitID.text());
  unit.Active = list_.checked(al_Index - 1) ? 1 : 0;
  // Intended: an empty selector stores 0: direct, no client, by radio, not sent.
  unit.RelayID = p_.form.Cmb_Relay.SelectedItemData();
  unit.ClientID = p_.form.Cmb_Client.SelectedItemData();
  unit.GetFrom = p_.form.Cmb_GetFrom.SelectedItemData();
  unit.ftpFile = p_.form.Cmb_SendTo.SelectedItemData();
  unit.MoistureCorrection = SinglePrecision(p_.form.Txt_Correction[0].text());
  unit.SalinityCorrection = SinglePrecision(p_.form.Txt_Correction[1].text());
  unit.Depths = p_.form.Txt_Depths.text();
}

void UnitEditor::ClearFields() {
  p_.form.Txt_UnitID.SetText("");
  p_.form.Chk_UnitActive.SetTicked(false);
  for (Selector* selector : {&p_.form.Cmb_Relay, &p_.form.Cmb_Client, &p_.form.Cmb_GetFrom, &p_.form.Cmb_SendTo}) {
    selector->SetCurrent(-1);
  }
  for (TextField& correction : p_.form.Txt_Correction) correction.SetText("");
  p_.form.Txt_Depths.SetText("");
}

void UnitEditor::AppendNew() {
  Unit unit;
  unit.ID = p_.registry.Units.count() + 1;
  unit.Name = "Site " + std::to_string(unit.ID);
  unit.Active = 1;
  p_.registry.Units.Append(std::move(unit));
}

void UnitEditor::OnCheck(std::int64_t al_Row) {
  if (p_.form.Suppress.set() || !p_.registry.Units.Has(al_Row + 1)) return;
  NoticeEdit();
  const bool active = list_.checked(al_Row);
  p_.registry.Units[al_Row + 1].Active = active ? 1 : 0;
  if (al_Row + 1 != Shown()) return;
  const SuppressEvents::Guard guard(p_.form.Suppress);
  p_.form.Chk_UnitActive.SetTicked(active);
}

void UnitEditor::OnActiveTicked() {
  if (p_.form.Suppress.set() || !p_.registry.Units.Has(Shown())) return;
  NoticeEdit();
  const SuppressEvents::Guard guard(p_.form.Suppress);
  const bool active = p_.form.Chk_UnitActive.ticked();
  list_.SetChecked(Shown() - 1, active);
  p_.registry.Units[Shown()].Active = active ? 1 : 0;
}

}  // namespace corvane
