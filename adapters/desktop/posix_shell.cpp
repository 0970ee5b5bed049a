#include "desktop/posix_shell.h"

#include "base/files.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "desktop/autostart_entry.h"
#include "desktop/environment.h"
#include "desktop/spawn.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr const char* kEntryFile = "autostart/corvane.desktop";

/// The user's autostart entry, empty when the environment names no home; a relative `$XDG_CONFIG_HOME` does not count.
std::string EntryPath() {
  fs::path config = Environment("XDG_CONFIG_HOME");
  if (!config.is_absolute()) config = fs::path(Environment("HOME")) / ".config";
  return config.is_absolute() ? (config / kEntryFile).string() : "";
}

/// A program would take a name that begins with a dash for an option.
Status CheckIsNoOption(const std::string& file) {
  return file.starts_with('-') ? Status(EINVAL, file + " is no full path of a file") : Status::Ok();
}

}  // namespace

PosixShell::PosixShell(std::string name, const std::string& home) : name_(std::move(name)) {
  std::error_code error;
  program_ = fs::read_symlink("/proc/self/exe", error).string();
  if (!home.empty()) home_ = fs::absolute(home, error).string();
}

PosixShell::~PosixShell() {
  if (lock_ >= 0) close(lock_);
}

std::string PosixShell::ProgramFolder() const {
  return fs::path(program_).parent_path().string();
}

DateTime PosixShell::ProgramDate() {
  const auto program = ExamineFile("/proc/self/exe");
  return program ? program->modified : DateTime();
}

std::string PosixShell::ProgramName() const {
  return name_;
}

Status PosixShell::OpenEditor(const std::string& file) {
  if (const Status full = CheckIsNoOption(file); !full.ok()) return full;
  std::vector<std::string> command = SplitAtBlanks(Environment("VISUAL"));
  if (command.empty()) command = {"xdg-open"};
  const std::string editor = command.front();
  command.push_back(file);
  const int error = SpawnDetached(command);
  if (error == 0) return Status::Ok();
  return Status::FromErrno("no editor started, set VISUAL to an installed one (" + editor + ")", error);
}

Status PosixShell::OpenDocument(const std::string& file) {
  if (const Status full = CheckIsNoOption(file); !full.ok()) return full;
  const int error = SpawnDetached({"xdg-open", file});
  return error == 0 ? Status::Ok() : Status::FromErrno("xdg-open is needed to show " + file, error);
}

bool PosixShell::HasLogOnEntry() const {
  return IsEntryActive(EntryPath());
}

Status PosixShell::WriteLogOnEntry(const std::string& arguments) {
  const std::string path = EntryPath();
  if (path.empty()) return {ENOENT, "the folder for the log-on entry is unknown: set HOME"};
  return WriteEntry(path, AutostartEntry{name_, program_, home_, arguments});
}

Status PosixShell::DeleteLogOnEntry() {
  const std::string path = EntryPath();
  if (unlink(path.c_str()) != 0 && errno != ENOENT) return Status::FromErrno("deleting " + path, errno);
  return Status::Ok();
}

Status PosixShell::TakeInstanceLock(const std::string& folder) {
  if (lock_ >= 0 && folder == locked_folder_) return Status::Ok();
  const std::string path = (fs::path(folder) / kLockFile).string();
  const int descriptor = open(path.c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600);
  // Without the lock a second program might save over what the first one holds.
  if (descriptor < 0) return Status::FromErrno("the application folder cannot be locked: " + path, errno);
  if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    const int error = errno;
    close(descriptor);
    return Status::FromErrno("the application folder cannot be locked: " + path, error);
  }
  if (lock_ >= 0) close(lock_);
  lock_ = descriptor;
  locked_folder_ = folder;
  return Status::Ok();
}

void PosixShell::Beep() {
  if (isatty(STDERR_FILENO) == 0) return;
  static_cast<void>(!write(STDERR_FILENO, "\a", 1));
}

}  // namespace corvane
