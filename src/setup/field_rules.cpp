#include "setup/field_rules.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>

#include "base/files.h"
#include "base/folder_rights.h"
#include "base/format.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "data/sensor_names.h"
#include "link/schedule.h"
#include "transfer/server_address.h"

namespace corvane {
namespace {

constexpr struct {
  Phrase foreign_path{1640,
                      "This is no path of this computer; it begins with \"/\" or is a name in the application folder."};
  Phrase no_interval{1641,
                     "This is no interval above zero; write hours and minutes, such as 03:00, a number of days below "
                     "24, or a number of hours from 24."};
  Phrase no_hours{1700,
                  "These are no hours and minutes from 00:01 to 23:59; for more write a number of hours from 24, such "
                  "as 36."};
  Phrase no_whole_number{1642, "This is no whole number from %1 to %2."};
  Phrase no_decimal{1643, "This is no number (with \".\" as the decimal point) from %1 to %2."};
  Phrase no_depths{1644, "These are no depths; write them in centimetres from the first sensor on, such as 10;20;40."};
  Phrase no_server{1645,
                   "This is no server; write its name or address, and its port where that is not 21, such as "
                   "ftp.example.org:2121."};
  Phrase file_unnamed{1646, "No file is named; choose one."};
  Phrase no_file{1647, "There is no file %1; choose one that exists."};
  Phrase is_folder{1648, "This is a folder; choose a file."};
  Phrase is_file{1649, "This is a file; choose a folder."};
  Phrase no_parent{1650, "There is no folder %1 to create it in; choose a folder that exists."};
} kRuleSays;

/// The folder above `as_Path`, "/" at the top.
std::string ParentOf(std::string_view as_Path) {
  while (as_Path.size() > 1 && as_Path.ends_with('/')) as_Path.remove_suffix(1);
  const std::string_view parent = FolderOf(as_Path);
  return parent.empty() ? "/" : std::string(parent);
}

/// The depths with ";" between them; none where one of them is no number.
std::optional<std::string> DepthsPartedBy(std::string_view as_Text, char ac_Separator) {
  std::string depths;
  std::string_view before;
  for (const std::string_view part : Split(as_Text, ac_Separator)) {
    std::string depth(Trim(part));
    if (ac_Separator == ' ' && depth.empty()) continue;
    if (ac_Separator != ',' && std::ranges::count(depth, ',') == 1) std::ranges::replace(depth, ',', '.');
    if (!depth.empty() && !DepthOf(depth)) return std::nullopt;
    depths += std::string(before) + depth;
    before = ";";
  }
  return depths;
}

}  // namespace

std::string HoursProblem(std::string_view as_Text, const Phrases& av_Phrases) {
  if (as_Text.find(':') == std::string_view::npos || ParseTimeOfDay(Trim(as_Text))) return {};
  return av_Phrases.Text(kRuleSays.no_hours);
}

std::string IntervalProblem(std::string_view as_Text, const Phrases& av_Phrases) {
  if (AutomaticInterval(as_Text)) return {};
  const std::string problem = HoursProblem(as_Text, av_Phrases);
  return problem.empty() ? av_Phrases.Text(kRuleSays.no_interval) : problem;
}

std::string WholeNumberProblem(std::string_view as_Text, double ad_Lowest, double ad_Highest,
                               const Phrases& av_Phrases) {
  const auto lowest = static_cast<std::int64_t>(ad_Lowest);
  if (ParseInteger(as_Text, lowest, static_cast<std::int64_t>(ad_Highest))) return {};
  return av_Phrases.Text(kRuleSays.no_whole_number, {ShortestText(ad_Lowest), ShortestText(ad_Highest)});
}

std::string DecimalProblem(std::string_view as_Text, double ad_Lowest, double ad_Highest, const Phrases& av_Phrases) {
  const std::optional<double> number = ParseNumber(as_Text);
  if (number && *number >= ad_Lowest && *number <= ad_Highest) return {};
  return av_Phrases.Text(kRuleSays.no_decimal, {ShortestText(ad_Lowest), ShortestText(ad_Highest)});
}

std::string DepthsProblem(std::string_view as_Text, const Phrases& av_Phrases) {
  for (const std::string_view depth : Split(as_Text, ';')) {
    if (!Trim(depth).empty() && !DepthOf(depth)) return av_Phrases.Text(kRuleSays.no_depths);
  }
  return {};
}

std::string PlainDepths(std::string_view as_Text) {
  const auto count = [as_Text](char c) { return std::ranges::count(as_Text, c); };
  // One comma alone may be a decimal one.
  const bool commas_part = as_Text.find(", ") != std::string_view::npos || count(',') > 1 || count('.') > 0;
  for (const char separator : std::string_view(";/, ")) {
    if (count(separator) == 0 || (separator == ',' && !commas_part)) continue;
    if (const auto depths = DepthsPartedBy(as_Text, separator)) return *depths;
    if (separator == ';') break;
  }
  return std::string(as_Text);
}

std::string ClientFolderFor(std::string_view as_Client,
                            const std::function<bool(const std::string& folder)>& av_IsTaken) {
  std::string name(Trim(as_Client));
  std::ranges::replace_if(
      name, [](char c) { return c == '/' || c == '\\' || c == ':'; }, '_');
  if (name.starts_with('.')) name.front() = '_';
  std::string folder = name;
  for (int number = 2; av_IsTaken(folder); ++number) folder = name + "_" + std::to_string(number);
  return folder;
}

std::string RawFileKey(std::string_view as_Folder, std::string_view as_ID) {
  return AddBackslash(WithSlashes(Trim(as_Folder))) + "\n" + std::string(as_ID);
}

std::string ServerProblem(std::string_view as_Text, const Phrases& av_Phrases) {
  const ServerAddress server = ParseServer(as_Text);
  if (server.port != 0 && server.host.find_first_of("/@ ") == std::string::npos) return {};
  return av_Phrases.Text(kRuleSays.no_server);
}

std::string FileProblem(std::string_view as_Text, const AppInfo& av_App, const Phrases& av_Phrases) {
  if (as_Text.empty()) return av_Phrases.Text(kRuleSays.file_unnamed);
  const std::string path = av_App.AppPath(WithSlashes(as_Text));
  if (!path.starts_with('/')) return av_Phrases.Text(kRuleSays.foreign_path);
  const auto info = ExamineFile(path);
  if (!info) return av_Phrases.Text(kRuleSays.no_file, {path});
  return info->is_folder ? av_Phrases.Text(kRuleSays.is_folder) : "";
}

std::string NewFolderProblem(const std::string& as_Path, const Phrases& av_Phrases) {
  if (!as_Path.starts_with('/')) return av_Phrases.Text(kRuleSays.foreign_path);
  if (ExamineFile(as_Path)) return IsFolder(as_Path) ? "" : av_Phrases.Text(kRuleSays.is_file);
  const std::string parent = ParentOf(as_Path);
  return IsFolder(parent) ? "" : av_Phrases.Text(kRuleSays.no_parent, {parent});
}

std::string NewFileProblem(const std::string& as_Path) {
  const std::string folder = ParentOf(as_Path);
  if (!IsFolder(folder)) return "there is no folder " + folder + " for " + as_Path;
  if (IsFolder(as_Path)) return as_Path + " is a folder; name a file";
  // A device or a pipe must not be replaced by a file.
  std::error_code error;
  const bool is_other = std::filesystem::is_other(as_Path, error);
  if (!error && is_other) return as_Path + " is no file; name one";
  return MayWriteInto(folder) ? "" : "you may not write into the folder " + folder;
}

bool IsFolder(const std::string& as_Path) {
  const auto info = ExamineFile(as_Path);
  return info && info->is_folder;
}

std::vector<Phrase> FieldRulePhrases() {
  return PhrasesIn(kRuleSays);
}

}  // namespace corvane
