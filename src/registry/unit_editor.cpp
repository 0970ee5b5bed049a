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
  form_.Chk_UnitActive.on_change = [this] { OnActiveTicked(); };
}

bool UnitEditor::IsChecked(std::int64_t al_Index) const {
  return registry_.Units[al_Index].Active != 0;
}

void UnitEditor::ShowFields(std::int64_t al_Index) {
  const Unit& unit = registry_.Units[al_Index];
  form_.Txt_UnitID.SetText(std::to_string(unit.ID));
  form_.Chk_UnitActive.SetTicked(unit.Active != 0);
  form_.Cmb_Relay.SelectByItemData(unit.RelayID);
  form_.Cmb_Client.SelectByItemData(unit.ClientID);
  form_.Cmb_GetFrom.SelectByItemData(unit.GetFrom);
  form_.Cmb_SendTo.SelectByItemData(unit.ftpFile);
  form_.Txt_Correction[0].SetText(ShortestText(unit.MoistureCorrection));
  form_.Txt_Correction[1].SetText(ShortestText(unit.SalinityCorrection));
}

void UnitEditor::StoreFields(std::int64_t al_Index) {
  Unit& unit = registry_.Units[al_Index];
  // Intended: IDs are taken as entered; stations being exchanged may bear the same number for a while.
  unit.ID = LeadingInteger(form_.Txt_UnitID.text());
  unit.Active = list_.checked(al_Index - 1) ? 1 : 0;
  // Intended: an empty selector stores 0: direct, no client, by radio, not sent.
  unit.RelayID = form_.Cmb_Relay.SelectedItemData();
  unit.ClientID = form_.Cmb_Client.SelectedItemData();
  unit.GetFrom = form_.Cmb_GetFrom.SelectedItemData();
  unit.ftpFile = form_.Cmb_SendTo.SelectedItemData();
  unit.MoistureCorrection = SinglePrecision(form_.Txt_Correction[0].text());
  unit.SalinityCorrection = SinglePrecision(form_.Txt_Correction[1].text());
}

void UnitEditor::ClearFields() {
  form_.Txt_UnitID.SetText("");
  form_.Chk_UnitActive.SetTicked(false);
  for (Selector* selector : {&form_.Cmb_Relay, &form_.Cmb_Client, &form_.Cmb_GetFrom, &form_.Cmb_SendTo}) {
    selector->SetCurrent(-1);
  }
  for (TextField& correction : form_.Txt_Correction) correction.SetText("");
}

void UnitEditor::AppendNew() {
  Unit unit;
  unit.ID = registry_.Units.count() + 1;
  unit.Name = "Site " + std::to_string(unit.ID);
  unit.Active = 1;
  registry_.Units.Append(std::move(unit));
}

void UnitEditor::OnCheck(std::int64_t al_Row) {
  if (form_.Suppress.set() || !registry_.Units.Has(al_Row + 1)) return;
  const bool active = list_.checked(al_Row);
  registry_.Units[al_Row + 1].Active = active ? 1 : 0;
  if (al_Row + 1 != Shown()) return;
  const SuppressEvents::Guard guard(form_.Suppress);
  form_.Chk_UnitActive.SetTicked(active);
}

void UnitEditor::OnActiveTicked() {
  if (form_.Suppress.set() || !registry_.Units.Has(Shown())) return;
  const SuppressEvents::Guard guard(form_.Suppress);
  const bool active = form_.Chk_UnitActive.ticked();
  list_.SetChecked(Shown() - 1, active);
  registry_.Units[Shown()].Active = active ? 1 : 0;
}

}  // namespace corvane
