// Which settings there are: their keys, where their values are between load and save, and their defaults.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "form/form.h"
#include "history/network_settings.h"
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
