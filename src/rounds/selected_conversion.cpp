#include "rounds/selected_conversion.h"

#include <filesystem>

#include "base/paths.h"
#include "base/text.h"

namespace corvane {
namespace {

/// `path` with one separator where several stand.
std::string PlainPath(const std::string& path) {
  return std::filesystem::path(path).lexically_normal().string();
}

}  // namespace

void SelectedConversion::ConvertSelectedFiles() {
  const std::int64_t start = p_.loop.MonotonicMilliseconds();
  p_.conversion.ResetCounters();
  if (!p_.conversion.InitialiseLookups()) return;
  p_.units.StoreUnitRecord();
  const std::vector<DataFile> chosen = ChosenFiles();
  if (chosen.empty()) return;
  const UnitsByRawFile units = MapUnits();
  for (const DataFile& each : chosen) {
    if (Cancelled(p_.link, p_.flags)) break;
    ConvertOneFile(each, units);
    p_.loop.Poll();
  }
  ShowConvertSummary(chosen.size() > 1 ? "selected" : chosen.front().Short, start);
}

std::vector<SelectedConversion::DataFile> SelectedConversion::ChosenFiles() {
  std::vector<DataFile> chosen;
  DataFile file;
  if (p_.file_list.SelCount() > 1) {
    while (p_.file_list.GetNextSelected(file.Full, file.Short)) chosen.push_back(file);
  } else if (p_.file_list.GetCurrent(file.Full, file.Short)) {
    chosen.push_back(file);
  }
  return chosen;
}

SelectedConversion::UnitsByRawFile SelectedConversion::MapUnits() const {
  UnitsByRawFile units;
  // The first unit wins where two make the same name.
  for (std::int32_t i = 1; i <= p_.registry.Units.count(); ++i) {
    units.full.emplace(PlainPath(p_.names.DataFileName(i, false)), i);
    units.bare.emplace(p_.names.DataFileShortName(i, false), i);
  }
  return units;
}

void SelectedConversion::ConvertOneFile(const DataFile& av_File, const UnitsByRawFile& av_Units) {
  if (!EqualsNoCase(ExtensionOf(av_File.Short), p_.names.DataFileExtension(false))) {
    p_.messages.Show("Only raw files can be converted");
  } else if (FindUnitForRawFile(av_File, av_Units)) {
    p_.conversion.Convert(p_.units.Selected(), av_File.Full);
  }
}

bool SelectedConversion::FindUnitForRawFile(const DataFile& av_File, const UnitsByRawFile& av_Units) {
  const auto by_path = av_Units.full.find(PlainPath(av_File.Full));
  const auto by_name = av_Units.bare.find(av_File.Short);
  if (by_name == av_Units.bare.end()) {
    p_.messages.Show("Cannot find a unit for raw file: " + av_File.Short, "Cannot find a unit for raw file");
    return false;
  }
  p_.units.Select(by_path == av_Units.full.end() ? by_name->second : by_path->second);
  return true;
}

void SelectedConversion::ShowConvertSummary(std::string_view as_FileText, std::int64_t al_StartMilliseconds) {
  if (p_.flags.error_counter <= 0) return;
  const std::int64_t seconds = (p_.loop.MonotonicMilliseconds() - al_StartMilliseconds) / 1000;
  const std::string line_break(kLineBreak);
  p_.messages.Show("File:" + std::string(as_FileText) + line_break + "Lines: " + std::to_string(p_.flags.line_counter) +
                   line_break + "Error(s):" + std::to_string(p_.flags.error_counter) + line_break +
                   "Time: " + std::to_string(seconds) + " secs");
}

}  // namespace corvane
