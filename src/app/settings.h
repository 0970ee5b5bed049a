#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/settings_store.h"
#include "app/settings_tables.h"
#include "base/status.h"
#include "form/form.h"
#include "platform/event_loop.h"
#include "registry/editors.h"
#include "state/app_info.h"
#include "state/port_devices.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane {

/// Loads the settings file into the window's fields and the registry, and saves them back.
class Settings {
 public:
  /// What settings go to and come from; all must outlive this object.
  struct Parts {
    Form& form;
    Registry& registry;
    AppInfo& app;
    PortDevices& ports;
    SettingsStore& store;
    RegistryEditors& editors;
    Messages& messages;
    Trace& trace;
    EventLoop& loop;
    const RunFlags& flags;
  };

  explicit Settings(const Parts& av_Parts) : p_(av_Parts) {}
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;

  /// Fills every field, the registry and its three lists; called once, after the port and log-period selectors were
  /// filled.
  ///
  /// A value that does not convert leaves its default. What could not be used is logged line by line and told in one
  /// timed box at the end, so that no start waits for a person. A file that cannot be read is tried three times within
  /// two seconds; false when it stays so, which has been shown: nothing is filled then. **Yields** in both cases.
  [[nodiscard]] bool LoadSettings();
  /// True when nothing is set up: there was neither a settings file nor a copy of one, and none was saved since.
  [[nodiscard]] bool WasNew() const { return was_new_; }
  /// Stores the three editors and writes everything back; false when the file could not be written, which has been
  /// shown. **Yields** then.
  bool SaveSettings();
  /// Puts everything that is saved into the store, with what the editors show but a relay's ID that is being typed.
  void StoreValues();

 private:
  /// Reads the file, again after a second when that fails.
  Status ReadPatiently();
  /// Does with a recovery copy what the run is to do with it.
  void OfferRecovery();
  void SaveValues();
  void LoadGeneral(const std::vector<Setting>& av_Settings);
  void LoadValue(TextField& av_Field, const Setting& av_Setting, const std::string& as_Value);
  void LoadValue(Label& av_Label, const Setting& av_Setting, const std::string& as_Value);
  void LoadValue(CheckBox& av_Box, const Setting& av_Setting, const std::string& as_Value);
  void LoadValue(OptionGroup& av_Group, const Setting& av_Setting, const std::string& as_Value);
  void LoadValue(Selector& av_Selector, const Setting& av_Setting, const std::string& as_Value);
  void LoadValue(std::string& as_Member, const Setting& av_Setting, const std::string& as_Value);
  void SaveGeneral(const std::vector<Setting>& av_Settings);

  template <class Record>
  void LoadRecords(const RecordSection<Record>& av_Section, RecordArray<Record>& av_Records);
  template <class Record>
  void SaveRecords(const RecordSection<Record>& av_Section, const RecordArray<Record>& av_Records);
  void LoadMember(std::string_view as_Section, const std::string& as_Key, const std::string& as_Default,
                  std::string& as_Member);
  template <class Number>
  void LoadMember(std::string_view as_Section, const std::string& as_Key, const std::string& as_Default,
                  Number& av_Member);
  template <class Number>
  Number LoadNumber(std::string_view as_Section, const std::string& as_Key, const std::string& as_Default);

  /// The value, or the setting's default when it is no such number or time as is wanted, which is reported.
  [[nodiscard]] std::string Checked(const Setting& av_Setting, const std::string& as_Value);
  void CheckPath(const Setting& av_Setting, const std::string& as_Value);
  /// Notes a value that could not be used as it stands.
  void Report(std::string_view as_Section, std::string_view as_Key, std::string_view as_Value,
              std::string_view as_Problem);
  void Report(std::string as_Problem);
  void ShowReport();

  Parts p_;
  std::vector<Setting> file_list_settings_ = FileListSettings(p_.form, p_.app);
  std::vector<Setting> other_settings_ = OtherSettings(p_.form, p_.app);
  std::string report_;  ///< the first problems of the present load, a line each
  std::int64_t problem_count_ = 0;
  bool was_new_ = false;
};

}  // namespace corvane
