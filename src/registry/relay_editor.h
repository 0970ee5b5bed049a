#pragma once

#include "registry/record_editor.h"

namespace corvane {

/// The relay list, its editor and the relay selector of the unit editor.
class RelayEditor : public RecordEditorOf<Relay> {
 public:
  explicit RelayEditor(const Parts& av_Parts);

  void ShowRelayRecord() { ShowRecord(); }
  void StoreRelayRecord() { StoreRecord(); }
  /// Fills the relay selector with every relay; the entry with the same number stays selected.
  void FillRelaySelector() { RefillSelector(p_.form.Cmb_Relay, false); }

 private:
  void ShowFields(std::int64_t al_Index) override;
  void StoreFields(std::int64_t al_Index) override;
  void ClearFields() override;
  void AppendNew() override;
  // Intended: "Direct" may be deleted like any other; the relay that then stands first is "Direct" at the next start.
  [[nodiscard]] bool MayDelete() const override { return Count() > 1; }
  void AfterListChanged() override { FillRelaySelector(); }
  void AfterNameChanged() override { FillRelaySelector(); }
};

}  // namespace corvane
