#include "rounds/batch_conversion.h"

#include "base/paths.h"
#include "base/text.h"
#include "ui/mouse_pointer.h"

namespace corvane {
BatchConversion::BatchConversion(Form& av_Form, RunFlags& av_Flags, const LinkState& av_Link,
                                 const Registry& av_Registry, const FileNames& av_Names, CFileListbox& av_FileList,
                                 LocalFiles& av_Files, Lookups& av_Lookups, CalibratedConverter& av_Converter,
                                 UnitEditor& av_Units, PortLink& av_PortLink, EventLoop& av_Loop, ProgressBars& av_Bars,
                                 Messages& av_Messages, Trace& av_Trace)
    : form_(av_Form),
      flags_(av_Flags),
      link_(av_Link),
      registry_(av_Registry),
      names_(av_Names),
      file_list_(av_FileList),
      files_(av_Files),
      lookups_(av_Lookups),
      converter_(av_Converter),
      units_(av_Units),
      port_link_(av_PortLink),
      loop_(av_Loop),
      bars_(av_Bars),
      messages_(av_Messages),
      trace_(av_Trace) {}

bool BatchConversion::InitialiseLookups() {
  const bool ready = lookups_.Moisture.Initialise(files_.SettingsFile(0)) &&
                     lookups_.Salinity.Initialise(files_.SettingsFile(1)) &&
                     lookups_.Correction.Initialise(files_.SettingsFile(2));
  if (!ready) ++flags_.problems;
  return ready;
}

void BatchConversion::ConvertFile(const std::string& as_RawFile) {
  const std::int64_t errors_before = flags_.error_counter;
  const bool finished = converter_.ConvertToCalibrated(as_RawFile);
  results_.push_back({units_.Selected(), converter_.Readings(), flags_.error_counter - errors_before});
  if (!finished || flags_.error_counter > errors_before) ++flags_.problems;
}

void BatchConversion::ResetCounters() {
  flags_.error_counter = 0;
  flags_.line_counter = 0;
}

void BatchConversion::ConvertSelectedFiles() {
  const std::int64_t start = loop_.MonotonicMilliseconds();
  ResetCounters();
  if (!InitialiseLookups()) return;
  units_.StoreUnitRecord();
  std::vector<DataFile> chosen;
  DataFile file;
  const bool several = file_list_.SelCount() > 1;
  if (several) {
    while (file_list_.GetNextSelected(file.Full, file.Short)) chosen.push_back(file);
  } else if (file_list_.GetCurrent(file.Full, file.Short)) {
    chosen.push_back(file);
  } else {
    return;
  }
  const UnitsByRawFile units = MapUnits();
  for (const DataFile& each : chosen) {
    if (Cancelled()) break;
    ConvertOneFile(each, units);
    loop_.Poll();
  }
  ShowConvertSummary(several ? "selected" : file.Short, start);
}

BatchConversion::UnitsByRawFile BatchConversion::MapUnits() const {
  UnitsByRawFile units;
  // The first unit wins where two make the same name.
  for (std::int32_t i = 1; i <= registry_.Units.count(); ++i) units.emplace(names_.DataFileShortName(i, false), i);
  return units;
}

void BatchConversion::ConvertOneFile(const DataFile& av_File, const UnitsByRawFile& av_Units) {
  if (!EqualsNoCase(ExtensionOf(av_File.Short), names_.DataFileExtension(false))) {
    messages_.Show("Only raw files can be converted");
  } else if (FindUnitForRawFile(av_File.Short, av_Units)) {
    ConvertFile(av_File.Full);
  }
}

bool BatchConversion::FindUnitForRawFile(const std::string& as_FileName, const UnitsByRawFile& av_Units) {
  const auto unit = av_Units.find(as_FileName);
  if (unit == av_Units.end()) {
    messages_.Show("Cannot find a unit for raw file: " + as_FileName, "Cannot find a unit for raw file");
    return false;
  }
  units_.Select(unit->second);
  return true;
}

void BatchConversion::ConvertAllUnits(bool ab_All, std::int32_t al_GetFrom, std::int32_t al_Client) {
  ResetCounters();
  if (!InitialiseLookups()) return;
  units_.StoreUnitRecord();
  const std::int64_t selected = units_.Selected();
  const auto in_run = [=, this](std::int64_t unit) {
    const Unit& record = registry_.Units[unit];
    return (ab_All ? record.Active != 0 : unit == selected) && (al_GetFrom == kAny || record.GetFrom == al_GetFrom) &&
           (al_Client == kAny || record.ClientID == al_Client);
  };
  std::int64_t count = 0;
  for (std::int64_t i = 1; i <= registry_.Units.count(); ++i) count += in_run(i) ? 1 : 0;
  if (count > 0) ConvertUnits(in_run, count, selected);
}

void BatchConversion::ConvertUnits(const std::function<bool(std::int64_t)>& av_InRun, std::int64_t al_Count,
                                   std::int64_t al_Selected) {
  const BusyPointer busy(form_.Frm_Main);
  port_link_.ClearEverything();
  bars_.Unit.SetProcessText("Converting...");
  bars_.Unit.Initialise(al_Count);
  for (std::int64_t i = 1; i <= registry_.Units.count() && !Cancelled(); ++i) {
    if (!av_InRun(i)) continue;
    units_.Select(i);
    ConvertFile(names_.DataFileName(static_cast<std::int32_t>(i), false));
    bars_.Unit.Increment();
    loop_.Poll();
  }
  if (!Cancelled()) trace_.Status("Finished...");
  units_.Select(al_Selected);
  port_link_.ClearEverything();
  if (flags_.error_counter < 1) return;
  messages_.ShowTimedMessage("Convert error(s): " + std::to_string(flags_.error_counter), kOkOnly | kExclamationIcon);
}

bool BatchConversion::Cancelled() const {
  return link_.UserCancel || flags_.closing;
}

void BatchConversion::ShowConvertSummary(std::string_view as_FileText, std::int64_t al_StartMilliseconds) {
  if (flags_.error_counter <= 0) return;
  const std::int64_t seconds = (loop_.MonotonicMilliseconds() - al_StartMilliseconds) / 1000;
  const std::string line_break(kLineBreak);
  messages_.Show("File:" + std::string(as_FileText) + line_break + "Lines: " + std::to_string(flags_.line_counter) +
                 line_break + "Error(s):" + std::to_string(flags_.error_counter) + line_break +
                 "Time: " + std::to_string(seconds) + " secs");
}

}  // namespace corvane
