#include "app/setting_keys.h"

#include <algorithm>
#include <optional>
#include <variant>

#include "base/encoding.h"
#include "base/near_words.h"
#include "base/numbers.h"
#include "base/status.h"
#include "base/text.h"
#include "form/entering.h"
#include "setup/value_words.h"
#include "state/settings_file.h"

namespace corvane {
namespace {

constexpr std::string_view kGeneral = "General";
constexpr std::string_view kUnits = "Units";

/// The key as it is looked for: sections that may be left out are taken off.
std::string_view Bare(std::string_view as_Key) {
  for (const std::string_view section : {kGeneral, kUnits}) {
    if (StartsWithNoCase(as_Key, section) && as_Key.substr(section.size()).starts_with('.')) {
      return as_Key.substr(section.size() + 1);
    }
  }
  return as_Key;
}

/// What the program writes itself, and nobody enters.
bool IsWritten(const Form& av_Form, const Control& av_Control) {
  return &av_Control == &av_Form.Lbl_LastDownload || &av_Control == &av_Form.Lbl_NextDownload;
}

void RequireKept(const std::string& as_Value) {
  if (HasControlCharacter(as_Value)) throw RunTimeError("takes one line of text without control characters");
  if (!IsUtf8(as_Value)) throw RunTimeError("takes text in UTF-8 only");
  if (CutCharacters(as_Value, TextField::kLongestText).size() < as_Value.size()) {
    throw RunTimeError("takes at most " + std::to_string(TextField::kLongestText) + " characters");
  }
  // Intended: the settings file writes an empty text as this word.
  if (as_Value == kEmptyValue) throw RunTimeError("does not take the word null, which stands for an empty text");
}

}  // namespace

SettingKeys::SettingKeys(Form& av_Form, const Registry& av_Registry, const AppInfo& av_App,
                         const FieldChecks& av_Checks)
    : form_(av_Form), registry_(av_Registry), checks_(av_Checks), general_(FileListSettings(av_Form, av_App)) {
  for (Setting& setting : OtherSettings(av_Form, av_App)) {
    if (setting.meaning != Setting::Meaning::SavedOnly) general_.push_back(std::move(setting));
  }
}

Control* SettingKeys::ControlOf(std::string_view as_Section, std::string_view as_Field) const {
  struct Field {
    std::string_view section;
    std::string_view key;
    Control* control;
  };
  const Field fields[] = {
      {"Units", "Name", &form_.Txt_UnitName},
      {"Units", "ID", &form_.Txt_UnitID},
      {"Units", "Active", &form_.Chk_UnitActive},
      {"Units", "RelayID", &form_.Cmb_Relay},
      {"Units", "ftpFile", &form_.Cmb_SendTo},
      {"Units", "ClientID", &form_.Cmb_Client},
      {"Units", "GetFrom", &form_.Cmb_GetFrom},
      {"Units", "MoistureCorrection", &form_.Txt_Correction[0]},
      {"Units", "SalinityCorrection", &form_.Txt_Correction[1]},
      {"Units", "Depths", &form_.Txt_Depths},
      {"Relays", "Name", &form_.Txt_RelayName},
      {"Relays", "ID", &form_.Txt_RelayID},
      {"Relays", "PasswordStyle", &form_.Opt_Password},
      {"Clients", "Name", &form_.Txt_ClientName},
      {"Clients", "Folder", &form_.Txt_ClientFolder},
      {"Clients", "Password", &form_.Txt_OstrelPassword},
      {"Clients", "UserID", &form_.Txt_OstrelUserID},
  };
  const auto* const found = std::find_if(std::begin(fields), std::end(fields), [&](const Field& each) {
    return each.section == as_Section && each.key == as_Field;
  });
  return found == std::end(fields) ? nullptr : found->control;
}

template <class Record>
void SettingKeys::AddRecords(std::vector<Row>& av_Rows, const RecordSection<Record>& av_Section,
                             const RecordArray<Record>& av_Records, List& av_List) const {
  const std::string front = av_Section.name == kUnits ? std::string() : std::string(av_Section.name) + ".";
  for (std::int32_t index = 1; index <= av_Records.count(); ++index) {
    for (const RecordField<Record>& field : av_Section.fields) {
      Row row;
      row.section = av_Section.name;
      row.key_of_file = std::string(field.key) + std::to_string(index);
      row.key = front + row.key_of_file;
      row.value = ValueOf(field, av_Records[index]);
      row.control = ControlOf(av_Section.name, field.key);
      row.list = &av_List;
      row.row = index - 1;
      av_Rows.push_back(std::move(row));
    }
  }
}

std::vector<SettingKeys::Row> SettingKeys::Rows() const {
  std::vector<Row> rows;
  for (const Setting& setting : general_) {
    Row row;
    row.section = kGeneral;
    row.key = row.key_of_file = setting.key;
    row.value = ValueOf(setting);
    row.path = setting.meaning == Setting::Meaning::Path;
    if (const auto* const member = std::get_if<std::string*>(&setting.control)) {
      row.member = *member;
    } else {
      std::visit(
          [&row](auto* control) {
            if constexpr (std::is_base_of_v<Control, std::remove_pointer_t<decltype(control)>>) row.control = control;
          },
          setting.control);
    }
    rows.push_back(std::move(row));
  }
  AddRecords(rows, UnitSection(), registry_.Units, form_.Lst_Units);
  AddRecords(rows, RelaySection(), registry_.Relays, form_.Lst_Relays);
  AddRecords(rows, ClientSection(), registry_.Clients, form_.Lst_Clients);
  return rows;
}

std::vector<SettingKeys::Entry> SettingKeys::All() const {
  std::vector<Entry> entries;
  for (const Row& row : Rows()) {
    entries.push_back(EntryOf(row));
  }
  return entries;
}

SettingKeys::Entry SettingKeys::EntryOf(const Row& av_Row) {
  const std::string words = av_Row.section == kGeneral ? ValueInWords(av_Row.key, av_Row.value) : std::string();
  return {av_Row.key, av_Row.value, IsPassword(av_Row.section, av_Row.key_of_file), av_Row.path, words};
}

SettingKeys::Row SettingKeys::RowOf(std::string_view as_Key) const {
  const std::string_view wanted = Bare(Trim(as_Key));
  std::vector<Row> rows = Rows();
  const auto found =
      std::find_if(rows.begin(), rows.end(), [wanted](const Row& row) { return EqualsNoCase(row.key, wanted); });
  if (found != rows.end()) return std::move(*found);
  std::vector<std::string> names;
  for (const Row& row : rows) {
    // "Folder1" without its section is no slip, but near to nothing else.
    if (EqualsNoCase(row.key_of_file, wanted)) names = {row.key};
    if (EqualsNoCase(row.key_of_file, wanted)) break;
    names.push_back(row.key);
  }
  if (names.size() == 1)
    throw RunTimeError("there is no key \"" + std::string(wanted) + "\"; did you mean " + names[0] + "?");
  throw RunTimeError("there is no key \"" + std::string(as_Key) + "\"" + DidYouMean(wanted, names));
}

SettingKeys::Entry SettingKeys::Find(std::string_view as_Key) const {
  return EntryOf(RowOf(as_Key));
}

bool SettingKeys::NamesPassword(std::string_view as_Key) {
  const std::string_view key = Bare(Trim(as_Key));
  const std::size_t dot = key.find('.');
  return dot == std::string_view::npos ? IsPassword(kGeneral, key)
                                       : IsPassword(key.substr(0, dot), key.substr(dot + 1));
}

std::string SettingKeys::ProblemOf(const Row& av_Row, const std::string& as_Value) const {
  if (av_Row.control != nullptr) return checks_.ProblemOf(*av_Row.control);
  const std::optional<double> number = ParseNumber(as_Value);
  return number && *number >= 0 ? "" : "This is no number from 0.";
}

std::string SettingKeys::Enter(std::string_view as_Key, const std::string& as_Value) {
  const Row row = RowOf(as_Key);
  const bool direct = row.list == &form_.Lst_Relays && row.row == 0;
  if (direct) throw RunTimeError(row.key + " cannot be entered: relay 1 is always Direct with ID 0");
  if (row.member == nullptr && (row.control == nullptr || IsWritten(form_, *row.control))) {
    throw RunTimeError(row.key + " cannot be entered: the program gives it");
  }
  if (row.list != nullptr) row.list->SetCurrent(row.row);
  std::string problem;
  try {
    RequireKept(as_Value);
    if (row.member != nullptr) {
      problem = ProblemOf(row, as_Value);
      if (problem.empty()) *row.member = as_Value;
    } else {
      EnterValue(*row.control, as_Value);
      problem = ProblemOf(row, as_Value);
    }
  } catch (const RunTimeError& error) {
    throw RunTimeError(row.key + " " + error.what());
  }
  // Intended: stations being exchanged may bear the same ID for a while.
  const bool is_taken = row.control == &form_.Txt_UnitID && ParseInteger(as_Value, INT32_MIN, INT32_MAX).has_value();
  if (!problem.empty() && !is_taken) {
    if (row.control != nullptr) EnterValue(*row.control, row.value);
    throw RunTimeError(row.key + ": \"" + as_Value + "\" is not taken. " + problem);
  }
  if (row.control != nullptr && row.control->kind() == ControlKind::Text) {
    dynamic_cast<const TextField&>(*row.control).Leave();
  }
  // What the editor shows goes into the record.
  if (row.list != nullptr) row.list->SetCurrent(-1);
  return problem;
}

std::vector<SettingKeys::Problem> SettingKeys::MissingPaths() const {
  std::vector<Problem> missing;
  for (const Setting& setting : general_) {
    if (setting.meaning != Setting::Meaning::Path) continue;
    const Row row = RowOf(setting.key);
    std::string problem = checks_.ProblemOf(*row.control);
    if (problem.empty()) continue;
    // Nobody has to mend it.
    if (row.control == &form_.Txt_File[3]) problem += " Without it the window speaks English.";
    missing.push_back({row.key, std::move(problem)});
  }
  return missing;
}

}  // namespace corvane
