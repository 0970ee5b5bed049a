#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
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

const std::string kHeader = "$V2,00007,4,3,2,2010/3/12 00:00,12500*00\r\n";
const std::string kFirst = "2010/3/12 14:05,12500,29310,7,1512,903,29300\r\n";
const std::string kColumns = "Date, Battery, Ambient, Count, UM1, M1, Sal1, Temp1 [Mois_Correc=0 Sal_Correc=0]\r\n";
const std::string kFirstRow = "12 Mar 2010 14:05, 12.500, 20.10, 7, 15.12, 16.02, 9.030, 20.00\r\n";

struct FileCase {
  const char* name;
  std::string raw;
  std::function<void(ConversionWorld&)> prepare;
  std::string expected;
  std::int64_t lines;
  std::int64_t errors;
};

const FileCase kFiles[] = {
    {"one reading", kHeader + kFirst, nullptr, kColumns + kFirstRow, 1, 0},
    {"LF line ends", "h,s,4,3\n2010/3/12 14:05,12500,29310,7,1512,903,29300\n", nullptr, kColumns + kFirstRow, 1, 0},
    {"header only", kHeader, nullptr, "", 0, 0},
    {"empty file", "", nullptr, "", 0, 0},
    {"numbers begin their field, no number is 0", kHeader + "2010/3/12 14:05,12500mV,29310 C,,1512.0x,9.03e2,29300\r\n",
     nullptr, kColumns + "12 Mar 2010 14:05, 12.500, 20.10, 0, 15.12, 16.02, 9.030, 20.00\r\n", 1, 0},
    {"no Kelvin, corrected moisture only, two extra channels, two sensors",
     "h,s,6,6\r\n2010/3/12 14:05,12500,2310,7,1500,2500,1512,903,2300,4000,0,2100\r\n",
     [](ConversionWorld& world) {
       world.form.Chk_Kelvin.SetTicked(false);
       world.form.Chk_Uncorrected.SetTicked(false);
       world.form.Lst_Units.SetCurrent(-1);
     },
     "Date, Battery, Ambient, Count, AN_0, AN_1, M1, Sal1, Temp1, M2, Sal2, Temp2 [Mois_Correc=0 Sal_Correc=0]\r\n"
     "12 Mar 2010 14:05, 12.500, 3.10, 7, 1.500, 2.500, 16.02, 9.030, 3.00, 40.00, 0.000, 1.00\r\n",
     1, 0},
    {"salinity factor used, moisture factor out of range", kHeader + "2010/3/12 14:05,12500,29310,7,1512,903,29500\r\n",
     [](ConversionWorld& world) {
       world.registry.Units[1].MoistureCorrection = 60;
       world.registry.Units[1].SalinityCorrection = 12.5F;
     },
     "Date, Battery, Ambient, Count, UM1, M1, Sal1, Temp1 [Mois_Correc=0 Sal_Correc=12.5]\r\n"
     "12 Mar 2010 14:05, 12.500, 20.10, 7, 15.12, 16.00, 8.780, 22.00\r\n",
     1, 0},
    {"both factors at the reference temperature", kHeader + kFirst,
     [](ConversionWorld& world) {
       world.registry.Units[1].MoistureCorrection = 50;
       world.registry.Units[1].SalinityCorrection = 50;
     },
     "Date, Battery, Ambient, Count, UM1, M1, Sal1, Temp1 [Mois_Correc=50 Sal_Correc=50]\r\n" + kFirstRow, 1, 0},
    {"lookups apply though not wished, a failed one gives 0", kHeader + kFirst,
     [](ConversionWorld& world) {
       world.form.Chk_UseLookup.SetTicked(false);
       EXPECT_FALSE(world.lookups.Moisture.Initialise(world.Path("none")));
     },
     kColumns + "12 Mar 2010 14:05, 12.500, 20.10, 7, 0.00, 0.90, 9.030, 20.00\r\n", 1, 0},
    {"bad lines are counted, the rest is converted",
     kHeader + "2010/3/12 14:05,1,2\r\n\r\n2010/3/12 24:05,1,2,3,4,5,6\r\n2010/3/12 14:04,1,2,3,4,5," +
         std::string(1, '\0') + "\r\n" + std::string(100000, 'x') + "\r\n" + kFirst,
     nullptr, kColumns + kFirstRow, 3, 5},
    {"a last line without its end is no reading", kHeader + kFirst + "2010/3/12 14:20,12500,29310,7,1512,903,293",
     nullptr, kColumns + kFirstRow, 1, 0},
    {"header without numbers", "2010/3/12 14:05,x,y,z\r\n" + kFirst, nullptr, "", 0, 1},
    {"header with huge numbers", "h,s,2000000000,2000000000\r\n" + kFirst, nullptr, "", 0, 1},
    {"header with numbers below 0", "h,s,-2,9\r\n" + kFirst, nullptr, "", 0, 1},
    {"header with too few fixed items", "h,s,1,0\r\n2010/3/12 14:05\r\n", nullptr,
     "Date, Battery, Ambient, Count [Mois_Correc=0 Sal_Correc=0]\r\n12 Mar 2010 14:05, 0.000, -273.00, 0\r\n", 1, 0},
};

TEST(Conversion, WritesTheCalibratedFile) {
  for (const FileCase& file : kFiles) {
    SCOPED_TRACE(file.name);
    ConversionWorld world;
    if (file.prepare) file.prepare(world);
    EXPECT_TRUE(world.Convert(file.raw));
    EXPECT_EQ(world.Read("1.txt"), file.expected);
    EXPECT_EQ(world.flags.line_counter, file.lines);
    EXPECT_EQ(world.flags.error_counter, file.errors);
    EXPECT_FALSE(world.flags.converting);
    EXPECT_EQ(world.form.Lbl_Status.text() + world.form.Frm_Main.title(), "Corvane");
    EXPECT_EQ(world.form.Bar_Download.value(), 0);
  }
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

/// A raw file of one-sensor readings at these times of 12 and 13 March; the count is the position from 1.
std::string RawAt(const std::vector<std::string>& times) {
  std::string raw = kHeader;
  int count = 0;
  for (const std::string& time : times) {
    raw += "2010/3/" + time + ",12500,29310," + std::to_string(++count) + ",0,0,29300\r\n";
  }
  return raw;
}

struct ScheduleCase {
  const char* name;
  const char* start;
  const char* interval;
  std::vector<std::string> readings;
  std::vector<std::string> expected;
};

const ScheduleCase kSchedules[] = {
    {"first at or after each logging time",
     "06:00",
     "03:00",
     {"12 4:30", "12 5:30", "12 6:30", "12 7:30", "12 8:30", "12 9:30"},
     {"12 6:30", "12 9:30"}},
    {"a reading on the grid is on it",
     "06:00",
     "3",
     {"12 3:00", "12 6:00", "12 8:59", "12 9:00"},
     {"12 3:00", "12 6:00", "12 9:00"}},
    {"half hours, start in the evening before",
     "23:15",
     "0:30",
     {"12 0:10", "12 0:15", "12 0:44", "12 0:45", "13 0:15"},
     {"12 0:15", "12 0:45", "13 0:15"}},
    {"catching up after a gap",
     "00:00",
     "1",
     {"12 0:00", "12 3:30", "12 3:31", "12 3:32", "12 3:33", "12 3:59", "12 4:00"},
     {"12 0:00", "12 3:30", "12 3:31", "12 3:32", "12 4:00"}},
    {"once a day", "06:00", "24", {"12 7:00", "13 5:59", "13 6:00"}, {"13 6:00"}},
};

TEST(Conversion, KeepsTheReadingsAtLoggingTimes) {
  for (const ScheduleCase& row : kSchedules) {
    SCOPED_TRACE(row.name);
    ConversionWorld world;
    world.LogAt(row.start, row.interval);
    EXPECT_TRUE(world.Convert(RawAt(row.readings)));
    const std::string text = world.Read("1.txt");
    std::vector<std::string> dates;
    for (std::size_t end = text.find('\n'); end + 1 < text.size(); end = text.find('\n', end + 1)) {
      dates.push_back(text.substr(end + 1, text.find(',', end) - end - 1));
    }
    EXPECT_EQ(dates, row.expected);
  }
}

TEST(Conversion, AveragesBetweenLoggingTimes) {
  ConversionWorld world;
  world.LogAt("06:00", "3", true);
  EXPECT_TRUE(
      world.Convert("h,s,4,3\n2010/3/12 4:00,10000,29310,10,100,10,29200\n2010/3/12 5:00,11000,29310,20,200,20,29300\n"
                    "2010/3/12 6:00,12000,29310,30,300,60,29400\n2010/3/12 9:00,9000,29310,40,400,40,29300\n"));
  EXPECT_EQ(world.Read("1.txt"), kColumns +
                                     "12 6:00, 11.000, 20.10, 20, 2.00, 2.03, 0.300, 20.00\r\n"
                                     "12 9:00, 9.000, 20.10, 40, 4.00, 4.04, 0.400, 20.00\r\n");
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

TEST(Conversion, AFullDiskLeavesTheOldFile) {
  ConversionWorld world;
  world.Write("1.epd", ManyReadings());
  world.Write("1.txt", "old");
  {
    const FileSizeLimit limit(100'000);
    EXPECT_FALSE(world.converter.ConvertToCalibrated(world.Path("1.epd")));
  }
  EXPECT_EQ(world.Read("1.txt"), "old");
  EXPECT_FALSE(world.Exists("1.txt.part"));
  ASSERT_EQ(world.dialogs.boxes.size(), 1U);
  EXPECT_NE(world.dialogs.boxes[0].text.find("1.txt.part: "), std::string::npos) << world.dialogs.boxes[0].text;
}

TEST(Conversion, CancelAndCloseEndItAndLeaveTheOldFile) {
  for (const bool close : {false, true}) {
    ConversionWorld world;
    world.Write("1.txt", "old");
    world.loop.Post([&world, close] { (close ? world.flags.closing : world.link.UserCancel) = true; });
    EXPECT_FALSE(world.Convert(ManyReadings()));
    EXPECT_LT(world.flags.line_counter, 5000);
    EXPECT_EQ(world.Read("1.txt"), "old");
    EXPECT_FALSE(world.Exists("1.txt.part"));
    EXPECT_TRUE(world.dialogs.boxes.empty());
  }
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
