#include "data/hex_conversion.h"

#include <charconv>
#include <optional>
#include <system_error>

#include "base/files.h"
#include "base/line_reader.h"
#include "base/paths.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "data/poll_pace.h"
#include "ui/mouse_pointer.h"

namespace corvane {
namespace {

constexpr std::size_t kMostFieldsOfNoRecord = 11;
constexpr std::int64_t kFirstHighByteFirst = 17;
constexpr std::int64_t kFirstSensorField = 18;
constexpr std::int64_t kFieldsPerSensor = 6;
constexpr std::int32_t kBytesBeforeSensors = 14;
constexpr std::int32_t kLargestByte = 0xFF;

/// What stands before a field of a row, and the field.
struct Column {
  std::string_view before;
  std::int64_t field;
  std::int16_t bytes;
  std::int16_t width;
};
constexpr Column kFixedColumns[] = {
    {",", 1, 1, 2}, {",20", 2, 1, 2}, {"/", 3, 1, 2},  {"/", 4, 1, 2},  {" ", 5, 1, 2},  {":", 6, 1, 2},
    {",", 7, 2, 5}, {",", 9, 2, 5},   {",", 11, 2, 5}, {",", 13, 2, 5}, {",", 15, 2, 5},
};

std::int32_t SensorsOf(const HexRecord& av_Record) {
  const std::int32_t length = av_Record.HexByte(1);
  if (length < 0 || length > kLargestByte) throw RunTimeError("its record length is no byte");
  return (length - kBytesBeforeSensors) / static_cast<std::int32_t>(kFieldsPerSensor);
}

std::string HeaderOf(std::int32_t al_Sensors) {
  std::string header = "addr , rl, yy, mm, dd, hh, mm, batt, temp, Count, AN1, AN2, cs";
  for (std::int32_t sensor = 1; sensor <= al_Sensors; ++sensor) {
    const std::string number = std::to_string(sensor);
    header += ",  m" + number + ", s" + number + ", t" + number;
  }
  // Intended: "cs" stands in the header twice; programs that read these files count its columns.
  return header + ",  cs" + std::string(kLineBreak);
}

std::string RowOf(const HexRecord& av_Record, std::int32_t al_Sensors) {
  std::string row(av_Record.Text(0));
  for (const Column& column : kFixedColumns) {
    row += column.before;
    row += av_Record.HexField(column.field, column.bytes, column.width);
  }
  for (std::int32_t sensor = 0; sensor < al_Sensors; ++sensor) {
    const std::int64_t moisture = kFirstSensorField + kFieldsPerSensor * sensor;
    row += ", " + av_Record.HexField(moisture, 2, 5);
    for (const std::int64_t field : {moisture + 2, moisture + 4}) {
      if (field + 1 < av_Record.FieldCount()) row += "," + av_Record.HexField(field, 2, 5);
    }
  }
  row += ", ";
  row += av_Record.Text(av_Record.FieldCount() - 1);
  row += kLineBreak;
  return row;
}

}  // namespace

struct HexConversion::Run {
  Run(const std::string& as_OutputFile, EventLoop& av_Loop) : Output(as_OutputFile), Pace(av_Loop) {}

  LineReader Input;
  ReplacementFile Output;
  HexRecord Record;
  std::optional<std::int32_t> Sensors;  ///< of the first converted line
  std::int64_t Lines = 0;
  std::int64_t Rows = 0;
  std::string Damage;  ///< why the conversion ended early
  PollPace Pace;
};

void HexRecord::SetLine(std::string_view as_Line) {
  SplitInto(as_Line, ',', fields_);
}

bool HexRecord::IsRecord() const {
  return fields_.size() > kMostFieldsOfNoRecord;
}

std::string_view HexRecord::Text(std::int64_t al_Index) const {
  if (al_Index < 0 || al_Index >= FieldCount()) {
    throw RunTimeError("field " + std::to_string(al_Index) + " is missing");
  }
  return fields_[static_cast<std::size_t>(al_Index)];
}

std::int32_t HexRecord::HexByte(std::int64_t al_Index) const {
  const std::string_view text = Trim(Text(al_Index));
  const char* const end = text.data() + text.size();
  std::int32_t number = 0;
  const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
  return error == std::errc{} && stop == end && number >= 0 ? number : 0;
}

std::string HexRecord::HexField(std::int64_t al_Index, std::int16_t ai_ByteCount, std::int16_t ai_Width) const {
  std::int64_t value = HexByte(al_Index);
  if (ai_ByteCount == 2) {
    const std::int64_t second = HexByte(al_Index + 1);
    // Intended: the unit stores the two halves of its record with opposite byte orders.
    value = al_Index < kFirstHighByteFirst ? second * 256 + value : value * 256 + second;
  }
  return ZeroPadded(value, ai_Width);
}

bool HexConversion::ConvertHexToRaw(const std::string& as_InputFile) {
  try {
    const std::string output = WithExtension(as_InputFile, "tsc");
    if (output == as_InputFile) throw RunTimeError(output + " is a converted file already, choose a hex dump");
    if (!p_.messages.Confirm("Convert: " + as_InputFile + std::string(kLineBreak) + "To: " + output)) return false;
    const BusyPointer busy(p_.form.Frm_Main);
    p_.trace.Status("Convert: " + as_InputFile);
    return ConvertFile(as_InputFile, output);
  } catch (const RunTimeError& error) {
    p_.trace.ErrorReport("ConvertHexToRaw", error.what());
    return false;
  }
}

bool HexConversion::ConvertFile(const std::string& as_InputFile, const std::string& as_OutputFile) {
  Run run(as_OutputFile, p_.loop);
  Require(run.Input.Open(as_InputFile));
  Require(run.Output.Open());
  std::string_view line;
  while (run.Damage.empty() && run.Input.Next(line)) {
    TakeLine(run, line);
    Require(run.Output.FlushWhenFull());
    if (run.Pace.Step() && Cancelled(p_.link, p_.flags)) {
      p_.trace.Status("Cancelled: " + as_OutputFile + " is not written");
      return false;
    }
  }
  Require(run.Input.status());
  if (run.Rows == 0) {
    throw RunTimeError(as_InputFile + (run.Damage.empty() ? " holds no record of a hex dump" : ": " + run.Damage) +
                       ". Nothing is written");
  }
  Require(run.Output.Commit());
  p_.trace.Status("Converted: " + std::to_string(run.Rows) + " records to " + as_OutputFile);
  if (run.Damage.empty()) return true;
  throw RunTimeError(as_InputFile + ": " + run.Damage +
                     ". The conversion ended there; records written: " + std::to_string(run.Rows));
}

void HexConversion::TakeLine(Run& av_Run, std::string_view as_Line) {
  ++av_Run.Lines;
  av_Run.Record.SetLine(as_Line);
  if (!av_Run.Record.IsRecord()) return;
  try {
    const std::int32_t sensors = av_Run.Sensors ? *av_Run.Sensors : SensorsOf(av_Run.Record);
    const std::string row = RowOf(av_Run.Record, sensors);
    if (!av_Run.Sensors) av_Run.Output.buffer() += HeaderOf(sensors);
    av_Run.Sensors = sensors;
    av_Run.Output.buffer() += row;
    ++av_Run.Rows;
  } catch (const RunTimeError& error) {
    // Intended: a missing field ends the conversion; what follows it in a cut dump cannot be trusted.
    av_Run.Damage = "line " + std::to_string(av_Run.Lines) + ": " + error.what();
  }
}

}  // namespace corvane
