#include "desktop/autostart_entry.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

#include "base/replacement_file.h"
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

  return WriteFileAtomically(
      path, "[Desktop Entry]\nType=Application\nName=" + entry.name + "\nExec=" + exec + "\nTerminal=false\n");
}

}  // namespace corvane
