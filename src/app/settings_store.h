#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/profile.h"
#include "base/status.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane {

/// The one access to the settings file. Format: docs/formats/settings-file.md.
///
/// The file is read once by `Load`, changed in memory and written once by `Commit`.
class SettingsStore {
 public:
  SettingsStore(Messages& av_Messages, Trace& av_Trace) : messages_(av_Messages), trace_(av_Trace) {}

  /// Sets the settings file's full path.
  void SetFile(std::string_view as_Path) { path_ = as_Path; }
  [[nodiscard]] const std::string& File() const { return path_; }
  /// Reads the file; a missing one is empty and a success.
  ///
  /// A file that cannot be read as text is copied to "<file>.bad" first, and the failure's text says so; whatever could
  /// be read is used. Without such a copy the old file is not overwritten: `Commit` fails until it is moved away.
  Status Load();
  /// The value of a key: at most 126 characters, "null" is empty; `as_Default`, treated alike, when there is no such
  /// key.
  [[nodiscard]] std::string GetSetting(std::string_view as_Section, std::string_view as_Key,
                                       std::string_view as_Default) const;
  /// `GetSetting` of the section "General".
  [[nodiscard]] std::string GetGeneral(std::string_view as_Key, std::string_view as_Default) const;
  /// Changes a value in memory; an empty one becomes "null".
  void SaveSetting(std::string_view as_Section, std::string_view as_Key, std::string_view as_Value);
  /// Keys of a section in file order.
  [[nodiscard]] std::vector<std::string> Keys(std::string_view as_Section) const { return profile_.Keys(as_Section); }
  /// True when the file has lines that are neither section, key, comment nor blank; they stay as they are.
  [[nodiscard]] bool HasBrokenLines() const { return profile_.has_broken_lines(); }
  /// True when two sections have the same name; only the first is used.
  [[nodiscard]] bool HasDoubledSections() const { return profile_.has_doubled_sections(); }
  /// Writes the file in one atomic step; a failure shows "Cannot save INI file" once. **Yields** then.
  bool Commit();

 private:
  /// Copies the file beside itself; what to tell the user.
  std::string KeepCopy();

  Messages& messages_;
  Trace& trace_;
  std::string path_;
  ProfileFile profile_;
  bool keep_old_file_ = false;  ///< the old file holds what was neither read nor copied
};

}  // namespace corvane
