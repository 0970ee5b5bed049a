#include "state/file_units.h"

#include <cstdint>

#include "base/paths.h"

namespace corvane {

void FileUnits::Learn() {
  known_ = true;
  units_.clear();
  const std::string folder = AddBackslash(folder_.text());
  for (std::int64_t unit = 1; unit <= registry_.Units.count(); ++unit) {
    const auto index = static_cast<std::int32_t>(unit);
    if (AddBackslash(names_.ClientFolder(index)) != folder) continue;
    const std::string file = names_.DataFileShortName(index, false);
    std::string& names = units_[file.substr(0, file.rfind('.'))];
    names += (names.empty() ? "" : ", ") + registry_.Units[unit].Name;
  }
}

std::string FileUnits::NameOf(const std::string& as_File) {
  if (!known_) Learn();
  for (std::size_t dot = as_File.rfind('.'); dot != std::string::npos && dot > 0; dot = as_File.rfind('.', dot - 1)) {
    if (const auto found = units_.find(as_File.substr(0, dot)); found != units_.end()) return found->second;
  }
  return "";
}

}  // namespace corvane
