#include "state/app_info.h"

#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"

namespace corvane {

AppInfo::AppInfo(std::string as_Folder) : folder_(std::move(as_Folder)) {}

std::string AppInfo::AppFolderWithSlash() const {
  return AddBackslash(folder_);
}

std::string AppInfo::AppPath(std::string_view as_Name) const {
  return PlaceInFolder(folder_, as_Name);
}

std::string AppInfo::VersionText() {
  return std::to_string(CORVANE_VERSION_MAJOR) + "." + std::to_string(CORVANE_VERSION_MINOR) + "." +
         ZeroPadded(CORVANE_VERSION_PATCH, 3);
}

std::string AppInfo::AboutText() {
  return std::string(kProductName) + std::string(kLineBreak) + "ver " + VersionText() + std::string(kLineBreak) +
         "Keeps a network of field loggers collected.";
}

bool AppInfo::IsNewerVersion() const {
  const auto parts = Split(previous_version_, '.');
  if (parts.size() != 3) return true;
  const double stored = LeadingNumber(std::string(parts[0]) + "." + std::string(parts[1]));
  const double running =
      LeadingNumber(std::to_string(CORVANE_VERSION_MAJOR) + "." + std::to_string(CORVANE_VERSION_MINOR));
  return stored > running || LeadingNumber(parts[2]) > CORVANE_VERSION_PATCH;
}

}  // namespace corvane
