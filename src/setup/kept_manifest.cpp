#include "setup/kept_manifest.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "base/numbers.h"
#include "base/profile.h"
#include "base/status.h"
#include "base/text.h"
#include "state/app_info.h"

namespace corvane {
namespace {

constexpr std::string_view kArchive = "Archive";
constexpr std::string_view kEntries = "Entries";
constexpr std::int64_t kMostEntries = 10'000'000;
constexpr std::size_t kCrcDigits = 8;

std::string KeyOf(std::string_view as_Field, std::size_t al_Number) {
  return std::string(as_Field) + std::to_string(al_Number);
}

/// "0.1.002" as three numbers.
std::array<std::int64_t, 3> PartsOf(std::string_view as_Version) {
  std::array<std::int64_t, 3> parts{};
  const std::vector<std::string_view> texts = Split(as_Version, '.');
  for (std::size_t i = 0; i < parts.size() && i < texts.size(); ++i) {
    parts[i] = ParseInteger(texts[i], 0, INT32_MAX).value_or(0);
  }
  return parts;
}

std::optional<std::uint32_t> CrcOf(std::string_view as_Text) {
  const auto is_digit = [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); };
  if (as_Text.size() != kCrcDigits || !std::all_of(as_Text.begin(), as_Text.end(), is_digit)) return std::nullopt;
  return static_cast<std::uint32_t>(std::stoul(std::string(as_Text), nullptr, 16));
}

ArchiveEntry EntryOf(const ProfileFile& av_Profile, std::size_t al_Number) {
  ArchiveEntry entry;
  entry.name = av_Profile.Get(kEntries, KeyOf("Name", al_Number), "");
  const auto size = ParseInteger(av_Profile.Get(kEntries, KeyOf("Size", al_Number), ""), 0, INT64_MAX);
  const auto crc = CrcOf(av_Profile.Get(kEntries, KeyOf("CRC", al_Number), ""));
  if (entry.name.empty() || !size || !crc) {
    throw RunTimeError("its list of contents is damaged at number " + std::to_string(al_Number));
  }
  entry.size = *size;
  entry.crc = *crc;
  return entry;
}

}  // namespace

std::string ManifestText(const KeptManifest& av_Manifest) {
  ProfileFile profile;
  const auto set = [&profile](std::string_view key, std::string_view value) { profile.Set(kArchive, key, value); };
  set("Format", std::to_string(av_Manifest.format));
  set("Version", av_Manifest.version);
  set("Made", av_Manifest.made);
  set("Host", av_Manifest.host);
  set("Folder", av_Manifest.folder);
  set("DataFolder", av_Manifest.data_folder);
  set("Passwords", av_Manifest.passwords ? "1" : "0");
  set("Data", av_Manifest.data ? "1" : "0");
  profile.Set(kEntries, "Count", std::to_string(av_Manifest.entries.size()));
  for (std::size_t i = 0; i < av_Manifest.entries.size(); ++i) {
    const ArchiveEntry& entry = av_Manifest.entries[i];
    profile.Set(kEntries, KeyOf("Name", i + 1), entry.name);
    profile.Set(kEntries, KeyOf("Size", i + 1), std::to_string(entry.size));
    profile.Set(kEntries, KeyOf("CRC", i + 1), HexText(entry.crc, kCrcDigits));
  }
  return profile.Text();
}

KeptManifest ReadManifest(const std::string& as_Text) {
  ProfileFile profile;
  profile.Parse(as_Text);
  const auto get = [&profile](std::string_view key) { return profile.Get(kArchive, key, ""); };
  const auto format = ParseInteger(get("Format"), 1, INT32_MAX);
  if (!format) throw RunTimeError("it was not made by corvanectl keep");
  KeptManifest manifest;
  manifest.format = static_cast<int>(*format);
  manifest.version = get("Version");
  if (manifest.format > KeptManifest::kFormat || PartsOf(manifest.version) > PartsOf(AppInfo::VersionText())) {
    throw RunTimeError("it was made by version " + manifest.version + " of the program; this one is " +
                       AppInfo::VersionText() + ". Install that version first");
  }
  manifest.made = get("Made");
  manifest.host = get("Host");
  manifest.folder = get("Folder");
  manifest.data_folder = get("DataFolder");
  manifest.passwords = get("Passwords") != "0";
  manifest.data = get("Data") == "1";
  const auto count = ParseInteger(profile.Get(kEntries, "Count", ""), 0, kMostEntries);
  if (!count) throw RunTimeError("its list of contents is damaged");
  for (std::size_t i = 1; i <= static_cast<std::size_t>(*count); ++i) manifest.entries.push_back(EntryOf(profile, i));
  return manifest;
}

bool IsSafeName(std::string_view as_Name) {
  if (as_Name.empty() || HasControlCharacter(as_Name) || as_Name.find('\\') != std::string_view::npos) return false;
  const std::vector<std::string_view> parts = Split(as_Name, '/');
  return std::none_of(parts.begin(), parts.end(),
                      [](std::string_view part) { return part.empty() || part == "." || part == ".."; });
}

}  // namespace corvane
