#include "desktop/application_folder.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <unistd.h>

#include "base/files.h"
#include "base/paths.h"
#include "desktop/environment.h"
#include "state/home_folder.h"
#include "state/settings_file.h"

namespace corvane {

std::string ChooseApplicationFolder(const std::string& home_option, const Shell& shell) {
  std::error_code error;
  HomeChoice choice;
  choice.option = home_option;
  choice.corvane_home = Environment("CORVANE_HOME");
  choice.xdg_data_home = Environment("XDG_DATA_HOME");
  choice.user_home = Environment("HOME");
  choice.current_folder = std::filesystem::current_path(error).string();
  choice.program_folder = shell.ProgramFolder();
  choice.program_folder_has_settings =
      ExamineFile(AddBackslash(choice.program_folder) + std::string(kSettingsFile)).has_value();
  return ApplicationFolder(choice);
}

Status PrepareApplicationFolder(const std::string& folder) {
  try {
    CreatePath(folder);
  } catch (const RunTimeError& error) {
    return {EIO, "the application folder cannot be used: " + std::string(error.what())};
  }
  if (access(folder.c_str(), W_OK | X_OK) == 0) return Status::Ok();
  return Status::FromErrno("the application folder cannot be used: " + folder, errno);
}

}  // namespace corvane
