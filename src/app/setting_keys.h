#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/field_checks.h"
#include "app/settings_tables.h"
#include "form/form.h"
#include "state/app_info.h"
#include "state/records.h"

namespace corvane {

/// The settings as a person names, reads and enters them one by one.
///
/// They are named as in the settings file: "Port" is a key of the section General, "Name3" is the name of unit 3; in
/// front of a key of a relay or client stands the section, "Relays.Name2" and "Clients.Folder1". Letter case is
/// ignored.
class SettingKeys {
 public:
  struct Entry {
    std::string key;
    std::string value;
    bool password = false;
    bool path = false;  ///< it names a file or folder
    std::string words;  ///< what the value means, where it has a unit of measure: "6 days"; else empty
  };
  /// A setting that names something which is not on this computer.
  struct Problem {
    std::string key;
    std::string text;  ///< a sentence
  };

  /// All must outlive this object.
  SettingKeys(Form& av_Form, const Registry& av_Registry, const AppInfo& av_App, const FieldChecks& av_Checks);
  SettingKeys(const SettingKeys&) = delete;
  SettingKeys& operator=(const SettingKeys&) = delete;

  /// Every setting in the order of the settings file.
  [[nodiscard]] std::vector<Entry> All() const;
  /// The setting of that key. Throws `RunTimeError` where there is none; its text names the key that was likely meant.
  [[nodiscard]] Entry Find(std::string_view as_Key) const;
  /// Whether a password is what the key names.
  [[nodiscard]] static bool NamesPassword(std::string_view as_Key);
  /// Enters a value as a hand does: selects the record, changes its control, leaves the field. Nothing is saved.
  ///
  /// Throws `RunTimeError` for what the setting does not take; the text says what it takes, and the value is as it was.
  /// Returns what is odd about a value that was taken, else an empty text. **Yields** when leaving the field does.
  std::string Enter(std::string_view as_Key, const std::string& as_Value);
  /// The files and folders of the settings that cannot be used here.
  [[nodiscard]] std::vector<Problem> MissingPaths() const;

 private:
  /// A setting, and the control that holds its value.
  struct Row {
    std::string key;          ///< as a person names it
    std::string section;      ///< of the settings file
    std::string key_of_file;  ///< in that section
    std::string value;
    bool path = false;              ///< it names a file or folder
    Control* control = nullptr;     ///< none for what is only read, or has no field
    std::string* member = nullptr;  ///< of a setting without a field
    List* list = nullptr;           ///< of the record that is to be chosen first
    std::int64_t row = 0;           ///< of that list
  };

  [[nodiscard]] std::vector<Row> Rows() const;
  template <class Record>
  void AddRecords(std::vector<Row>& av_Rows, const RecordSection<Record>& av_Section,
                  const RecordArray<Record>& av_Records, List& av_List) const;
  [[nodiscard]] Control* ControlOf(std::string_view as_Section, std::string_view as_Field) const;
  [[nodiscard]] static Entry EntryOf(const Row& av_Row);
  [[nodiscard]] Row RowOf(std::string_view as_Key) const;
  /// What is wrong with the value that was entered; empty when nothing is.
  [[nodiscard]] std::string ProblemOf(const Row& av_Row, const std::string& as_Value) const;

  Form& form_;
  const Registry& registry_;
  const FieldChecks& checks_;
  std::vector<Setting> general_;
};

}  // namespace corvane
