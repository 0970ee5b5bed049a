#pragma once

#include <vector>

#include "registry/record_editor.h"

namespace corvane {

/// The client list, its editor and the client selector of the unit editor.
class ClientEditor : public RecordEditorOf<Client> {
 public:
  explicit ClientEditor(const Parts& av_Parts);

  void ShowClientRecord() { ShowRecord(); }
  void StoreClientRecord() { StoreRecord(); }
  /// Fills the client selector with "None" and every client; the entry with the same number stays selected.
  void FillClientSelector() { RefillSelector(p_.form.Cmb_Client, true); }

 private:
  void Keep(std::int64_t al_Index) override;
  void PutBack(std::int64_t al_Index) override;
  void ShowFields(std::int64_t al_Index) override;
  void StoreFields(std::int64_t al_Index) override;
  void ClearFields() override;
  void AppendNew() override;
  void AfterListChanged() override { FillClientSelector(); }
  void AfterNameChanged() override { FillClientSelector(); }

  std::vector<std::int64_t> units_;  ///< those of the deleted client
};

}  // namespace corvane
