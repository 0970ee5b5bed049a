#include "registry/record_editor.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace corvane {

RecordEditor::RecordEditor(const Parts& av_Parts, List& av_List, TextField& av_Name,
                           std::string_view as_NothingSelected)
    : p_(av_Parts), list_(av_List), name_(av_Name), nothing_selected_(as_NothingSelected) {
  list_.on_change = [this] { OnSelect(); };
  name_.on_change = [this] { OnNameChange(); };
  p_.form.Cmd_Undo.SetVisible(false);
}

void RecordEditor::ShowRecord() {
  const SuppressEvents::Guard guard(p_.form.Suppress);
  const std::int64_t position = list_.current();
  shown_ = position < Count() ? position : -1;
  if (shown_ < 0) {
    name_.SetText("");
    ClearFields();
    return;
  }
  name_.SetText(NameOf(Shown()));
  ShowFields(Shown());
}

void RecordEditor::StoreRecord() {
  if (shown_ < 0 || shown_ >= Count()) return;
  SetName(Shown(), name_.text());
  StoreFields(Shown());
}

void RecordEditor::FillList() {
  const SuppressEvents::Guard guard(p_.form.Suppress);
  std::vector<std::string> names;
  names.reserve(static_cast<std::size_t>(Count()));
  for (std::int64_t index = 1; index <= Count(); ++index) names.push_back(NameOf(index));
  list_.SetRows(std::move(names));
  for (std::int64_t index = 1; index <= Count(); ++index) list_.SetChecked(index - 1, IsChecked(index));
  ShowRecord();
}

void RecordEditor::Select(std::int64_t al_Index) {
  const SuppressEvents::Guard guard(p_.form.Suppress);
  StoreRecord();
  list_.SetCurrent(al_Index - 1);
  ShowRecord();
}

void RecordEditor::OnSelect() {
  if (p_.form.Suppress.set()) return;
  if (p_.slot.Taken()) {
    const SuppressEvents::Guard guard(p_.form.Suppress);
    return list_.SetCurrent(shown_);
  }
  {
    const SuppressEvents::Guard guard(p_.form.Suppress);
    StoreRecord();
    ShowRecord();
    p_.states.UpdateCommandStates();
  }
  if (selection_changed) selection_changed();
}

void RecordEditor::OnNameChange() {
  NoticeEdit();
  if (p_.form.Suppress.set() || shown_ < 0) return;
  StoreRecord();
  list_.SetText(shown_, name_.text());
}

void RecordEditor::RunCommand(std::int16_t ai_Command) {
  if (p_.slot.Taken() || !MayRun(ai_Command)) return;
  {
    const SuppressEvents::Guard guard(p_.form.Suppress);
    StoreRecord();
    const std::int64_t record = Selected();
    if (ai_Command == kNew) New();
    if (ai_Command == kDelete) Delete();
    if (ai_Command == kMoveUp && record > 1) Move(record, record - 1);
    if (ai_Command == kMoveDown && record < Count()) Move(record, record + 1);
    ShowRecord();
    p_.states.UpdateCommandStates();
  }
  if (selection_changed) selection_changed();
}

bool RecordEditor::MayRun(std::int16_t ai_Command) {
  if (ai_Command < kNew || ai_Command > kMoveDown) return false;
  if (ai_Command != kNew && Selected() == 0) {
    p_.messages.Show(nothing_selected_);
    return false;
  }
  if (ai_Command == kNew && Count() >= kMostRecords) {
    p_.messages.Show("The list is full (" + std::to_string(kMostRecords) + " entries). Delete an entry first.");
    return false;
  }
  return true;
}

void RecordEditor::New() {
  p_.form.Cmd_Undo.SetVisible(false);
  AppendNew();
  list_.Add(NameOf(Count()));
  list_.SetChecked(Count() - 1, IsChecked(Count()));
  list_.SetCurrent(Count() - 1);
  AfterListChanged();
}

void RecordEditor::Delete() {
  if (!MayDelete()) return;
  const std::int64_t position = list_.current();
  shown_ = -1;
  deleted_ = position;
  deleted_mark_ = list_.mark(position);
  Keep(position + 1);
  p_.form.Cmd_Undo.on_click = [this] { UndoDelete(); };
  p_.form.Cmd_Undo.SetVisible(true);
  RemoveAt(position + 1);
  list_.Remove(position);
  list_.SetCurrent(std::min(position, list_.count() - 1));
  AfterListChanged();
}

void RecordEditor::UndoDelete() {
  if (p_.slot.Taken() || !p_.form.Cmd_Undo.visible()) return;
  {
    const SuppressEvents::Guard guard(p_.form.Suppress);
    StoreRecord();
    p_.form.Cmd_Undo.SetVisible(false);
    shown_ = -1;
    const std::int64_t row = deleted_;
    PutBack(row + 1);
    list_.Insert(row, NameOf(row + 1));
    list_.SetChecked(row, IsChecked(row + 1));
    list_.SetMark(row, deleted_mark_);
    list_.SetCurrent(row);
    AfterListChanged();
    ShowRecord();
    p_.states.UpdateCommandStates();
  }
  if (selection_changed) selection_changed();
}

void RecordEditor::ShowReplaced(const std::vector<std::int64_t>& av_Formers) {
  const SuppressEvents::Guard guard(p_.form.Suppress);
  p_.form.Cmd_Undo.SetVisible(false);
  std::vector<RowMark> marks;
  for (std::int64_t row = 0; row < list_.count(); ++row) marks.push_back(list_.mark(row));
  const std::int64_t selected = Selected();
  shown_ = -1;
  FillList();
  for (std::size_t row = 0; row < av_Formers.size(); ++row) {
    if (av_Formers[row] == 0) continue;
    list_.SetMark(static_cast<std::int64_t>(row), marks[static_cast<std::size_t>(av_Formers[row] - 1)]);
  }
  const auto same = std::find(av_Formers.begin(), av_Formers.end(), selected);
  const bool stays = selected != 0 && same != av_Formers.end();
  list_.SetCurrent(stays ? same - av_Formers.begin() : std::min(selected, Count()) - 1);
  AfterListChanged();
  ShowRecord();
  p_.states.UpdateCommandStates();
}

void RecordEditor::WatchForEdits(std::initializer_list<Control*> av_Fields) {
  for (Control* field : av_Fields) field->on_change = [this] { NoticeEdit(); };
}

void RecordEditor::NoticeEdit() {
  if (!p_.form.Suppress.set()) p_.form.Cmd_Undo.SetVisible(false);
}

// Intended: the selection stays at its position, so that after a move it marks the neighbour that took the record's
// place, and pressing the same button again brings the record back.
void RecordEditor::Move(std::int64_t al_Record, std::int64_t al_Neighbour) {
  p_.form.Cmd_Undo.SetVisible(false);
  Swap(al_Record, al_Neighbour);
  RewriteRow(al_Record);
  RewriteRow(al_Neighbour);
  const RowMark mark = list_.mark(al_Record - 1);
  list_.SetMark(al_Record - 1, list_.mark(al_Neighbour - 1));
  list_.SetMark(al_Neighbour - 1, mark);
  AfterListChanged();
}

void RecordEditor::RewriteRow(std::int64_t al_Index) {
  list_.SetText(al_Index - 1, NameOf(al_Index));
  list_.SetChecked(al_Index - 1, IsChecked(al_Index));
}

}  // namespace corvane
