#pragma once

#include <string>

namespace corvane {

/// What the choice of the application folder depends on; an empty text means that it is not given.
struct HomeChoice {
  std::string option;          ///< value of --home
  std::string corvane_home;    ///< $CORVANE_HOME
  std::string xdg_data_home;   ///< $XDG_DATA_HOME
  std::string user_home;       ///< $HOME
  std::string current_folder;  ///< what a relative folder named by the user starts from
  std::string program_folder;
  bool program_folder_has_settings = false;  ///< it holds a "corvane.ini" (portable use)
};

/// The application folder as a full path: the one that the user named, else the program's own folder in portable use,
/// else the user's data folder. Throws `RunTimeError` when nothing names one.
[[nodiscard]] std::string ApplicationFolder(const HomeChoice& av_Choice);

}  // namespace corvane
