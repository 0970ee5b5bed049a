// What the program asks of the desktop around it. Calls return at once and are made in the loop's thread.
#pragma once

#include <string>

#include "base/status.h"

namespace corvane {

class Shell {
 public:
  virtual ~Shell() = default;
  Shell() = default;
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;

  /// The folder that holds the program file, without a trailing separator.
  [[nodiscard]] virtual std::string ProgramFolder() const = 0;
  /// The program's file name without extension.
  [[nodiscard]] virtual std::string ProgramName() const = 0;
  /// Starts the user's text editor on `file` and does not wait for it.
  virtual Status OpenEditor(const std::string& file) = 0;
  /// Opens a document (a page of the user guide) in the viewer that the desktop has for it; does not wait.
  virtual Status OpenDocument(const std::string& file) = 0;
  /// True when an entry starts the program at log-on.
  [[nodiscard]] virtual bool HasLogOnEntry() const = 0;
  /// Writes the log-on entry with `arguments` behind the program's path.
  virtual Status WriteLogOnEntry(const std::string& arguments) = 0;
  /// Removes the log-on entry; one that is not there is a success.
  virtual Status DeleteLogOnEntry() = 0;
  /// Takes the one-program-a-folder lock of `folder` until the process ends.
  ///
  /// The code of the failure is EWOULDBLOCK when another process holds it; else the text says why there is no lock.
  virtual Status TakeInstanceLock(const std::string& folder) = 0;
  /// A short sound, where there is one.
  virtual void Beep() = 0;
};

}  // namespace corvane
