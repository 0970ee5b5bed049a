#pragma once

#include <string>
#include <string_view>

#include "registry/record_editor.h"

namespace corvane {

/// The client list, its editor and the client selector of the unit editor.
class ClientEditor : public RecordEditor {
 public:
  explicit ClientEditor(const Parts& av_Parts);

  void ShowClientRecord() { ShowRecord(); }
  void StoreClientRecord() { StoreRecord(); }
  /// Fills the client selector with "None" and every client; the entry with the same number stays selected.
  void FillClientSelector();

 private:
  [[nodiscard]] std::int64_t Count() const override { return registry_.Clients.count(); }
  [[nodiscard]] const std::string& NameOf(std::int64_t al_Index) const override;
  void SetName(std::int64_t al_Index, std::string_view as_Name) override;
  void ShowFields(std::int64_t al_Index) override;
  void StoreFields(std::int64_t al_Index) override;
  void ClearFields() override;
  void AppendNew() override;
  void RemoveAt(std::int64_t al_Index) override;
  void Swap(std::int64_t al_First, std::int64_t al_Second) override;
  void AfterListChanged() override { FillClientSelector(); }
};

}  // namespace corvane
