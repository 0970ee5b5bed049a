// Which settings there are: their keys, where their values are between load and save, and their defaults.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/numbers.h"
#include "form/form.h"
#include "history/network_settings.h"
#include "setup/keeping.h"
#include "state/app_info.h"
#include "state/records.h"

namespace corvane {

/// One key of the section "General" and the control that holds its value.
struct Setting {
  enum class Meaning : std::uint8_t { Plain, Number, TimeIfAny, Path, Security, SavedOnly };

  std::string_view key;
  std::variant<TextField*, Label*, CheckBox*, OptionGroup*, Selector*, std::string*> control;
  std::string fallback;
  Meaning meaning = Meaning::Plain;
  const NumberRule* rule = nullptr;  ///< of a number that has limits
};

/// One field of a record and its key, to which the record's number is appended.
template <class Record>
struct RecordField {
  std::string_view key;
  std::variant<std::string Record::*, std::int32_t Record::*, std::int16_t Record::*, float Record::*> member;
  std::string (*fallback)(std::int32_t index);
  bool if_any = false;  ///< written only where it holds something, or its key is there
};

[[nodiscard]] inline std::string ValueText(const std::string& as_Text) {
  return as_Text;
}
[[nodiscard]] inline std::string ValueText(std::int32_t al_Number) {
  return std::to_string(al_Number);
}
[[nodiscard]] inline std::string ValueText(float ad_Number) {
  return ShortestText(ad_Number);
}

/// The value of a setting as it is written.
[[nodiscard]] std::string ValueOf(const Setting& av_Setting);
/// The value of a record's field as it is written.
template <class Record>
[[nodiscard]] std::string ValueOf(const RecordField<Record>& av_Field, const Record& av_Record) {
  return std::visit([&](auto member) { return ValueText(av_Record.*member); }, av_Field.member);
}
/// What keeping and restoring an application folder have to know of the settings.
[[nodiscard]] KeptSettings SettingsToKeep(const AppInfo& av_App);
/// Whether the key of a section, a record's with its number, holds a password.
[[nodiscard]] bool IsPassword(std::string_view as_Section, std::string_view as_Key);

/// One section of records.
template <class Record>
struct RecordSection {
  std::string_view name;
  std::string_view count_key;
  std::string_view count_fallback;
  std::int16_t fewest;
  std::vector<RecordField<Record>> fields;
};

/// The keys that are loaded before the records, in the order in which they are written.
[[nodiscard]] std::vector<Setting> FileListSettings(Form& av_Form, const AppInfo& av_App);
/// The keys that are loaded behind the records, in the order in which they are written.
[[nodiscard]] std::vector<Setting> OtherSettings(Form& av_Form, const AppInfo& av_App);

[[nodiscard]] const RecordSection<Unit>& UnitSection();
[[nodiscard]] const RecordSection<Relay>& RelaySection();
[[nodiscard]] const RecordSection<Client>& ClientSection();

}  // namespace corvane
