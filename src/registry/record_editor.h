#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "form/form.h"
#include "state/command_states.h"
#include "state/operation_slot.h"
#include "state/records.h"
#include "ui/messages.h"

namespace corvane {

/// Positions of the registry commands, the same in the menus and the button rows.
enum RegistryCommand : std::int16_t { kNew = 0, kDelete = 1, kMoveUp = 2, kMoveDown = 3 };

/// A record for a list, and its position in the list as it is, from 1; 0 where it is a new one.
template <class Record>
struct Placed {
  Record record;
  std::int64_t former = 0;
};

/// What the editors of the three lists share: one list, one array, the editor that shows one record.
class RecordEditor {
 public:
  /// What every editor works with; all must outlive it.
  struct Parts {
    Form& form;
    Registry& registry;
    CommandStates& states;
    const OperationSlot& slot;
    Messages& messages;
  };

  virtual ~RecordEditor() = default;
  RecordEditor(const RecordEditor&) = delete;
  RecordEditor& operator=(const RecordEditor&) = delete;

  /// Most entries of a list: their number is stored in 16 bits.
  static constexpr std::int64_t kMostRecords = 32767;

  /// Copies the record at the list's current row into the editor and remembers its position; without one, empties it.
  void ShowRecord();
  /// Copies the editor back into the record it shows; nothing happens when it shows none.
  void StoreRecord();
  /// Fills the list from the array, nothing selected, the editor showing no record.
  void FillList();
  /// Stores the editor, then makes entry `al_Index` (from 1) current and shows it, with change handlers suppressed.
  ///
  /// Outside the list nothing is selected and the editor is empty.
  void Select(std::int64_t al_Index);
  /// The position in the array of the list's current entry, from 1; 0 when none is selected.
  [[nodiscard]] std::int64_t Selected() const { return list_.current() + 1; }
  /// Runs a New, Delete or Move command; nothing while an operation runs. **Yields** when it has a message.
  void RunCommand(std::int16_t ai_Command);

  /// Brings the record that was deleted last back to its place, with all its fields, and selects it; nothing while an
  /// operation runs. `Cmd_Undo` does this for as long as it is visible: until something else in the lists is edited.
  void UndoDelete();

  /// Refreshes the local file list after another record was selected; set by the composition root.
  std::function<void()> selection_changed;

 protected:
  RecordEditor(const Parts& av_Parts, List& av_List, TextField& av_Name, std::string_view as_NothingSelected);

  [[nodiscard]] virtual std::int64_t Count() const = 0;
  [[nodiscard]] virtual const std::string& NameOf(std::int64_t al_Index) const = 0;
  virtual void SetName(std::int64_t al_Index, std::string_view as_Name) = 0;
  [[nodiscard]] virtual bool IsChecked(std::int64_t /*al_Index*/) const { return false; }
  virtual void ShowFields(std::int64_t al_Index) = 0;
  virtual void StoreFields(std::int64_t al_Index) = 0;
  virtual void ClearFields() = 0;
  virtual void AppendNew() = 0;
  virtual void RemoveAt(std::int64_t al_Index) = 0;
  virtual void Swap(std::int64_t al_First, std::int64_t al_Second) = 0;
  [[nodiscard]] virtual bool MayDelete() const { return true; }
  /// Runs after New, Delete and a move.
  virtual void AfterListChanged() {}
  /// Runs after a record was given another name.
  virtual void AfterNameChanged() {}
  /// Keeps the record that is about to be deleted, and puts it back.
  virtual void Keep(std::int64_t al_Index) = 0;
  virtual void PutBack(std::int64_t al_Index) = 0;
  /// The position in the array of the record in the editor, from 1; 0 when it shows none.
  [[nodiscard]] std::int64_t Shown() const { return shown_ + 1; }
  /// From now on a change of one of these by hand counts as an edit. Takes their change handlers.
  void WatchForEdits(std::initializer_list<Control*> av_Fields);
  /// Shows the array that has taken the place of the former one: each record's mark comes from its former position, and
  /// what was selected stays so. What the editor shows is not stored.
  void ShowReplaced(const std::vector<std::int64_t>& av_Formers);
  /// Something was edited by hand, unless events are suppressed: what was deleted before stays so.
  void NoticeEdit();

  Parts p_;
  List& list_;
  TextField& name_;

 private:
  void OnSelect();
  void OnNameChange();
  [[nodiscard]] bool MayRun(std::int16_t ai_Command);
  void New();
  void Delete();
  void Move(std::int64_t al_Record, std::int64_t al_Neighbour);
  void RewriteRow(std::int64_t al_Index);

  std::string nothing_selected_;
  std::int64_t shown_ = -1;    ///< list position of the record in the editor, -1 none
  std::int64_t deleted_ = -1;  ///< list position of the record that was deleted last
  RowMark deleted_mark_ = RowMark::None;
};

/// What the editors do alike with their arrays of records.
template <class Record>
class RecordEditorOf : public RecordEditor {
 protected:
  RecordEditorOf(const Parts& av_Parts, RecordArray<Record>& av_Records, List& av_List, TextField& av_Name,
                 std::string_view as_NothingSelected)
      : RecordEditor(av_Parts, av_List, av_Name, as_NothingSelected), records_(av_Records) {}

 public:
  /// Puts these records in place of the whole list, as one command; false, without doing it, while an operation runs.
  /// What the editor shows must have been stored; `selection_changed` is left to the caller. Does not yield.
  bool TakeAll(std::vector<Placed<Record>> av_Records) {
    if (p_.slot.Taken()) return false;
    std::vector<std::int64_t> formers;
    formers.reserve(av_Records.size());
    records_ = {};
    for (Placed<Record>& placed : av_Records) {
      formers.push_back(placed.former);
      records_.Append(std::move(placed.record));
    }
    ShowReplaced(formers);
    return true;
  }

 protected:
  /// Fills a selector of the unit editor with every record, after "None" where wanted; the entry with the same number
  /// stays selected.
  void RefillSelector(Selector& av_Selector, bool ab_WithNone) {
    const SuppressEvents::Guard guard(p_.form.Suppress);
    const bool had_entry = av_Selector.current() >= 0;
    const std::int32_t number = av_Selector.SelectedItemData();
    av_Selector.Clear();
    if (ab_WithNone) av_Selector.Add("None", 0);
    for (const Record& record : records_) av_Selector.Add(record.Name, record.ID);
    if (had_entry) av_Selector.SelectByItemData(number);
  }

  [[nodiscard]] std::int64_t Count() const override { return records_.count(); }
  void Keep(std::int64_t al_Index) override { kept_ = records_[al_Index]; }
  void PutBack(std::int64_t al_Index) override { records_.Insert(al_Index, kept_); }

  /// The units that refer to `al_ID` by `av_Field`, by position; the one in the editor by what its selector shows.
  [[nodiscard]] std::vector<std::int64_t> UnitsWith(std::int32_t al_ID, std::int32_t Unit::*av_Field,
                                                    const Selector& av_Selector) const {
    std::vector<std::int64_t> found;
    for (std::int64_t index = 1; index <= p_.registry.Units.count(); ++index) {
      const bool in_editor = index == p_.form.Lst_Units.current() + 1 && av_Selector.current() >= 0;
      const std::int32_t id = in_editor ? av_Selector.SelectedItemData() : p_.registry.Units[index].*av_Field;
      if (id == al_ID) found.push_back(index);
    }
    return found;
  }
  /// Makes these units refer to `al_ID`, the one in the editor also in its selector.
  void Refer(const std::vector<std::int64_t>& av_Units, std::int32_t al_ID, std::int32_t Unit::*av_Field,
             Selector& av_Selector) {
    const SuppressEvents::Guard guard(p_.form.Suppress);
    for (const std::int64_t index : av_Units) {
      if (!p_.registry.Units.Has(index)) continue;
      p_.registry.Units[index].*av_Field = al_ID;
      if (index == p_.form.Lst_Units.current() + 1) av_Selector.SelectByItemData(al_ID);
    }
  }

  RecordArray<Record>& records_;
  Record kept_;  ///< what was deleted last

 private:
  [[nodiscard]] const std::string& NameOf(std::int64_t al_Index) const override { return records_[al_Index].Name; }
  void SetName(std::int64_t al_Index, std::string_view as_Name) override {
    if (records_[al_Index].Name == as_Name) return;
    records_[al_Index].Name = as_Name;
    AfterNameChanged();
  }
  void RemoveAt(std::int64_t al_Index) override { records_.Remove(al_Index); }
  void Swap(std::int64_t al_First, std::int64_t al_Second) override {
    std::swap(records_[al_First], records_[al_Second]);
  }
};

}  // namespace corvane
