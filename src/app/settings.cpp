#include "app/settings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

#include "app/port_settings.h"
#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

using Meaning = Setting::Meaning;

constexpr std::int64_t kBytesPerMegabyte = 1'000'000;
constexpr std::int64_t kMostShownProblems = 5;
constexpr std::int64_t kMostLoggedProblems = 100;
constexpr std::int16_t kReportSeconds = 30;
constexpr int kMoreTries = 2;
constexpr std::int64_t kTryMilliseconds = 1000;
constexpr std::size_t kLongestFolder = 110;  // characters, so that a file name in it fits into a field

template <class Number>
std::optional<Number> Convert(std::string_view text) {
  using Limits = std::numeric_limits<Number>;
  if constexpr (std::is_integral_v<Number>) {
    const std::optional<std::int64_t> number = ParseInteger(text, Limits::min(), Limits::max());
    return number ? std::optional<Number>(static_cast<Number>(*number)) : std::nullopt;
  } else {
    const std::optional<double> number = ParseNumber(text);
    // The shortest text of the largest number may stand for a little more than it.
    constexpr double kMost = Limits::max() * (1 + static_cast<double>(Limits::epsilon()) / 4);
    const bool fits = number && std::abs(*number) <= kMost;
    return fits ? std::optional<Number>(static_cast<Number>(*number)) : std::nullopt;
  }
}

/// What is wrong with a value, and what is used instead; empty when it is fine.
std::string ProblemOf(const Setting& setting, const std::string& value) {
  if (setting.meaning == Meaning::TimeIfAny) {
    const bool fine = value.empty() || ParseTimeOfDay(value);
    return fine ? "" : "is not a time of day (hours:minutes); nothing is used";
  }
  if (setting.meaning != Meaning::Number || (setting.rule == nullptr && ParseNumber(value))) return {};
  const std::string instead = "; " + setting.fallback + " is used";
  if (setting.rule == nullptr) return "is not a number" + instead;
  if (setting.rule->NumberOf(value)) return {};
  return (setting.rule->whole ? "is not a whole number from " : "is not a number from ") +
         ShortestText(setting.rule->lowest) + " to " + ShortestText(setting.rule->highest) + instead;
}

template <class Record>
std::string KeyOf(const RecordField<Record>& field, std::int32_t index) {
  return std::string(field.key) + std::to_string(index);
}

/// True for a drive or share of another system, which means nothing here.
bool IsForeignPath(std::string_view path) {
  const bool has_drive = path.find(':') != std::string_view::npos && !path.starts_with('/');
  return has_drive || path.starts_with("\\\\");
}

}  // namespace

bool Settings::LoadSettings() {
  report_.clear();
  problem_count_ = 0;
  if (const Status read = ReadPatiently(); !read.ok()) {
    p_.messages.ShowTimedMessage("The settings cannot be read: " + read.text(), kOkOnly | kStopIcon);
    return false;
  }
  was_new_ = p_.store.WasMissing() && p_.store.recovery() == RecoveryState::None;
  OfferRecovery();
  if (!p_.store.Damage().empty()) Report(p_.store.Damage());
  LoadGeneral(file_list_settings_);
  {
    const SuppressEvents::Guard guard(p_.form.Suppress);
    LoadRecords(UnitSection(), p_.registry.Units);
    p_.editors.units.FillList();
    LoadRecords(RelaySection(), p_.registry.Relays);
    p_.registry.Relays[1].Name = "Direct";
    p_.registry.Relays[1].ID = 0;
    p_.editors.relays.FillList();
    LoadRecords(ClientSection(), p_.registry.Clients);
    p_.editors.clients.FillList();
    LoadGeneral(other_settings_);
    p_.form.Frame_OstrelWebData.SetVisible(false);
    LoadPorts(p_.store, p_.ports, [this](const std::string& key, const std::string& device, std::string_view problem) {
      Report("Ports", key, device, problem);
    });
    // No control shows it, so it is never written.
    p_.app.SetFetchLimit(LoadNumber<std::int32_t>("General", "FetchLimit", "2000") * kBytesPerMegabyte);
    p_.app.SetPreviousVersion(p_.store.GetGeneral("Version", ""));
    // Intended: asked as a settled step of loading; no decision depends on the answer.
    (void)p_.app.IsNewerVersion();
  }
  ShowReport();
  return true;
}

Status Settings::ReadPatiently() {
  Status read = p_.store.Load();
  for (int again = 1; again <= kMoreTries && !read.ok(); ++again) {
    bool due = false;
    const auto timer = p_.loop.MakeTimer([&due] { due = true; });
    timer->Start(kTryMilliseconds);
    while (!due) p_.loop.Yield();
    read = p_.store.Load();
  }
  return read;
}

void Settings::OfferRecovery() {
  const Recovery wanted = p_.flags.recovery;
  if (p_.store.recovery() != RecoveryState::Offered || wanted == Recovery::Ignore) return;
  const std::string there =
      "The program was ended before it could save what was entered; a copy is kept as " + p_.store.RecoveryFile() + ".";
  if (wanted == Recovery::Say) {
    p_.messages.ShowTimedMessage(there + " corvanectl recover goes on with it.", kOkOnly | kInformationIcon);
    return;
  }
  const std::optional<bool> use =
      wanted == Recovery::Use ? true : p_.messages.AskTimed(there + " Go on with it?", kReportSeconds);
  // Without an answer it stays for the next start.
  if (use) p_.store.AnswerRecovery(*use);
}

bool Settings::SaveSettings() {
  p_.editors.StoreRecords();
  SaveValues();
  const bool saved = p_.store.Commit();
  if (saved) was_new_ = false;
  return saved;
}

void Settings::StoreValues() {
  p_.editors.StoreRecords(false);
  SaveValues();
}

void Settings::SaveValues() {
  SaveGeneral(file_list_settings_);
  SaveRecords(UnitSection(), p_.registry.Units);
  SaveRecords(RelaySection(), p_.registry.Relays);
  SaveRecords(ClientSection(), p_.registry.Clients);
  SaveGeneral(other_settings_);
  SavePorts(p_.store, p_.ports);
  p_.store.SaveSetting("General", "Version", AppInfo::VersionText());
}

void Settings::LoadGeneral(const std::vector<Setting>& av_Settings) {
  for (const Setting& setting : av_Settings) {
    if (setting.meaning == Meaning::SavedOnly) continue;
    const std::string value = p_.store.GetGeneral(setting.key, setting.fallback);
    std::visit([&](auto* control) { LoadValue(*control, setting, value); }, setting.control);
  }
}

void Settings::LoadValue(TextField& av_Field, const Setting& av_Setting, const std::string& as_Value) {
  CheckPath(av_Setting, as_Value);
  av_Field.SetText(Checked(av_Setting, as_Value));
}

void Settings::LoadValue(Label& av_Label, const Setting& av_Setting, const std::string& as_Value) {
  CheckPath(av_Setting, as_Value);
  av_Label.SetText(as_Value);
}

void Settings::LoadValue(CheckBox& av_Box, const Setting& av_Setting, const std::string& as_Value) {
  const std::optional<double> number = ParseNumber(as_Value);
  if (!number && !as_Value.empty()) Report("General", av_Setting.key, as_Value, "is neither 0 nor 1; 0 is used");
  av_Box.SetTicked(number.value_or(0) != 0);
}

void Settings::LoadValue(OptionGroup& av_Group, const Setting& av_Setting, const std::string& as_Value) {
  if (av_Setting.meaning == Meaning::Security && as_Value != "0") {
    // A password must not go out in clear because of a slip of the pen.
    if (as_Value != "1") Report("General", av_Setting.key, as_Value, "is neither 0 nor 1; 1 is used");
    return av_Group.SetOptionIndex(1);
  }
  av_Group.SetOptionIndex(LoadNumber<std::int32_t>("General", std::string(av_Setting.key), av_Setting.fallback));
}

void Settings::LoadValue(Selector& av_Selector, const Setting& av_Setting, const std::string& as_Value) {
  if (av_Selector.editable()) {
    av_Selector.SetShownText(as_Value);
  } else {
    av_Selector.SelectByItemData(LoadNumber<std::int32_t>("General", std::string(av_Setting.key), av_Setting.fallback));
  }
}

void Settings::LoadValue(std::string& as_Member, const Setting& av_Setting, const std::string& as_Value) {
  as_Member = Checked(av_Setting, as_Value);
}

std::string Settings::Checked(const Setting& av_Setting, const std::string& as_Value) {
  const std::string problem = ProblemOf(av_Setting, as_Value);
  if (problem.empty()) return as_Value;
  Report("General", av_Setting.key, as_Value, problem);
  return av_Setting.fallback;
}

void Settings::SaveGeneral(const std::vector<Setting>& av_Settings) {
  for (const Setting& setting : av_Settings) {
    p_.store.SaveSetting("General", setting.key, ValueOf(setting));
  }
}

template <class Record>
void Settings::LoadRecords(const RecordSection<Record>& av_Section, RecordArray<Record>& av_Records) {
  const auto stored = LoadNumber<std::int16_t>(av_Section.name, std::string(av_Section.count_key),
                                               std::string(av_Section.count_fallback));
  const std::int32_t count = std::max<std::int32_t>({stored, av_Section.fewest, 0});
  av_Records = {};
  av_Records.Resize(count);
  for (std::int32_t index = 1; index <= count; ++index) {
    Record& record = av_Records[index];
    for (const RecordField<Record>& field : av_Section.fields) {
      const std::string key = KeyOf(field, index);
      std::visit([&](auto member) { LoadMember(av_Section.name, key, field.fallback(index), record.*member); },
                 field.member);
    }
  }
}

template <class Record>
void Settings::SaveRecords(const RecordSection<Record>& av_Section, const RecordArray<Record>& av_Records) {
  p_.store.SaveSetting(av_Section.name, av_Section.count_key, std::to_string(av_Records.count()));
  for (std::int32_t index = 1; index <= av_Records.count(); ++index) {
    const Record& record = av_Records[index];
    for (const RecordField<Record>& field : av_Section.fields) {
      const std::string value = ValueOf(field, record);
      const std::string key = KeyOf(field, index);
      if (field.if_any && value.empty() && !p_.store.Has(av_Section.name, key)) continue;
      p_.store.SaveSetting(av_Section.name, key, value);
    }
  }
}

void Settings::LoadMember(std::string_view as_Section, const std::string& as_Key, const std::string& as_Default,
                          std::string& as_Member) {
  as_Member = p_.store.GetSetting(as_Section, as_Key, as_Default);
}

template <class Number>
void Settings::LoadMember(std::string_view as_Section, const std::string& as_Key, const std::string& as_Default,
                          Number& av_Member) {
  av_Member = LoadNumber<Number>(as_Section, as_Key, as_Default);
}

template <class Number>
Number Settings::LoadNumber(std::string_view as_Section, const std::string& as_Key, const std::string& as_Default) {
  const std::string value = p_.store.GetSetting(as_Section, as_Key, as_Default);
  const std::optional<Number> number = Convert<Number>(value);
  if (number) return *number;
  constexpr std::string_view kKind =
      std::is_integral_v<Number> ? "is not a whole number in range; " : "is not a number; ";
  Report(as_Section, as_Key, value, std::string(kKind) + as_Default + " is used");
  return Convert<Number>(as_Default).value_or(Number{});
}

void Settings::CheckPath(const Setting& av_Setting, const std::string& as_Value) {
  if (av_Setting.meaning != Meaning::Path || !IsForeignPath(as_Value)) return;
  Report("General", av_Setting.key, as_Value,
         "is not a path of this computer; choose one that begins with \"/\", or a name in the application folder");
}

void Settings::Report(std::string_view as_Section, std::string_view as_Key, std::string_view as_Value,
                      std::string_view as_Problem) {
  std::string problem = "[" + std::string(as_Section) + "] " + std::string(as_Key) + "=";
  problem += as_Value;
  problem += ' ';
  problem += as_Problem;
  Report(std::move(problem));
}

void Settings::Report(std::string as_Problem) {
  ++problem_count_;
  if (problem_count_ <= kMostLoggedProblems) p_.trace.LogWrite("Settings: " + as_Problem);
  if (problem_count_ <= kMostShownProblems) report_ += std::move(as_Problem) + std::string(kLineBreak);
}

void Settings::ShowReport() {
  if (p_.store.HasBrokenLines()) {
    Report("Some lines are neither a section, a key nor a comment. They are not used and stay as they are.");
  }
  if (p_.store.HasDoubledSections()) {
    Report("Two sections have the same name. Only the first is used: move the lines of the second into it.");
  }
  if (CutCharacters(p_.app.Folder(), kLongestFolder).size() < p_.app.Folder().size()) {
    Report("The name of the application folder is too long for the fields; choose one of at most " +
           std::to_string(kLongestFolder) + " characters.");
  }
  if (problem_count_ == 0) return;
  const std::int64_t more = problem_count_ - kMostShownProblems;
  if (more > 0) report_ += "and " + std::to_string(more) + " more; see the log" + std::string(kLineBreak);
  p_.messages.ShowTimedMessage(
      "Please check the settings (" + p_.store.File() + "):" + std::string(kLineBreak) + report_,
      kOkOnly | kExclamationIcon, {}, kReportSeconds);
}

}  // namespace corvane
