#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "form/form.h"
#include "state/app_info.h"
#include "state/records.h"

namespace corvane {

/// The naming rule: which file belongs to which unit. Nothing else records it.
class FileNames {
 public:
  /// The unit index that asks for the example name (unit number 99, no client folder).
  static constexpr std::int32_t kExample = -1;

  FileNames(const Form& av_Form, const Registry& av_Registry, const AppInfo& av_App);

  /// The full name of a unit's raw or calibrated file; `al_UnitIndex` from 1, or `kExample`. Empty when there is no
  /// such unit.
  [[nodiscard]] std::string DataFileName(std::int32_t al_UnitIndex, bool ab_Calibrated) const;
  /// The file name without folder: prefix, unit ID with at least five digits, extension.
  [[nodiscard]] std::string DataFileShortName(std::int32_t al_UnitIndex, bool ab_Calibrated) const;
  /// The first unit besides `al_UnitIndex` (from 1) whose raw file is that of a unit with this ID and client; 0: none.
  [[nodiscard]] std::int32_t OtherUnitOfFile(std::int32_t al_UnitIndex, std::int32_t al_ID,
                                             std::int32_t al_ClientID) const;
  /// A sentence for each unit that shares its raw file with one before it; of the active units, or of all.
  [[nodiscard]] std::vector<std::string> SharedRawFiles(bool ab_ActiveOnly) const;
  /// The name on the FTP server: client folder with forward slashes, short name, all in lower case.
  [[nodiscard]] std::string RemoteDataFileName(std::int32_t al_UnitIndex, bool ab_Calibrated) const;
  [[nodiscard]] const std::string& DataFileExtension(bool ab_Calibrated) const;
  /// Whether the calibrated files are the ones that are sent, fetched and backed up; else the raw ones are.
  [[nodiscard]] bool TransfersCalibrated() const { return form_.Opt_WebFileType.GetOptionIndex() != 0; }
  /// The data folder as a full path; a bare name is placed in the application folder.
  [[nodiscard]] std::string DataFolder() const;
  /// The local folder of a unit's client, with a separator at its end; the data folder when the client has none.
  [[nodiscard]] std::string ClientFolder(std::int32_t al_UnitIndex) const;
  /// The full name of the file in `Txt_File[ai_Index]`.
  [[nodiscard]] std::string SettingsFile(int ai_Index) const;
  /// The folder name of a unit's client as stored, empty when it has none.
  [[nodiscard]] std::string ClientFolderName(std::int32_t al_UnitIndex) const;

 private:
  [[nodiscard]] std::string FolderOfClient(std::int32_t al_ClientID) const;

  const Form& form_;
  const Registry& registry_;
  const AppInfo& app_;
};

}  // namespace corvane
