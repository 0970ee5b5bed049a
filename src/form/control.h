// The kinds of controls of the main window, as plain data.
//
// A change takes one path, whoever makes it: a value equal to the old one does nothing; otherwise the one view is told
// and then the control's one handler runs. No layout, painting, focus or validation lives here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "form/form_view.h"

namespace corvane {

class ControlRegistry;

enum class ControlKind : std::uint8_t { Label, Text, Check, Options, List, Selector, Button, Menu, Progress, Window };

class Control {
 public:
  Control(ControlRegistry& registry, std::string name, ControlKind kind);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  /// The control's name; members of an array carry "_" and their index ("Txt_Timeout_0").
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] ControlKind kind() const { return kind_; }
  [[nodiscard]] bool enabled() const { return enabled_; }
  [[nodiscard]] bool visible() const { return visible_; }
  void SetEnabled(bool enabled);
  void SetVisible(bool visible);
  /// Paints the control at once.
  void Repaint() const;

  /// Runs after the value changed (text, tick, option, current row).
  std::function<void()> on_change;

 protected:
  void Tell(Aspect aspect, std::size_t row = 0) const;
  /// Tells the view and runs `on_change`.
  void TellAndHandle(Aspect aspect);

 private:
  ControlRegistry& registry_;
  std::string name_;
  ControlKind kind_;
  bool enabled_ = true;
  bool visible_ = true;
};

/// The controls of one Form in order of construction, and the view that shows them.
class ControlRegistry {
 public:
  ControlRegistry() = default;
  ControlRegistry(const ControlRegistry&) = delete;
  ControlRegistry& operator=(const ControlRegistry&) = delete;

  /// `view` must outlive the registry or be taken back with nullptr.
  void SetView(FormView* view) { view_ = view; }
  [[nodiscard]] const std::vector<Control*>& controls() const { return controls_; }
  /// The control of that name, letter case ignored; nullptr when there is none. For scripts only.
  [[nodiscard]] Control* Find(std::string_view name) const;
  /// Runs at every change of every control, behind the view; must not change the Form.
  std::function<void(const Control& control, Aspect aspect)> on_any_change;

 private:
  friend class Control;
  std::vector<Control*> controls_;
  FormView* view_ = nullptr;
};

/// What a line of the status label tells.
enum class StatusKind : std::uint8_t {
  Step,    ///< something was begun, answered or done
  Detail,  ///< how far it is: worth a look now and nothing later
  Error,   ///< an exchange with a unit failed, or its port did not open
};

class Label : public Control {
 public:
  Label(ControlRegistry& registry, std::string name) : Control(registry, std::move(name), ControlKind::Label) {}
  [[nodiscard]] const std::string& text() const { return text_; }
  /// What the text tells; for the status label.
  [[nodiscard]] StatusKind status_kind() const { return status_kind_; }
  void SetText(std::string_view text, StatusKind kind = StatusKind::Step);

 private:
  std::string text_;
  StatusKind status_kind_ = StatusKind::Step;
};

class TextField : public Control {
 public:
  static constexpr std::size_t kLongestText = 126;  ///< characters

  TextField(ControlRegistry& registry, std::string name) : Control(registry, std::move(name), ControlKind::Text) {}
  [[nodiscard]] const std::string& text() const { return text_; }
  /// Takes at most `kLongestText` characters; control characters become blanks.
  void SetText(std::string_view text);
  /// The person left the field.
  void Leave() const;

  std::function<void()> on_leave;

 private:
  std::string text_;
};

class CheckBox : public Control {
 public:
  CheckBox(ControlRegistry& registry, std::string name) : Control(registry, std::move(name), ControlKind::Check) {}
  [[nodiscard]] bool ticked() const { return ticked_; }
  void SetTicked(bool ticked);

 private:
  bool ticked_ = false;
};

/// A group of options of which one is selected.
class OptionGroup : public Control {
 public:
  OptionGroup(ControlRegistry& registry, std::string name, int count)
      : Control(registry, std::move(name), ControlKind::Options), count_(count) {}
  [[nodiscard]] int count() const { return count_; }
  /// The index of the selected option, from 0.
  [[nodiscard]] int GetOptionIndex() const { return index_; }
  /// Selects the option with that index; below the first is the first, above the last the last.
  void SetOptionIndex(std::int64_t index);

 private:
  int count_;
  int index_ = 0;
};

/// How the last exchange that a row stands for ended.
enum class RowMark : std::uint8_t { None, Well, Problem };

/// Rows with a text and a number; a current row (-1 none); check marks; several selected rows where wanted.
class List : public Control {
 public:
  List(ControlRegistry& registry, std::string name, bool multi_select = false)
      : Control(registry, std::move(name), ControlKind::List), multi_select_(multi_select) {}

  [[nodiscard]] bool multi_select() const { return multi_select_; }
  [[nodiscard]] std::int64_t count() const { return static_cast<std::int64_t>(rows_.size()); }
  [[nodiscard]] const std::string& text(std::int64_t row) const { return rows_[static_cast<std::size_t>(row)].text; }
  [[nodiscard]] bool checked(std::int64_t row) const { return rows_[static_cast<std::size_t>(row)].checked; }
  [[nodiscard]] bool selected(std::int64_t row) const { return rows_[static_cast<std::size_t>(row)].selected; }
  [[nodiscard]] std::int64_t SelectedCount() const;
  [[nodiscard]] RowMark mark(std::int64_t row) const { return rows_[static_cast<std::size_t>(row)].mark; }
  /// The number attached to a row, 0 unless set; not shown.
  [[nodiscard]] std::int64_t number(std::int64_t row) const { return rows_[static_cast<std::size_t>(row)].number; }

  void Clear();
  void Add(std::string text, std::int64_t number = 0);
  /// Replaces all rows at once; nothing stays selected and no row is current.
  void SetRows(std::vector<std::string> texts);
  /// Puts a row in front of `row`; the count of rows puts it at the end.
  void Insert(std::int64_t row, std::string text);
  void Remove(std::int64_t row);
  void SetText(std::int64_t row, std::string_view text);
  /// Sets a row's check mark; runs `on_check`.
  void SetChecked(std::int64_t row, bool checked);
  void SetMark(std::int64_t row, RowMark mark);
  void SetNumber(std::int64_t row, std::int64_t number) { rows_[static_cast<std::size_t>(row)].number = number; }
  /// Selects or deselects a row without moving the current row.
  void SetSelected(std::int64_t row, bool selected);

  /// The row with the focus, -1 when there is none.
  [[nodiscard]] std::int64_t current() const { return current_; }
  /// Makes `row` current (-1: none; outside the list: none) and, in a single-select list, the only selected one.
  void SetCurrent(std::int64_t row);
  /// The person opened a row (double-click): makes it current, then runs `on_open`.
  void Open(std::int64_t row);

  std::function<void(std::int64_t row)> on_check;
  std::function<void()> on_open;

 private:
  struct Row {
    std::string text;
    bool checked = false;
    bool selected = false;
    RowMark mark = RowMark::None;
    std::int64_t number = 0;
  };
  std::vector<Row> rows_;
  std::int64_t current_ = -1;
  bool multi_select_;
};

/// A drop-down list whose entries carry a number; an editable one takes any typed text.
class Selector : public Control {
 public:
  Selector(ControlRegistry& registry, std::string name, bool editable = false)
      : Control(registry, std::move(name), ControlKind::Selector), editable_(editable) {}

  [[nodiscard]] bool editable() const { return editable_; }
  [[nodiscard]] std::int64_t count() const { return static_cast<std::int64_t>(rows_.size()); }
  [[nodiscard]] const std::string& text(std::int64_t row) const { return rows_[static_cast<std::size_t>(row)].text; }
  [[nodiscard]] std::int32_t number(std::int64_t row) const { return rows_[static_cast<std::size_t>(row)].number; }
  void Clear();
  void Add(std::string text, std::int32_t number = 0);

  /// The selected entry's position, -1 when none.
  [[nodiscard]] std::int64_t current() const { return current_; }
  void SetCurrent(std::int64_t row);
  /// The text shown: the selected entry's, or what was typed.
  [[nodiscard]] const std::string& shown_text() const { return shown_; }
  /// Shows `text`: selects the first entry with exactly that text; otherwise an editable selector keeps it as typed.
  void SetShownText(std::string_view text);
  /// Selects the first entry that carries `number`; nothing stays selected when none does.
  void SelectByItemData(std::int32_t number);
  /// The number of the selected entry, 0 when nothing is selected.
  [[nodiscard]] std::int32_t SelectedItemData() const;

 private:
  struct Row {
    std::string text;
    std::int32_t number;
  };
  std::vector<Row> rows_;
  std::int64_t current_ = -1;
  std::string shown_;
  bool editable_;
};

class Button : public Control {
 public:
  Button(ControlRegistry& registry, std::string name) : Control(registry, std::move(name), ControlKind::Button) {}
  [[nodiscard]] const std::string& caption() const { return caption_; }
  void SetCaption(std::string_view caption);
  /// The person pressed the button; nothing happens while it is disabled or hidden. **Yields** when its command does.
  void Click() const;
  /// A key event on the button (`key_down`: key code; else: character code). True when the key is to be discarded.
  [[nodiscard]] bool Key(int code, bool key_down) const;

  std::function<void()> on_click;
  std::function<bool(int code, bool key_down)> on_key;

 private:
  std::string caption_;
};

/// One submenu: entries by index, from 0; separators count.
class MenuGroup : public Control {
 public:
  struct Entry {
    std::string caption;  ///< "-" is a separator
    bool enabled = true;
    bool visible = true;
    std::int32_t text_id = 0;
    const MenuGroup* submenu = nullptr;  ///< what the entry opens instead of starting a command
  };
  MenuGroup(ControlRegistry& registry, std::string name) : Control(registry, std::move(name), ControlKind::Menu) {}
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }
  void SetEntries(std::vector<Entry> entries);
  void SetEntryEnabled(std::int64_t index, bool enabled);
  void SetEntryCaption(std::int64_t index, std::string_view caption);
  /// The person chose an entry; nothing happens when the group or the entry is disabled, hidden or a separator.
  /// **Yields** when its command does.
  void Click(std::int64_t index) const;

  std::function<void(std::int64_t index)> on_click;

 private:
  [[nodiscard]] Entry* EntryAt(std::int64_t index);

  std::vector<Entry> entries_;
};

class ProgressBar : public Control {
 public:
  ProgressBar(ControlRegistry& registry, std::string name)
      : Control(registry, std::move(name), ControlKind::Progress) {}
  [[nodiscard]] double minimum() const { return minimum_; }
  [[nodiscard]] double maximum() const { return maximum_; }
  [[nodiscard]] double value() const { return value_; }
  void SetRange(double minimum, double maximum);
  /// Held within the range.
  void SetValue(double value);

 private:
  double minimum_ = 0;
  double maximum_ = 100;
  double value_ = 0;
};

enum class PointerShape : std::int8_t { None = -1, Default = 0, Busy = 11 };

/// The window itself.
class Window : public Control {
 public:
  Window(ControlRegistry& registry, std::string name) : Control(registry, std::move(name), ControlKind::Window) {}
  [[nodiscard]] const std::string& title() const { return title_; }
  void SetTitle(std::string_view title);
  [[nodiscard]] bool minimised() const { return minimised_; }
  void SetMinimised(bool minimised);
  [[nodiscard]] PointerShape pointer() const { return pointer_; }
  void SetPointer(PointerShape shape);
  /// A key that reached the window itself (`key_down`: key code; else: character code). True when it is discarded.
  [[nodiscard]] bool Key(int code, bool key_down) const;

  std::function<bool(int code, bool key_down)> on_key;

 private:
  std::string title_;
  bool minimised_ = false;
  PointerShape pointer_ = PointerShape::Default;
};

}  // namespace corvane
