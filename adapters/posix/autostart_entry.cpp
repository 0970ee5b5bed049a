#include "posix/autostart_entry.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "base/text.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

/// `text` as one quoted argument of an Exec key: reserved characters escaped, then backslashes doubled as in every
/// string of the file; "%" doubled because it starts a field code.
std::string QuotedArgument(std::string_view text) {
  constexpr std::string_view kReserved = "\"`$\\";
  std::string quoted = "\"";
  for (const char letter : text) {
    if (kReserved.find(letter) != std::string_view::npos) quoted += "\\\\";
    if (letter == '\\' || letter == '%') quoted += letter;
    quoted += letter;
  }
  return quoted + "\"";
}

std::string ExecLine(const AutostartEntry& entry) {
  std::string line = QuotedArgument(entry.program);
  if (!entry.home.empty()) line += " --home " + QuotedArgument(entry.home);
  if (!entry.arguments.empty() && entry.arguments.front() != ' ') line += ' ';
  return line + entry.arguments;
}

bool HasControlCharacters(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char letter) { return static_cast<unsigned char>(letter) < ' '; });
}

/// Writes all of `text` to the disk; returns 0 or an errno.
int WriteSynced(const std::string& path, std::string_view text) {
  const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (descriptor < 0) return errno;
  int error = 0;
  while (error == 0 && !text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    if (written < 0 && errno != EINTR) error = errno;
  }
  if (error == 0 && fsync(descriptor) != 0) error = errno;
  if (close(descriptor) != 0 && error == 0) error = errno;
  return error;
}

}  // namespace

bool IsEntryActive(const std::string& path) {
  std::ifstream file(path);
  bool in_group = false;
  for (std::string line; std::getline(file, line);) {
    if (line.ends_with('\r')) line.pop_back();
    const std::string_view text = Trim(line);
    if (text.starts_with('[')) in_group = text == "[Desktop Entry]";
    const std::size_t equals = text.find('=');
    if (!in_group || equals == std::string_view::npos) continue;
    if (Trim(text.substr(0, equals)) == "Hidden" && Trim(text.substr(equals + 1)) == "true") return false;
  }
  return file.eof();
}

Status WriteEntry(const std::string& path, const AutostartEntry& entry) {
  const std::string exec = ExecLine(entry);
  if (HasControlCharacters(exec)) return {EINVAL, "a path with control characters cannot be started at log-on"};
  std::error_code folders;
  fs::create_directories(fs::path(path).parent_path(), folders);
  if (folders) return Status::FromErrno("creating the folder of " + path, folders.value());

  const std::string temporary = path + ".new";
  int error = WriteSynced(
      temporary, "[Desktop Entry]\nType=Application\nName=" + entry.name + "\nExec=" + exec + "\nTerminal=false\n");
  if (error == 0 && rename(temporary.c_str(), path.c_str()) != 0) error = errno;
  if (error == 0) return Status::Ok();
  unlink(temporary.c_str());
  return Status::FromErrno("writing " + path, error);
}

}  // namespace corvane
