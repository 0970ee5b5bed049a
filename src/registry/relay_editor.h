#pragma once

#include <optional>
#include <vector>

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

  /// True while an ID is typed and its field has not been left.
  [[nodiscard]] bool Typing() const { return typing_; }
  /// The ID field was left, or a command comes: asks whether the units that are reached through a relay with another ID
  /// by now follow it, and says how many do not. Nothing when no stored ID has changed. **Yields.**
  void LetUnitsFollow();

 private:
  /// A relay's change of ID that its units do not know of yet.
  struct Change {
    std::int32_t from = 0;
    std::int32_t to = 0;
    std::vector<std::int64_t> units;  ///< those that had the former ID, by position
  };

  /// Says how many units keep the former ID, and which one does not. **Yields.**
  void TellWhatStays(const Change& av_Change);
  [[nodiscard]] std::int64_t RelaysWith(std::int32_t al_ID) const;
  void Keep(std::int64_t al_Index) override;
  void PutBack(std::int64_t al_Index) override;
  void ShowFields(std::int64_t al_Index) override;
  void StoreFields(std::int64_t al_Index) override;
  void ClearFields() override;
  void AppendNew() override;
  // Intended: "Direct" may be deleted like any other; the relay that then stands first is "Direct" at the next start.
  [[nodiscard]] bool MayDelete() const override { return Count() > 1; }
  void AfterListChanged() override { FillRelaySelector(); }
  void AfterNameChanged() override { FillRelaySelector(); }

  std::vector<std::int64_t> units_;  ///< those of the deleted relay
  std::optional<Change> change_;
  bool typing_ = false;
};

}  // namespace corvane
