#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

inline constexpr std::string_view kProductName = "Corvane";

/// The application object: its folder, version and about text.
class AppInfo {
 public:
  /// `as_Folder` is the application folder, a full path.
  explicit AppInfo(std::string as_Folder);

  [[nodiscard]] const std::string& Folder() const { return folder_; }
  /// The application folder with one separator at its end.
  [[nodiscard]] std::string AppFolderWithSlash() const;
  /// `as_Name` as it stands when it contains ":" or begins with "/"; otherwise placed in the application folder.
  [[nodiscard]] std::string AppPath(std::string_view as_Name) const;
  /// "major.minor.revision", the revision with three digits ("0.1.000").
  [[nodiscard]] static std::string VersionText();
  /// Product name, version and a closing line, for the about box.
  [[nodiscard]] static std::string AboutText();

  void SetPreviousVersion(std::string_view as_Version) { previous_version_ = as_Version; }
  /// The longest file that is fetched, in bytes.
  [[nodiscard]] std::int64_t FetchLimit() const { return fetch_limit_; }
  void SetFetchLimit(std::int64_t al_Bytes) { fetch_limit_ = al_Bytes; }
  /// Compares the version that last wrote the settings with the running one.
  // Intended: true for a stored revision above the running one; the settings loader asks and ignores the answer.
  [[nodiscard]] bool IsNewerVersion() const;

 private:
  std::string folder_;
  std::string previous_version_;
  std::int64_t fetch_limit_ = 2'000'000'000;
};

}  // namespace corvane
