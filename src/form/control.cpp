#include "form/control.h"

#include <algorithm>

#include "base/text.h"

namespace corvane {

Control::Control(ControlRegistry& registry, std::string name, ControlKind kind)
    : registry_(registry), name_(std::move(name)), kind_(kind) {
  registry_.controls_.push_back(this);
}

void Control::SetEnabled(bool enabled) {
  if (enabled == enabled_) return;
  enabled_ = enabled;
  Tell(Aspect::Enabled);
}

void Control::SetVisible(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  Tell(Aspect::Visible);
}

void Control::Repaint() const {
  if (registry_.view_ != nullptr) registry_.view_->RepaintNow(*this);
}

void Control::Tell(Aspect aspect, std::size_t row) const {
  if (registry_.view_ != nullptr) registry_.view_->ControlChanged(*this, aspect, row);
  if (registry_.on_any_change) registry_.on_any_change(*this, aspect);
}

void Control::TellAndHandle(Aspect aspect) {
  Tell(aspect);
  if (on_change) on_change();
}

Control* ControlRegistry::Find(std::string_view name) const {
  const auto found = std::find_if(controls_.begin(), controls_.end(),
                                  [name](const Control* control) { return EqualsNoCase(control->name(), name); });
  return found == controls_.end() ? nullptr : *found;
}

void Label::SetText(std::string_view text, StatusKind kind) {
  status_kind_ = kind;
  if (text == text_) return;
  text_ = text;
  TellAndHandle(Aspect::Value);
}

void TextField::SetText(std::string_view text) {
  std::string taken(CutCharacters(text, kLongestText));
  std::replace_if(
      taken.begin(), taken.end(), [](unsigned char c) { return c < 32; }, ' ');
  if (taken == text_) return;
  text_ = std::move(taken);
  TellAndHandle(Aspect::Value);
}

void TextField::Leave() const {
  if (on_leave) on_leave();
}

void CheckBox::SetTicked(bool ticked) {
  if (ticked == ticked_) return;
  ticked_ = ticked;
  TellAndHandle(Aspect::Value);
}

void OptionGroup::SetOptionIndex(std::int64_t index) {
  const int held = static_cast<int>(std::clamp<std::int64_t>(index, 0, count_ - 1));
  if (held == index_) return;
  index_ = held;
  TellAndHandle(Aspect::Value);
}

std::int64_t List::SelectedCount() const {
  return std::count_if(rows_.begin(), rows_.end(), [](const Row& row) { return row.selected; });
}

void List::Clear() {
  if (rows_.empty()) return;
  rows_.clear();
  Tell(Aspect::Rows);
  if (current_ != -1) {
    current_ = -1;
    TellAndHandle(Aspect::Selection);
  }
}

void List::Add(std::string text, std::int64_t number) {
  rows_.push_back({.text = std::move(text), .number = number});
  Tell(Aspect::Rows, rows_.size() - 1);
}

void List::SetRows(std::vector<std::string> texts) {
  const bool had_current = current_ != -1;
  current_ = -1;
  const auto same = [](const Row& row, const std::string& text) {
    return row.text == text && !row.checked && !row.selected && row.mark == RowMark::None;
  };
  if (!std::equal(rows_.begin(), rows_.end(), texts.begin(), texts.end(), same)) {
    rows_.clear();
    rows_.reserve(texts.size());
    for (std::string& text : texts) rows_.push_back({std::move(text)});
    Tell(Aspect::Rows);
  }
  if (had_current) TellAndHandle(Aspect::Selection);
}

void List::Insert(std::int64_t row, std::string text) {
  rows_.insert(rows_.begin() + row, {std::move(text)});
  const bool moved = current_ >= row;
  if (moved) ++current_;
  Tell(Aspect::Rows, static_cast<std::size_t>(row));
  if (moved) TellAndHandle(Aspect::Selection);
}

void List::Remove(std::int64_t row) {
  if (row < 0 || row >= count()) return;
  rows_.erase(rows_.begin() + row);
  const bool moved = current_ >= row;
  if (current_ == row) {
    current_ = -1;
  } else if (moved) {
    --current_;
  }
  Tell(Aspect::Rows, static_cast<std::size_t>(row));
  if (moved) TellAndHandle(Aspect::Selection);
}

void List::SetText(std::int64_t row, std::string_view text) {
  std::string& held = rows_[static_cast<std::size_t>(row)].text;
  if (held == text) return;
  held = text;
  Tell(Aspect::Row, static_cast<std::size_t>(row));
}

void List::SetChecked(std::int64_t row, bool checked) {
  bool& held = rows_[static_cast<std::size_t>(row)].checked;
  if (held == checked) return;
  held = checked;
  Tell(Aspect::CheckMark, static_cast<std::size_t>(row));
  if (on_check) on_check(row);
}

void List::SetMark(std::int64_t row, RowMark mark) {
  RowMark& held = rows_[static_cast<std::size_t>(row)].mark;
  if (held == mark) return;
  held = mark;
  Tell(Aspect::Row, static_cast<std::size_t>(row));
}

void List::SetSelected(std::int64_t row, bool selected) {
  bool& held = rows_[static_cast<std::size_t>(row)].selected;
  if (held == selected) return;
  held = selected;
  Tell(Aspect::Selection, static_cast<std::size_t>(row));
}

void List::SetCurrent(std::int64_t row) {
  if (row < 0 || row >= count()) row = -1;
  if (row == current_) return;
  if (!multi_select_) {
    if (current_ != -1) rows_[static_cast<std::size_t>(current_)].selected = false;
    if (row != -1) rows_[static_cast<std::size_t>(row)].selected = true;
  }
  current_ = row;
  TellAndHandle(Aspect::Selection);
}

void List::Open(std::int64_t row) {
  SetCurrent(row);
  if (enabled() && current_ != -1 && on_open) on_open();
}

void Selector::Clear() {
  rows_.clear();
  Tell(Aspect::Rows);
  SetCurrent(-1);
}

void Selector::Add(std::string text, std::int32_t number) {
  rows_.push_back({std::move(text), number});
  Tell(Aspect::Rows, rows_.size() - 1);
}

void Selector::SetCurrent(std::int64_t row) {
  if (row < 0 || row >= count()) row = -1;
  std::string shown = row == -1 ? std::string() : text(row);
  if (row == current_ && shown == shown_) return;
  current_ = row;
  shown_ = std::move(shown);
  TellAndHandle(Aspect::Value);
}

void Selector::SetShownText(std::string_view text) {
  const auto found = std::find_if(rows_.begin(), rows_.end(), [text](const Row& row) { return row.text == text; });
  if (found != rows_.end() || !editable_) {
    SetCurrent(found == rows_.end() ? -1 : found - rows_.begin());
    return;
  }
  if (current_ == -1 && shown_ == text) return;
  current_ = -1;
  shown_ = CutCharacters(text, TextField::kLongestText);
  TellAndHandle(Aspect::Value);
}

void Selector::SelectByItemData(std::int32_t number) {
  const auto found =
      std::find_if(rows_.begin(), rows_.end(), [number](const Row& row) { return row.number == number; });
  SetCurrent(found == rows_.end() ? -1 : found - rows_.begin());
}

std::int32_t Selector::SelectedItemData() const {
  return current_ == -1 ? 0 : number(current_);
}

void Button::SetCaption(std::string_view caption) {
  if (caption == caption_) return;
  caption_ = caption;
  Tell(Aspect::Caption);
}

void Button::Click() const {
  if (enabled() && visible() && on_click) on_click();
}

bool Button::Key(int code, bool key_down) const {
  return on_key && on_key(code, key_down);
}

void MenuGroup::SetEntries(std::vector<Entry> entries) {
  entries_ = std::move(entries);
  Tell(Aspect::Rows);
}

MenuGroup::Entry* MenuGroup::EntryAt(std::int64_t index) {
  const bool there = index >= 0 && index < static_cast<std::int64_t>(entries_.size());
  return there ? &entries_[static_cast<std::size_t>(index)] : nullptr;
}

void MenuGroup::SetEntryEnabled(std::int64_t index, bool enabled) {
  Entry* entry = EntryAt(index);
  if (entry == nullptr || entry->enabled == enabled) return;
  entry->enabled = enabled;
  Tell(Aspect::Row, static_cast<std::size_t>(index));
}

void MenuGroup::SetEntryCaption(std::int64_t index, std::string_view caption) {
  Entry* entry = EntryAt(index);
  if (entry == nullptr || entry->caption == caption) return;
  entry->caption = caption;
  Tell(Aspect::Row, static_cast<std::size_t>(index));
}

void MenuGroup::Click(std::int64_t index) const {
  if (!enabled() || !visible() || index < 0 || index >= static_cast<std::int64_t>(entries_.size())) return;
  const Entry& entry = entries_[static_cast<std::size_t>(index)];
  if (entry.enabled && entry.visible && entry.caption != "-" && on_click) on_click(index);
}

void ProgressBar::SetRange(double minimum, double maximum) {
  if (minimum == minimum_ && maximum == maximum_) return;
  minimum_ = minimum;
  maximum_ = maximum;
  Tell(Aspect::Range);
  SetValue(value_);
}

void ProgressBar::SetValue(double value) {
  const double held = std::clamp(value, minimum_, std::max(minimum_, maximum_));
  if (held == value_) return;
  value_ = held;
  TellAndHandle(Aspect::Value);
}

void Window::SetTitle(std::string_view title) {
  if (title == title_) return;
  title_ = title;
  Tell(Aspect::Caption);
}

void Window::SetMinimised(bool minimised) {
  if (minimised == minimised_) return;
  minimised_ = minimised;
  TellAndHandle(Aspect::Value);
}

void Window::SetPointer(PointerShape shape) {
  if (shape == pointer_) return;
  pointer_ = shape;
  Tell(Aspect::Value);
}

bool Window::Key(int code, bool key_down) const {
  return on_key && on_key(code, key_down);
}

}  // namespace corvane
