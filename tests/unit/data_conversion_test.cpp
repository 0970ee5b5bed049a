#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <vector>

#include "data/logging_schedule.h"
#include "support/small_disk.h"
#include "unit/data_world.h"

namespace corvane::test {
namespace {

using namespace std::string_literals;

/// One unit without correction factors, tables that make easy numbers, Kelvin and uncorrected moisture on.
struct ConversionWorld : DataWorld {
  ConversionWorld() {
    EXPECT_TRUE(lookups.Moisture.Initialise(Write("moisture.lkp", "0,0\n4000,40\n")));
    EXPECT_TRUE(lookups.Salinity.Initialise(Write("salinity.lkp", "0,0\n1000,10\n")));
    EXPECT_TRUE(lookups.Correction.Initialise(Write("salcorr.lkp", "0,0\n10,1\n")));
    form.Chk_Kelvin.SetTicked(true);
    form.Chk_Uncorrected.SetTicked(true);
    AddUnit(1);
    form.Lst_Units.SetCurrent(0);
  }
  bool Convert(const std::string& raw) { return converter.ConvertToCalibrated(Write("1.epd", raw)); }
  /// Applies one of these: "<control>=<value>", "Moisture=<factor>", "Salinity=<factor>".
  void Apply(const std::string& setting) {
    const std::string name = setting.substr(0, setting.find('='));
    const std::string value = setting.substr(setting.find('=') + 1);
    Control* const control = form.Find(name);
    if (auto* const check = dynamic_cast<CheckBox*>(control)) check->SetTicked(value == "1");
    if (auto* const options = dynamic_cast<OptionGroup*>(control)) options->SetOptionIndex(std::stoi(value));
    if (auto* const field = dynamic_cast<TextField*>(control)) field->SetText(value);
    if (auto* const list = dynamic_cast<List*>(control)) list->SetCurrent(std::stoi(value));
    if (name == "Moisture") registry.Units[1].MoistureCorrection = std::stof(value);
    if (name == "Salinity") registry.Units[1].SalinityCorrection = std::stof(value);
  }
};

const std::string kHeader = "h,s,4,3\r\n";
const std::string kFirst = "2010/3/12 14:05,12500,29310,7,1512,903,29300\r\n";

struct FileCase {
  std::string name;
  std::vector<std::string> settings;
  std::string raw;
  std::string expected;
  std::string counts;
};

/// Reads tests/data/conversion_cases.txt, which says how it is written.
std::vector<FileCase> ReadCases() {
  std::ifstream file(std::string(TEST_DATA_DIR) + "/conversion_cases.txt");
  std::vector<FileCase> cases;
  std::string* text = nullptr;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("=== ")) {
      cases.push_back({line.substr(4), {}, {}, {}, {}});
      text = nullptr;
    } else if (line.starts_with("--- ")) {
      if (line.starts_with("--- lines")) cases.back().counts = line.substr(4);
      text = line == "--- raw" ? &cases.back().raw : line == "--- expected" ? &cases.back().expected : nullptr;
    } else if (text != nullptr) {
      if (const std::size_t at = line.find("<NUL>"); at != std::string::npos) line.replace(at, 5, 1, '\0');
      if (line == "<LONG>") line.assign(100'000, 'x');
      *text += line.ends_with('~') ? line.substr(0, line.size() - 1) : line + "\r\n";
    } else if (!cases.empty() && !line.empty()) {
      cases.back().settings.push_back(line);
    }
  }
  return cases;
}

TEST(Conversion, WritesTheCalibratedFile) {
  std::vector<FileCase> cases = ReadCases();
  ASSERT_EQ(cases.size(), 20U);
  for (FileCase& file : cases) {
    SCOPED_TRACE(file.name);
    ConversionWorld world;
    for (const std::string& setting : file.settings) world.Apply(setting);
    if (file.name == "LF line ends") std::erase(file.raw, '\r');
    EXPECT_TRUE(world.Convert(file.raw));
    EXPECT_EQ(world.Read("1.txt"), file.expected);
    const auto& [lines, errors] = std::pair(world.flags.line_counter, world.flags.error_counter);
    EXPECT_EQ("lines " + std::to_string(lines) + " errors " + std::to_string(errors), file.counts);
    EXPECT_EQ(world.form.Lbl_Status.text(), "");
    EXPECT_EQ(world.form.Bar_Download.value(), 0);
  }
}

TEST(Conversion, AFailedTableGivesZero) {
  ConversionWorld world;
  EXPECT_FALSE(world.lookups.Moisture.Initialise(world.Name("none")));
  EXPECT_TRUE(world.Convert(kHeader + kFirst));
  EXPECT_TRUE(world.Read("1.txt").ends_with("14:05, 12.500, 20.10, 7, 0.00, 0.90, 9.030, 20.00\r\n"));
}

TEST(Conversion, LogsBadLinesTornLinesAndTheEnd) {
  ConversionWorld world;
  world.form.Chk_Trace[kTraceDecision].SetTicked(true);
  EXPECT_TRUE(world.Convert(kHeader + "a,b\r\n2010/13/12 1:00,1,2,3,4,5,6\r\n2010/3/1"));
  const std::string log = world.Read("corvane.log");
  for (const std::string& part :
       {"A-error: Wrong number of data items on line Actual:2 Expected: 7[13][10]a,b"s,
        "A-error: ConverToCalibrated - invalid date> 2010/13/12 1:00,1,2,3,4,5,6"s, "unterminated last line> 2010/3/1"s,
        "Finish 'ConvertToCalibrated' - closing Raw:3 calibrated: 4 OutputFile: 0 LogFile: 1"s,
        "Status: Convert: " + world.Name("1.epd")}) {
    EXPECT_NE(log.find(part), std::string::npos) << part;
  }
}

TEST(Conversion, AveragesMoreSamplesThan16BitsHold) {
  ConversionWorld world;
  for (const char* const setting : {"Opt_WhichReadings=1", "Opt_Average=1", "Txt_StartAt=23:59", "Txt_Interval=24"}) {
    world.Apply(setting);
  }
  std::string raw = "h,s,4,0\n";
  for (int i = 0; i < 40'000; ++i) raw += "2010/3/12 4:00,12000,29300,5\n";
  EXPECT_TRUE(world.Convert(raw + "2010/3/12 23:59,12000,29300,5\n"));
  EXPECT_TRUE(world.Read("1.txt").ends_with("]\r\n12 Mar 2010 23:59, 12.000, 20.00, 5\r\n")) << world.Read("1.txt");
}

TEST(LoggingSchedule, ReadsIntervals) {
  const std::pair<const char*, std::int64_t> rows[] = {{"03:00", 10800}, {"2", 7200},  {" 0.5 ", 1800}, {"0", 0},
                                                       {"-1", 0},        {"0:00", 0},  {"3h", 0},       {"1e300", 0},
                                                       {"25:00", 0},     {"0.0001", 0}};
  for (const auto& [text, seconds] : rows) EXPECT_EQ(LoggingSchedule::Interval(text).value_or(0), seconds) << text;
}

TEST(Conversion, ReportsWhatItCannotConvertAndKeepsTheOldFile) {
  const std::pair<std::string, std::string> rows[] = {
      {"Txt_Interval=0:00", "\"0:00\" is no logging interval"},
      {"Txt_StartAt=dawn", "\"dawn\" is no time of day"},
      {"Txt_CalibratedFileExtension=epd", "the same extension"},
      {"Txt_CalibratedFileExtension=no/txt", "1.no/txt.part: No such file or directory"},
      {"no raw file", "Cannot find: "},
      {"raw file is a folder", "1.epd: Is a directory"},
  };
  for (const auto& [setting, part] : rows) {
    SCOPED_TRACE(setting);
    ConversionWorld world;
    world.Write("1.txt", "old");
    if (setting == "raw file is a folder") std::filesystem::create_directory(world.Name("1.epd"));
    if (setting.starts_with("Txt")) world.Write("1.epd", kHeader + kFirst);
    for (const std::string& each : {"Opt_WhichReadings=1"s, "Txt_StartAt=6:00"s, "Txt_Interval=3"s, setting})
      world.Apply(each);
    EXPECT_EQ(world.converter.ConvertToCalibrated(world.Name("1.epd")), setting == "no raw file");
    EXPECT_EQ(world.Read("1.txt"), "old");
    ASSERT_EQ(world.dialogs.boxes.size(), 1U);
    const std::string& text = world.dialogs.boxes[0].text;
    EXPECT_NE(text.find(part), std::string::npos) << text;
    EXPECT_NE(text.find(world.Name("1.epd")), std::string::npos) << text;
  }
}

std::string ManyReadings() {
  std::string raw = kHeader;
  for (int i = 0; i < 5000; ++i) raw += kFirst;
  return raw;
}

TEST(Conversion, AFullDiskAndCloseEndItAndLeaveTheOldFileACancelDoesNot) {
  for (const std::string end : {"full disk", "close", "cancel"}) {
    SCOPED_TRACE(end);
    ConversionWorld world;
    world.Write("1.txt", "old");
    world.Write("1.epd", ManyReadings());
    world.loop.Post([&] { (end == "close" ? world.flags.closing : world.link.UserCancel) = end != "full disk"; });
    {
      const SmallDisk disk(end == "full disk" ? 100'000 : RLIM_INFINITY);
      EXPECT_EQ(world.converter.ConvertToCalibrated(world.Name("1.epd")), end == "cancel");
    }
    EXPECT_EQ(world.flags.line_counter == 5000, end == "cancel");
    EXPECT_EQ(world.Read("1.txt") == "old", end != "cancel");
    EXPECT_FALSE(std::filesystem::exists(world.Name("1.txt.part")));
    ASSERT_EQ(world.dialogs.boxes.size(), end == "full disk" ? 1U : 0U);
    for (const std::string& text : world.dialogs.Texts())
      EXPECT_NE(text.find("1.txt.part: "), std::string::npos) << text;
  }
}

TEST(Conversion, ShowsProgressInAboutThirtySteps) {
  ConversionWorld world;
  int steps = 0;
  world.form.Bar_Download.on_change = [&] { ++steps; };
  EXPECT_TRUE(world.Convert(ManyReadings()));
  EXPECT_EQ(steps, 23);
}

}  // namespace
}  // namespace corvane::test
