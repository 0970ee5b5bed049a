#include "state/home_folder.h"

#include "base/paths.h"
#include "base/status.h"

namespace corvane {
namespace {

constexpr const char* kFolderName = "corvane";

bool IsFull(const std::string& path) {
  return path.starts_with('/');
}

std::string FullPath(const std::string& path, const std::string& current_folder) {
  std::string full = IsFull(path) ? path : AddBackslash(current_folder) + path;
  while (full.size() > 1 && full.ends_with('/')) full.pop_back();
  return full;
}

}  // namespace

std::string ApplicationFolder(const HomeChoice& av_Choice) {
  for (const std::string* named : {&av_Choice.option, &av_Choice.corvane_home}) {
    if (!named->empty()) return FullPath(*named, av_Choice.current_folder);
  }
  if (av_Choice.program_folder_has_settings) return av_Choice.program_folder;
  // A relative data folder is to be ignored (XDG Base Directory Specification).
  if (IsFull(av_Choice.xdg_data_home)) return AddBackslash(av_Choice.xdg_data_home) + kFolderName;
  if (IsFull(av_Choice.user_home)) return AddBackslash(av_Choice.user_home) + ".local/share/" + kFolderName;
  throw RunTimeError("no application folder: name one with --home DIR, or set CORVANE_HOME or HOME");
}

}  // namespace corvane
