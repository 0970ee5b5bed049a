#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <functional>
#include <vector>

#include "data/logging_schedule.h"
#include "unit/data_world.h"

namespace corvane::test {
namespace {

/// One unit without correction factors, tables that make easy numbers, Kelvin and uncorrected moisture on.
struct ConversionWorld : DataWorld {
  ConversionWorld() {
    Write("moisture.lkp", "0,0\n4000,40\n");
    Write("salinity.lkp", "0,0\n1000,10\n");
    Write("salcorr.lkp", "0,0\n10,1\n");
    EXPECT_TRUE(lookups.Moisture.Initialise(Path("moisture.lkp")));
    EXPECT_TRUE(lookups.Salinity.Initialise(Path("salinity.lkp")));
    EXPECT_TRUE(lookups.Correction.Initialise(Path("salcorr.lkp")));
    form.Chk_Kelvin.SetTicked(true);
    form.Chk_Uncorrected.SetTicked(true);
    AddUnit(1);
    form.Lst_Units.SetCurrent(0);
  }
  bool Convert(const std::string& raw) {
    Write("1.epd", raw);
    return converter.ConvertToCalibrated(Path("1.epd"));
  }
  void LogAt(const char* start, const char* interval, bool average = false) {
    form.Opt_WhichReadings.SetOptionIndex(1);
    form.Txt_StartAt.SetText(start);
    form.Txt_Interval.SetText(interval);
    form.Opt_Average.SetOptionIndex(average ? 1 : 0);
    form.Txt_DateFormat.SetText("d h:mm");
  }
  [[nodiscard]] bool LogHas(const std::string& text) const {
    return Read("corvane.log").find(text) != std::string::npos;
  }
};

const std::string kHeader = "h,s,4,3\r\n";
const std::string kFirst = "2010/3/12 14:05,12500,29310,7,1512,903,29300\r\n";

struct FileCase {
  std::string name;
  std::vector<std::string> settings;  ///< "control=value"
  std::string raw;
  std::string expected;
  std::string counts;
};

void Replace(std::string& text, const std::string& part, const std::string& by) {
  const std::size_t at = text.find(part);
  if (at != std::string::npos) text.replace(at, part.size(), by);
}

/// Reads tests/data/conversion_cases.txt, which says how it is written.
std::vector<FileCase> ReadCases() {
  std::ifstream file(std::string(TEST_DATA_DIR) + "/conversion_cases.txt");
  std::vector<FileCase> cases;
  std::string* text = nullptr;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("=== ")) {
      cases.push_back({line.substr(4), {}, {}, {}, {}});
      text = nullptr;
    } else if (line.starts_with("--- lines")) {
      cases.back().counts = line.substr(4);
      text = nullptr;
    } else if (line.starts_with("--- ")) {
      text = line == "--- raw" ? &cases.back().raw : &cases.back().expected;
    } else if (text != nullptr) {
      Replace(line, "<NUL>", std::string(1, '\0'));
      Replace(line, "<LONG>", std::string(100'000, 'x'));
      *text += line.ends_with('~') ? line.substr(0, line.size() - 1) : line + "\r\n";
    } else if (!cases.empty() && !line.empty()) {
      cases.back().settings.push_back(line);
    }
  }
  return cases;
}

void Apply(ConversionWorld& world, FileCase& file) {
  for (const std::string& setting : file.settings) {
    const std::string name = setting.substr(0, setting.find('='));
    const std::string value = setting.substr(setting.find('=') + 1);
    Control* const control = world.form.Find(name);
    if (auto* const check = dynamic_cast<CheckBox*>(control)) check->SetTicked(value == "1");
    if (auto* const options = dynamic_cast<OptionGroup*>(control)) options->SetOptionIndex(std::stoi(value));
    if (auto* const field = dynamic_cast<TextField*>(control)) field->SetText(value);
    if (auto* const list = dynamic_cast<List*>(control)) list->SetCurrent(std::stoi(value));
    if (name == "Moisture") world.registry.Units[1].MoistureCorrection = std::stof(value);
    if (name == "Salinity") world.registry.Units[1].SalinityCorrection = std::stof(value);
    if (name == "LF") std::erase(file.raw, '\r');
  }
}

TEST(Conversion, WritesTheCalibratedFile) {
  std::vector<FileCase> cases = ReadCases();
  ASSERT_EQ(cases.size(), 20U);
  for (FileCase& file : cases) {
    SCOPED_TRACE(file.name);
    ConversionWorld world;
    Apply(world, file);
    EXPECT_TRUE(world.Convert(file.raw));
    EXPECT_EQ(world.Read("1.txt"), file.expected);
    EXPECT_EQ(
        "lines " + std::to_string(world.flags.line_counter) + " errors " + std::to_string(world.flags.error_counter),
        file.counts);
    EXPECT_FALSE(world.flags.converting);
    EXPECT_EQ(world.form.Lbl_Status.text(), "");
    EXPECT_EQ(world.form.Bar_Download.value(), 0);
  }
}

TEST(Conversion, AFailedTableGivesZero) {
  ConversionWorld world;
  EXPECT_FALSE(world.lookups.Moisture.Initialise(world.Path("none")));
  EXPECT_TRUE(world.Convert(kHeader + kFirst));
  EXPECT_TRUE(world.Read("1.txt").ends_with("14:05, 12.500, 20.10, 7, 0.00, 0.90, 9.030, 20.00\r\n"));
}

TEST(Conversion, LogsBadLinesTornLinesAndTheEnd) {
  ConversionWorld world;
  world.form.Chk_Trace[kTraceDecision].SetTicked(true);
  EXPECT_TRUE(world.Convert(kHeader + "a,b\r\n2010/13/12 1:00,1,2,3,4,5,6\r\n2010/3/1"));
  EXPECT_TRUE(world.LogHas("A-error: Wrong number of data items on line Actual:2 Expected: 7[13][10]a,b"));
  EXPECT_TRUE(world.LogHas("A-error: ConverToCalibrated - invalid date> 2010/13/12 1:00,1,2,3,4,5,6"));
  EXPECT_TRUE(world.LogHas("unterminated last line> 2010/3/1"));
  EXPECT_TRUE(world.LogHas("Finish 'ConvertToCalibrated' - closing Raw:3 calibrated: 4 OutputFile: 0 LogFile: 1"));
  EXPECT_TRUE(world.LogHas("Status: Convert: " + world.Path("1.epd")));
}

TEST(Conversion, AveragesMoreSamplesThan16BitsHold) {
  ConversionWorld world;
  world.LogAt("23:59", "24", true);
  std::string raw = "h,s,4,0\n";
  for (int i = 0; i < 40'000; ++i) raw += "2010/3/12 4:00,12000,29300,5\n";
  EXPECT_TRUE(world.Convert(raw + "2010/3/12 23:59,12000,29300,5\n"));
  EXPECT_TRUE(world.Read("1.txt").ends_with("]\r\n12 23:59, 12.000, 20.00, 5\r\n")) << world.Read("1.txt");
}

TEST(LoggingSchedule, ReadsIntervals) {
  const std::pair<const char*, std::int64_t> rows[] = {{"03:00", 10800}, {"0:30", 1800}, {"2", 7200},  {" 0.5 ", 1800},
                                                       {"0", 0},         {"-1", 0},      {"0:00", 0},  {"", 0},
                                                       {"3h", 0},        {"1e300", 0},   {"25:00", 0}, {"0.0001", 0}};
  for (const auto& [text, seconds] : rows) EXPECT_EQ(LoggingSchedule::Interval(text).value_or(0), seconds) << text;
}

struct RefusedCase {
  const char* name;
  std::function<void(ConversionWorld&)> prepare;
  bool result;
  std::string box;
};

const RefusedCase kRefused[] = {
    {"no raw file", [](ConversionWorld& world) { std::filesystem::remove(world.Path("1.epd")); }, true,
     "Cannot find: "},
    {"interval of zero", [](ConversionWorld& world) { world.LogAt("06:00", "0:00"); }, false,
     "\"0:00\" is no logging interval"},
    {"no start time", [](ConversionWorld& world) { world.LogAt("dawn", "1"); }, false, "\"dawn\" is no time of day"},
    {"same extension", [](ConversionWorld& world) { world.form.Txt_CalibratedFileExtension.SetText("epd"); }, false,
     "the same extension"},
    {"no place for the calibrated file",
     [](ConversionWorld& world) { world.form.Txt_CalibratedFileExtension.SetText("no/txt"); }, false,
     "1.no/txt.part: No such file or directory"},
    {"raw file is a folder",
     [](ConversionWorld& world) {
       std::filesystem::remove(world.Path("1.epd"));
       std::filesystem::create_directory(world.Path("1.epd"));
     },
     false, "1.epd: Is a directory"},
};

TEST(Conversion, ReportsWhatItCannotConvertAndKeepsTheOldFile) {
  for (const RefusedCase& row : kRefused) {
    SCOPED_TRACE(row.name);
    ConversionWorld world;
    world.Write("1.epd", kHeader + kFirst);
    world.Write("1.txt", "old");
    row.prepare(world);
    EXPECT_EQ(world.converter.ConvertToCalibrated(world.Path("1.epd")), row.result);
    EXPECT_EQ(world.Read("1.txt"), "old");
    EXPECT_EQ(world.flags.line_counter + world.flags.error_counter, 0);
    ASSERT_EQ(world.dialogs.boxes.size(), 1U);
    const std::string& text = world.dialogs.boxes[0].text;
    EXPECT_NE(text.find(row.box), std::string::npos) << text;
    EXPECT_NE(text.find(world.Path("1.epd")), std::string::npos) << text;
  }
}

/// Limits the size of files that this process writes, as a full disk would.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit limit{bytes, old_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit old_{};
  void (*handler_)(int) = nullptr;
};

std::string ManyReadings() {
  std::string raw = kHeader;
  for (int i = 0; i < 5000; ++i) raw += kFirst;
  return raw;
}

TEST(Conversion, AFullDiskAndCloseEndItAndLeaveTheOldFile) {
  for (const std::string end : {"full disk", "close"}) {
    SCOPED_TRACE(end);
    ConversionWorld world;
    world.Write("1.epd", ManyReadings());
    world.Write("1.txt", "old");
    if (end == "close") world.loop.Post([&] { world.flags.closing = true; });
    {
      const FileSizeLimit limit(end == "full disk" ? 100'000 : RLIM_INFINITY);
      EXPECT_FALSE(world.converter.ConvertToCalibrated(world.Path("1.epd")));
    }
    EXPECT_LT(world.flags.line_counter, 5000);
    EXPECT_EQ(world.Read("1.txt"), "old");
    EXPECT_FALSE(world.Exists("1.txt.part"));
    const std::vector<std::string> boxes = world.dialogs.Texts();
    EXPECT_EQ(boxes.size(), end == "full disk" ? 1U : 0U);
    if (!boxes.empty()) {
      EXPECT_NE(boxes[0].find("1.txt.part: "), std::string::npos) << boxes[0];
    }
  }
}

TEST(Conversion, ACancelLetsTheFileFinish) {
  ConversionWorld world;
  world.loop.Post([&] { world.link.UserCancel = true; });
  EXPECT_TRUE(world.Convert(ManyReadings()));
  EXPECT_TRUE(world.link.UserCancel);
  EXPECT_EQ(world.flags.line_counter, 5000);
}

TEST(Conversion, ShowsProgressInAboutThirtySteps) {
  ConversionWorld world;
  world.bars.Download.SetParent(world.form.Frm_Main);
  world.form.Frm_Main.SetMinimised(true);
  int steps = 0;
  std::string title;
  world.form.Bar_Download.on_change = [&] {
    ++steps;
    title = world.form.Frm_Main.title();
  };
  EXPECT_TRUE(world.Convert(ManyReadings()));
  EXPECT_EQ(steps, 23);
  EXPECT_EQ(title, "73%-Convert: " + world.Path("1.epd"));
}

}  // namespace
}  // namespace corvane::test
