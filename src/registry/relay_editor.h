#pragma once

#include <string>
#include <string_view>

#include "registry/record_editor.h"

namespace corvane {

/// The relay list, its editor and the relay selector of the unit editor.
class RelayEditor : public RecordEditor {
 public:
  explicit RelayEditor(const Parts& av_Parts);

  void ShowRelayRecord() { ShowRecord(); }
  void StoreRelayRecord() { StoreRecord(); }
  /// Fills the relay selector with every relay; the entry with the same number stays selected.
  void FillRelaySelector();

 private:
  [[nodiscard]] std::int64_t Count() const override { return registry_.Relays.count(); }
  [[nodiscard]] const std::string& NameOf(std::int64_t al_Index) const override;
  void SetName(std::int64_t al_Index, std::string_view as_Name) override;
  void ShowFields(std::int64_t al_Index) override;
  void StoreFields(std::int64_t al_Index) override;
  void ClearFields() override;
  void AppendNew() override;
  void RemoveAt(std::int64_t al_Index) override;
  void Swap(std::int64_t al_First, std::int64_t al_Second) override;
  [[nodiscard]] bool MayDelete() const override { return Count() > 1; }
  void AfterListChanged() override { FillRelaySelector(); }
};

}  // namespace corvane
