#pragma once

#include <string>
#include <string_view>

#include "registry/record_editor.h"

namespace corvane {

/// The unit list and its editor.
class UnitEditor : public RecordEditor {
 public:
  explicit UnitEditor(const Parts& av_Parts);

  void ShowUnitRecord() { ShowRecord(); }
  void StoreUnitRecord() { StoreRecord(); }

 private:
  [[nodiscard]] std::int64_t Count() const override { return registry_.Units.count(); }
  [[nodiscard]] const std::string& NameOf(std::int64_t al_Index) const override;
  void SetName(std::int64_t al_Index, std::string_view as_Name) override;
  [[nodiscard]] bool IsChecked(std::int64_t al_Index) const override;
  void ShowFields(std::int64_t al_Index) override;
  void StoreFields(std::int64_t al_Index) override;
  void ClearFields() override;
  void AppendNew() override;
  void RemoveAt(std::int64_t al_Index) override;
  void Swap(std::int64_t al_First, std::int64_t al_Second) override;
  void OnCheck(std::int64_t al_Row);
  void OnActiveTicked();
};

}  // namespace corvane
