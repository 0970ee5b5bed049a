#include "data/calibrated_converter.h"

#include <algorithm>
#include <cmath>

#include "base/file_numbers.h"
#include "base/files.h"
#include "base/format.h"
#include "base/line_reader.h"
#include "base/paths.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "data/poll_pace.h"
#include "data/raw_line.h"
#include "ui/mouse_pointer.h"

namespace corvane {
namespace {

enum WhichReadings : int { kAllReadings = 0, kLogAt = 1 };
constexpr int kAverageBetweenLogs = 1;
constexpr double kBytesPerField = 5;  // about, for the progress bar

/// The calibrated file of a raw file; never the raw file itself.
std::string CalibratedNameOf(const std::string& as_RawFile, const std::string& as_Extension) {
  std::string name = WithExtension(as_RawFile, as_Extension);
  if (name == as_RawFile) {
    throw RunTimeError("Raw and calibrated files have the same extension; change one of the two in the settings");
  }
  return name;
}

}  // namespace

struct CalibratedConverter::Run {
  Run(const std::string& as_Calibrated, const CalibrationSettings& av_Settings, Lookups& av_Lookups, EventLoop& av_Loop)
      : Output(as_Calibrated), Rows(av_Settings, av_Lookups), Pace(av_Loop) {}

  LineReader Raw;
  ReplacementFile Output;
  Calibration Rows;
  PollPace Pace;
  std::optional<LoggingSchedule> Schedule;  ///< none: every reading is wanted
  std::int64_t RawSize = 0;
  std::int64_t Lines = 0;      ///< of any kind
  std::int64_t TornLines = 0;  ///< without a line end: the last one, or none
  std::int64_t DataLines = 0;  ///< of the right width
  bool DateSeen = false;
  bool HeaderWritten = false;
};

bool CalibratedConverter::ConvertToCalibrated(const std::string& as_RawFile) {
  const BusyPointer busy(p_.form.Frm_Main);
  readings_.reset();
  p_.trace.Status("Convert: " + as_RawFile);
  bool finished = true;
  const auto raw_info = ExamineFile(as_RawFile);
  if (raw_info) {
    try {
      finished = ConvertFile(as_RawFile, raw_info->size);
    } catch (const RunTimeError& error) {
      finished = false;
      p_.messages.Show("Cannot convert: " + as_RawFile + std::string(kLineBreak) + error.what(), "Cannot convert");
    }
  } else {
    p_.messages.Show("Cannot find: " + as_RawFile, "Cannot find");
  }
  TraceFinish(raw_info.has_value());
  p_.bars.Download.Clear();
  p_.form.Lbl_Status.SetText("");
  return finished;
}

bool CalibratedConverter::ConvertFile(const std::string& as_RawFile, std::int64_t al_RawSize) {
  Run run(CalibratedNameOf(as_RawFile, p_.form.Txt_CalibratedFileExtension.text()), ReadSettings(), p_.lookups,
          p_.loop);
  run.Schedule = ReadSchedule();
  run.RawSize = al_RawSize;
  Require(run.Raw.Open(as_RawFile));
  Require(run.Output.Open());
  p_.bars.Download.SetProcessText("Convert: " + as_RawFile);
  std::string_view line;
  while (run.Raw.Next(line)) {
    TakeLine(run, line);
    Require(run.Output.FlushWhenFull());
    if (run.Pace.Step() && p_.flags.closing) return false;
  }
  Require(run.Raw.status());
  Require(run.Output.Commit());
  readings_ = std::max<std::int64_t>(run.Lines - run.TornLines - 1, 0);
  return true;
}

CalibrationSettings CalibratedConverter::ReadSettings() const {
  CalibrationSettings settings;
  settings.Average = p_.form.Opt_Average.GetOptionIndex() == kAverageBetweenLogs;
  settings.Factors.kelvin = p_.form.Chk_Kelvin.ticked();
  settings.Uncorrected = p_.form.Chk_Uncorrected.ticked();
  settings.DateFormat = p_.form.Txt_DateFormat.text();
  const std::int64_t unit = p_.form.Lst_Units.current() + 1;
  if (p_.registry.Units.Has(unit)) {
    settings.Factors.moisture = CalibrationFactors::Held(p_.registry.Units[unit].MoistureCorrection);
    settings.Factors.salinity = CalibrationFactors::Held(p_.registry.Units[unit].SalinityCorrection);
  }
  return settings;
}

std::optional<LoggingSchedule> CalibratedConverter::ReadSchedule() const {
  if (p_.form.Opt_WhichReadings.GetOptionIndex() != kLogAt) return std::nullopt;
  const auto start_at = ParseTimeOfDay(Trim(p_.form.Txt_StartAt.text()));
  if (!start_at) throw RunTimeError("\"" + p_.form.Txt_StartAt.text() + "\" is no time of day to start logging at");
  const auto interval = LoggingSchedule::Interval(p_.form.Txt_Interval.text());
  if (!interval) throw RunTimeError("\"" + p_.form.Txt_Interval.text() + "\" is no logging interval above zero");
  return LoggingSchedule(*start_at, *interval);
}

void CalibratedConverter::TakeLine(Run& av_Run, std::string_view as_Line) {
  if (av_Run.Lines++ == 0) {
    TakeHeader(av_Run, as_Line);
  } else if (!av_Run.Raw.terminated()) {
    ++av_Run.TornLines;
    p_.trace.TraceDecision("ConvertToCalibrated - unterminated last line> " + std::string(as_Line));
  } else if (const std::size_t fields = av_Run.Rows.TakeLine(as_Line); fields != av_Run.Rows.Expected()) {
    ++p_.flags.error_counter;
    p_.trace.AErrorReport("Wrong number of data items on line Actual:" + std::to_string(fields) + " Expected: " +
                          std::to_string(av_Run.Rows.Expected()) + std::string(kLineBreak) + std::string(as_Line));
  } else {
    TakeReading(av_Run, as_Line);
  }
}

void CalibratedConverter::TakeHeader(Run& av_Run, std::string_view as_Line) {
  av_Run.Rows.TakeHeader(Split(as_Line, ','));
  const auto bytes_per_line = static_cast<double>(av_Run.Rows.Expected()) * kBytesPerField;
  const double lines = bytes_per_line > 0 ? static_cast<double>(av_Run.RawSize) / bytes_per_line : 0;
  p_.bars.Download.SetDoSkip(true);
  p_.bars.Download.Initialise(std::llround(lines));
}

void CalibratedConverter::TakeReading(Run& av_Run, std::string_view as_Line) {
  ++p_.flags.line_counter;
  p_.bars.Download.SetValue(++av_Run.DataLines);
  const std::optional<DateTime> when = ParseReadingDate(av_Run.Rows.DateText());
  if (!when || as_Line.find('\0') != std::string_view::npos) {
    ++p_.flags.error_counter;
    p_.trace.AErrorReport("ConverToCalibrated - invalid date> " + std::string(as_Line));
    return;
  }
  if (!av_Run.DateSeen && av_Run.Schedule) av_Run.Schedule->SetUp(*when);
  av_Run.DateSeen = true;
  av_Run.Rows.AddReading();
  if (av_Run.Schedule && !av_Run.Schedule->IsLoggingTime(*when)) return;
  std::string& out = av_Run.Output.buffer();
  if (!av_Run.HeaderWritten) av_Run.Rows.AppendHeader(out);
  av_Run.HeaderWritten = true;
  av_Run.Rows.AppendRow(out, *when);
}

void CalibratedConverter::TraceFinish(bool ab_Opened) {
  p_.trace.TraceDecision(
      "Finish 'ConvertToCalibrated' - closing Raw:" + std::to_string(ab_Opened ? kRawFile : kNoFile) +
      " calibrated: " + std::to_string(ab_Opened ? kCalibratedFile : kNoFile) +
      " OutputFile: " + std::to_string(p_.download.Output.IsOpen() ? kOutputFile : kNoFile) +
      " LogFile: " + std::to_string(p_.trace.LogFileNumber()));
}

}  // namespace corvane
