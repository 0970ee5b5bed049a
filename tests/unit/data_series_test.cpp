#include <gtest/gtest.h>

#include <vector>

#include "base/numbers.h"
#include "base/text.h"
#include "data/calibration.h"
#include "data/reading_series.h"
#include "support/lower.h"

namespace corvane::test {
namespace {

const std::string kHeader = "$V2,00001,5,6,9,2010/3/12 00:00,12500*00\r\n";
constexpr const char* kPattern = "d mmm yyyy HH:MM";

/// A raw file of two sensors and an extra channel, its tables, and what is asked of it.
struct SeriesWorld : Lower {
  explicit SeriesWorld(const std::string& lines) {
    request.raw_file = home.Write("1.epd", lines);
    request.calibrated_file = home.Name("1.txt");
    request.date_format = kPattern;
    request.tables = {home.Write("m.lkp", "0,0\n4000,40\n"), home.Write("s.lkp", "0,0\n1000,10\n"),
                      home.Write("c.lkp", "0,0\n10,1\n")};
    for (const Quantity quantity : {Quantity::Moisture, Quantity::Salinity, Quantity::Temperature}) {
      for (const std::int32_t sensor : {1, 2}) request.channels.push_back({quantity, sensor});
    }
    request.channels.push_back({Quantity::Battery});
    request.channels.push_back({Quantity::Ambient});
  }
  SeriesRequest request;
};

std::string Reading(int minute, const std::string& items = "12500,29310,7,33,1512,903,29250,1498,910,29380") {
  return FormatDate(DateTime::FromCivil(2010, 3, 12) + minute * 60, "yyyy/m/d HH:NN") + "," + items + "\r\n";
}

TEST(ReadingSeries, HoldsWhatTheConversionOfEachReadingGives) {
  for (const CalibrationFactors& factors : {CalibrationFactors{}, CalibrationFactors{true, 12.5F, 3}}) {
    const std::string lines = kHeader + Reading(5) + Reading(20, "11000,29999,8,0,0,4000,31000,1,2,27000");
    SeriesWorld world(lines);
    world.request.factors = factors;
    Lookups lookups(world.messages);
    lookups.Moisture.SetFile(world.request.tables.moisture);
    lookups.Salinity.SetFile(world.request.tables.salinity);
    lookups.Correction.SetFile(world.request.tables.correction);
    CalibrationSettings settings;
    settings.Uncorrected = true;
    settings.Factors = factors;
    settings.DateFormat = kPattern;
    Calibration conversion(settings, lookups);
    std::string rows;
    const ReadingSeries series = ReadSeries(world.request);
    ASSERT_EQ(series.times.size(), 2U) << series.problem;
    conversion.TakeHeader(Split(kHeader, ','));
    conversion.AppendHeader(rows);
    const auto text = [&series](std::size_t column, std::size_t at, int decimals) {
      return ", " + FixedText(series.columns[column][at], decimals);
    };
    for (std::size_t at = 0; at < 2; ++at) {
      const std::string line = Split(lines, '\n')[at + 1].data();
      static_cast<void>(conversion.TakeLine(line.substr(0, line.find('\r'))));
      const std::size_t begin = rows.size();
      conversion.AppendRow(rows, DateTime(series.times[at]));
      const std::vector<std::string_view> fields = Split(std::string_view(rows).substr(begin), ',');
      const std::string sensors = text(0, at, 2) + text(2, at, 3) + text(4, at, 2) + ", " +
                                  std::string(Trim(fields[9])) + text(1, at, 2) + text(3, at, 3) + text(5, at, 2);
      EXPECT_NE(rows.find(sensors + "\r\n", begin), std::string::npos) << rows << sensors;
      EXPECT_NE(rows.find(text(6, at, 3) + text(7, at, 2), begin), std::string::npos) << rows;
    }
    // Without a raw file the same comes from the calibrated one, to its last digit.
    world.home.Write("1.txt", rows);
    world.request.raw_file += ".not";
    const ReadingSeries fallback = ReadSeries(world.request);
    EXPECT_EQ(fallback.source, ReadingSeries::Source::Calibrated);
    EXPECT_EQ(fallback.times, series.times);
    EXPECT_EQ(fallback.sensors, 2);
    for (std::size_t column = 0; column < series.columns.size(); ++column) {
      ASSERT_EQ(fallback.columns[column].size(), 2U);
      EXPECT_NEAR(fallback.columns[column][1], series.columns[column][1], 0.0051);
    }
  }
}

TEST(ReadingSeries, LeavesOutWhatTheConversionLeavesOutAndKeepsGapsOpen) {
  struct Row {
    const char* name;
    std::string lines;
    std::vector<int> minutes;
    std::vector<std::size_t> breaks;
  };
  std::string gap = kHeader;
  std::vector<int> gap_minutes;
  for (const int minute : {0, 15, 30, 45, 120, 135, 150, 165}) {
    gap += Reading(minute);
    gap_minutes.push_back(minute);
  }
  const Row rows[] = {
      {"a gap", gap, gap_minutes, {4}},
      {"torn, short, undated and NUL lines",
       kHeader + Reading(0) + "2010/3/12 0:05,1,2\r\n" + "2010/13/12 0:05,12500,29310,7,3,1,2,3,4,5,6\r\n" +
           std::string("2010/3/12 0:06,1\0,29310,7,3,1,2,3,4,5,6\r\n", 41) + Reading(15) + "2010/3/12 0:30,12500,2931",
       {0, 15},
       {}},
      {"a clock set back", kHeader + Reading(30) + Reading(45) + Reading(0), {0, 30, 45}, {}},
      {"no header", Reading(0) + Reading(15), {0, 15}, {}},
      {"empty", "", {}, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    SeriesWorld world(row.lines);
    world.request.channels = {{Quantity::Battery}, {Quantity::Item, 3}, {Quantity::Item, 11}, {Quantity::Moisture, 3}};
    const ReadingSeries series = ReadSeries(world.request);
    std::vector<int> minutes;
    for (const std::int64_t time : series.times) minutes.push_back(static_cast<int>(DateTime(time).TimeOfDay() / 60));
    EXPECT_EQ(minutes, row.minutes);
    EXPECT_EQ(series.breaks, row.breaks);
    EXPECT_EQ(series.columns[0], std::vector<double>(minutes.size(), 12.5));
    EXPECT_EQ(series.columns[1], std::vector<double>(minutes.size(), 7));
    EXPECT_TRUE(series.columns[2].empty());
    EXPECT_TRUE(series.columns[3].empty());
  }
}

TEST(ReadingSeries, GivesTheSpanAskedForAndSaysWhatCannotBeShown) {
  const std::string lines = kHeader + Reading(0) + Reading(15) + Reading(30);
  SeriesWorld world(lines);
  world.request.from = DateTime::FromCivil(2010, 3, 12, 0, 15);
  world.request.to = world.request.from;
  EXPECT_EQ(ReadSeries(world.request).times, std::vector<std::int64_t>{world.request.from.seconds()});
  EXPECT_TRUE(ReadSeries(world.request, [] { return false; }).cancelled);

  struct Row {
    const char* name;
    std::string SeriesRequest::*file;
    std::string value;
    std::string problem;
  };
  const std::string table = world.home.Write("empty.lkp", "");
  world.home.Write("1.txt", "Date, Battery, Ambient, Count [Mois_Correc=0 Sal_Correc=0]\r\n1/2/10 8:00, 1, 2, 3\r\n");
  const Row rows[] = {
      {"no file", &SeriesRequest::calibrated_file, "/nowhere/1.txt", "There are no readings yet"},
      {"dates without a time", &SeriesRequest::date_format, "d mmm yyyy", "does not tell day and minute"},
      {"another format", &SeriesRequest::date_format, kPattern, "written with another date format"},
  };
  world.request.raw_file += ".not";
  for (const Row& row : rows) {
    SeriesRequest request = world.request;
    request.*row.file = row.value;
    EXPECT_NE(ReadSeries(request).problem.find(row.problem), std::string::npos) << row.name;
  }
  SeriesWorld other(lines);
  other.request.tables.correction = table;
  const ReadingSeries series = ReadSeries(other.request);
  EXPECT_NE(series.problem.find("empty.lkp cannot be used: it holds no points"), std::string::npos);
  EXPECT_TRUE(series.columns[0].empty());
  EXPECT_EQ(series.columns[2].size(), 3U);
}

TEST(ReadingSeries, OfTheNewestReadingsIsTheSameWithoutTheRestOfTheFile) {
  std::string lines = kHeader + "before all, and long ago: " + std::string(1000, 'x') + "\r\n";
  for (int i = 0; i < 9000; ++i) lines += i % 700 == 0 ? "" : Reading(15 * i);
  for (const int days : {0, 2, 60, 93, 200}) {
    SeriesWorld world(lines);
    world.request.from = DateTime::FromCivil(2010, 3, 12) + days * kSecondsPerDay;
    const ReadingSeries all = ReadSeries(world.request);
    world.request.newest_only = true;
    const ReadingSeries newest = ReadSeries(world.request);
    EXPECT_EQ(newest.times, all.times) << days;
    EXPECT_EQ(newest.columns, all.columns) << days;
    EXPECT_EQ(newest.breaks, all.breaks) << days;
  }
}

}  // namespace
}  // namespace corvane::test
