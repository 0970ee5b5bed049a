#pragma once

#include "registry/record_editor.h"

namespace corvane {

/// The unit list and its editor.
class UnitEditor : public RecordEditorOf<Unit> {
 public:
  explicit UnitEditor(const Parts& av_Parts);

  void ShowUnitRecord() { ShowRecord(); }
  void StoreUnitRecord() { StoreRecord(); }
  /// Selects unit `al_Index` (from 1) and shows it in the editor.
  void ReselectUnit(std::int64_t al_Index) { Select(al_Index); }
  /// Ticks unit `al_Index` (from 1) as active, or takes the tick away, as a click in the list does.
  void SetActive(std::int64_t al_Index, bool ab_Active) {
    if (p_.registry.Units.Has(al_Index)) list_.SetChecked(al_Index - 1, ab_Active);
  }

 private:
  [[nodiscard]] bool IsChecked(std::int64_t al_Index) const override;
  void ShowFields(std::int64_t al_Index) override;
  void StoreFields(std::int64_t al_Index) override;
  void ClearFields() override;
  void AppendNew() override;
  void OnCheck(std::int64_t al_Row);
  void OnActiveTicked();
};

}  // namespace corvane
