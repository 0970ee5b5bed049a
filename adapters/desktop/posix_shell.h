#pragma once

#include <string>

#include "base/dates.h"
#include "platform/shell.h"

namespace corvane {

/// Held by the program that works on an application folder, and lying in it.
inline constexpr const char* kLockFile = "corvane.lock";

/// The desktop as freedesktop.org describes it: XDG folders, autostart entries, xdg-open.
class PosixShell : public Shell {
 public:
  /// `name` is the program's name in messages; `home` the application folder named at the start, empty when none was.
  explicit PosixShell(std::string name, const std::string& home = {});
  /// Gives the instance lock back.
  ~PosixShell() override;

  [[nodiscard]] std::string ProgramFolder() const override;
  /// When the running program was built, none when that cannot be told.
  [[nodiscard]] static DateTime ProgramDate();
  [[nodiscard]] std::string ProgramName() const override;
  /// Starts `$VISUAL` (split at blanks, not read by a shell), else xdg-open, without a terminal.
  Status OpenEditor(const std::string& file) override;
  /// Starts xdg-open.
  Status OpenDocument(const std::string& file) override;
  /// True when the user's autostart entry exists and is not marked Hidden.
  [[nodiscard]] bool HasLogOnEntry() const override;
  Status WriteLogOnEntry(const std::string& arguments) override;
  Status DeleteLogOnEntry() override;
  /// Takes the lock until this object or the process ends, a crash included. A lock of another folder is given back.
  Status TakeInstanceLock(const std::string& folder) override;
  /// Rings the terminal's bell when there is a terminal.
  void Beep() override;

 private:
  std::string name_;
  std::string program_;  ///< taken at the start, because the file may be replaced while the program runs
  std::string home_;
  std::string locked_folder_;
  int lock_ = -1;
};

}  // namespace corvane
