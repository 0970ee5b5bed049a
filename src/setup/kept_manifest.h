// What an archive of an application folder says of itself. Format: docs/formats/kept-archive.md.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/archive.h"

namespace corvane {

/// Names of entries and their folders.
inline constexpr std::string_view kManifestName = "manifest.ini";
inline constexpr std::string_view kKeptSettings = "settings/corvane.ini";
inline constexpr std::string_view kKeptHistory = "history/history.db";
inline constexpr std::string_view kKeptSummary = "log/summary.csv";
inline constexpr std::string_view kKeptFiles = "files/";  ///< a folder for each key, with the file that it names
inline constexpr std::string_view kKeptData = "data/";    ///< as below the data folder

struct KeptManifest {
  static constexpr int kFormat = 1;

  int format = kFormat;
  std::string version;  ///< of the program that wrote it
  std::string made;     ///< "2026-11-22 14:05", local time
  std::string host;
  std::string folder;       ///< the application folder, a full path
  std::string data_folder;  ///< a full path
  bool passwords = true;
  bool data = false;
  std::vector<ArchiveEntry> entries;  ///< all but the manifest itself
};

[[nodiscard]] std::string ManifestText(const KeptManifest& av_Manifest);
/// Throws `RunTimeError` for what is no manifest, or one of a newer version.
[[nodiscard]] KeptManifest ReadManifest(const std::string& as_Text);

/// True for a name that stays below the folder that it is put into: relative, without ".", "..", empty parts,
/// backslashes and control characters.
[[nodiscard]] bool IsSafeName(std::string_view as_Name);

}  // namespace corvane
