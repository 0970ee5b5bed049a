#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/profile.h"
#include "base/status.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane {

/// The recovery copy of the settings, "<file>.recovery".
enum class RecoveryState : std::uint8_t {
  None,
  Offered,   ///< it belongs to the settings file as it is, and nobody has answered yet
  Outdated,  ///< the settings file was changed since
  Ours       ///< taken over or written by this program
};

/// The one access to the settings file. Format: docs/formats/settings-file.md.
///
/// The file is read once by `Load`, changed in memory and written once by `Commit`.
class SettingsStore {
 public:
  SettingsStore(Messages& av_Messages, Trace& av_Trace) : messages_(av_Messages), trace_(av_Trace) {}

  /// Sets the settings file's full path.
  void SetFile(std::string_view as_Path) { path_ = as_Path; }
  [[nodiscard]] const std::string& File() const { return path_; }
  /// Reads the file; a missing one is empty and a success. After a failure nothing is held and `Commit` fails too.
  ///
  /// What is no text is first copied to "<file>.bad", or a name with a number when that is taken, and the rest of it is
  /// used. Without such a copy the file is not overwritten: `Commit` fails until it is moved away.
  Status Load();
  /// True when there was no file as it was read.
  [[nodiscard]] bool WasMissing() const { return was_missing_; }
  /// What was wrong with the file as it was read and what was done about it; empty when nothing was.
  [[nodiscard]] const std::string& Damage() const { return damage_; }
  /// The value of a key: at most 126 characters, "null" is empty; `as_Default`, treated alike, when there is no such
  /// key.
  [[nodiscard]] std::string GetSetting(std::string_view as_Section, std::string_view as_Key,
                                       std::string_view as_Default) const;
  /// `GetSetting` of the section "General".
  [[nodiscard]] std::string GetGeneral(std::string_view as_Key, std::string_view as_Default) const;
  [[nodiscard]] bool Has(std::string_view as_Section, std::string_view as_Key) const {
    return profile_.Has(as_Section, as_Key);
  }
  /// Changes a value in memory; an empty one becomes "null".
  void SaveSetting(std::string_view as_Section, std::string_view as_Key, std::string_view as_Value);
  /// Keys of a section in file order.
  [[nodiscard]] std::vector<std::string> Keys(std::string_view as_Section) const { return profile_.Keys(as_Section); }
  /// True when the file has lines that are neither section, key, comment nor blank; they stay as they are.
  [[nodiscard]] bool HasBrokenLines() const { return profile_.has_broken_lines(); }
  /// True when two sections have the same name; only the first is used.
  [[nodiscard]] bool HasDoubledSections() const { return profile_.has_doubled_sections(); }
  /// The text of the file as it would be written.
  [[nodiscard]] std::string Text() const { return profile_.Text(); }
  [[nodiscard]] std::string RecoveryFile() const { return path_ + ".recovery"; }
  [[nodiscard]] RecoveryState recovery() const { return recovery_; }
  /// Takes the values of the copy that is offered in place of the file's, or removes the copy.
  void AnswerRecovery(bool ab_Use);
  /// Writes the present values as recovery copy; one that is offered stays instead, one of other settings is put aside.
  Status WriteRecovery();
  /// Lets a copy that is offered belong to the file as the next `Commit` writes it: nothing was entered meanwhile.
  void KeepOffer() { keeps_offer_ = true; }
  /// Writes the file in one atomic step; a failure shows its reason in the status line and "Cannot save INI file" once.
  /// **Yields** then. With the file whole, this program's recovery copy is removed, and one that is offered stays so
  /// behind `KeepOffer`.
  bool Commit();

 private:
  /// Keeps the file's contents beside it; what to tell the user.
  std::string KeepCopy(const std::string& as_Contents);

  /// Looks for a copy that belongs to the settings file of these contents.
  void LookForRecovery(std::string_view as_Contents);
  /// Does with the recovery copy what follows from a file that was written.
  void SettleRecovery(std::string_view as_Contents);

  Messages& messages_;
  Trace& trace_;
  std::string path_;
  ProfileFile profile_;
  std::string recovery_head_;  ///< first line of a copy that belongs to the file as it was read
  std::string offered_;        ///< what the copy that is offered holds
  RecoveryState recovery_ = RecoveryState::None;
  bool keeps_offer_ = false;
  std::string damage_;
  bool was_missing_ = false;
  bool may_save_ = false;  ///< the file holds nothing that was neither read nor copied
};

}  // namespace corvane
