#include "setup/field_rules.h"

#include <cstdint>
#include <optional>

#include "base/files.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "data/sensor_names.h"
#include "link/schedule.h"
#include "transfer/server_address.h"

namespace corvane {
namespace {

constexpr const char* kForeignPath =
    "This is no path of this computer; it begins with \"/\" or is a name in the application folder.";

std::string RangeText(double ad_Lowest, double ad_Highest) {
  return " from " + ShortestText(ad_Lowest) + " to " + ShortestText(ad_Highest) + ".";
}

/// The folder above `as_Path`, "/" at the top.
std::string ParentOf(std::string_view as_Path) {
  while (as_Path.size() > 1 && as_Path.ends_with('/')) as_Path.remove_suffix(1);
  const std::string_view parent = FolderOf(as_Path);
  return parent.empty() ? "/" : std::string(parent);
}

}  // namespace

std::string IntervalProblem(std::string_view as_Text) {
  if (AutomaticInterval(as_Text)) return {};
  return "This is no interval above zero; write hours and minutes, such as 03:00, a number of days below 24, or a "
         "number of hours from 24.";
}

std::string WholeNumberProblem(std::string_view as_Text, double ad_Lowest, double ad_Highest) {
  const auto lowest = static_cast<std::int64_t>(ad_Lowest);
  if (ParseInteger(as_Text, lowest, static_cast<std::int64_t>(ad_Highest))) return {};
  return "This is no whole number" + RangeText(ad_Lowest, ad_Highest);
}

std::string DecimalProblem(std::string_view as_Text, double ad_Lowest, double ad_Highest) {
  const std::optional<double> number = ParseNumber(as_Text);
  if (number && *number >= ad_Lowest && *number <= ad_Highest) return {};
  return "This is no number (with \".\" as the decimal point)" + RangeText(ad_Lowest, ad_Highest);
}

std::string DepthsProblem(std::string_view as_Text) {
  for (const std::string_view depth : Split(as_Text, ';')) {
    if (!Trim(depth).empty() && !DepthOf(depth)) {
      return "These are no depths; write them in centimetres from the first sensor on, such as 10;20;40.";
    }
  }
  return {};
}

std::string ServerProblem(std::string_view as_Text) {
  const ServerAddress server = ParseServer(as_Text);
  if (server.port != 0 && server.host.find_first_of("/@ ") == std::string::npos) return {};
  return "This is no server; write its name or address, and its port where that is not 21, such as "
         "ftp.example.org:2121.";
}

std::string FileProblem(std::string_view as_Text, const AppInfo& av_App) {
  if (as_Text.empty()) return "No file is named; choose one.";
  const std::string path = av_App.AppPath(WithSlashes(as_Text));
  if (!path.starts_with('/')) return kForeignPath;
  const auto info = ExamineFile(path);
  if (!info) return "There is no file " + path + "; choose one that exists.";
  return info->is_folder ? "This is a folder; choose a file." : "";
}

std::string NewFolderProblem(const std::string& as_Path) {
  if (!as_Path.starts_with('/')) return kForeignPath;
  if (ExamineFile(as_Path)) return IsFolder(as_Path) ? "" : "This is a file; choose a folder.";
  const std::string parent = ParentOf(as_Path);
  return IsFolder(parent) ? "" : "There is no folder " + parent + " to create it in; choose a folder that exists.";
}

bool IsFolder(const std::string& as_Path) {
  const auto info = ExamineFile(as_Path);
  return info && info->is_folder;
}

}  // namespace corvane
