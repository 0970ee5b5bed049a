#pragma once

#include <map>
#include <string>

#include "form/control.h"
#include "state/file_names.h"
#include "state/records.h"

namespace corvane {

/// Which unit the files of the listed folder belong to.
class FileUnits {
 public:
  /// `av_Folder` shows the folder whose files are listed; all must outlive this object.
  FileUnits(const FileNames& av_Names, const Registry& av_Registry, const Label& av_Folder)
      : names_(av_Names), registry_(av_Registry), folder_(av_Folder) {}

  /// The name of the unit whose file that is, raw, calibrated or packed, by the file's name without folder; several
  /// names with commas where units share it, empty where it is nobody's.
  [[nodiscard]] std::string NameOf(const std::string& as_File);
  /// Units or the folder may be others from now on.
  void Forget() { known_ = false; }

 private:
  void Learn();

  const FileNames& names_;
  const Registry& registry_;
  const Label& folder_;
  std::map<std::string, std::string> units_;  ///< by the name of the file without its extension
  bool known_ = false;
};

}  // namespace corvane
