#include "data/completeness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include "base/status.h"
#include "support/temp_folder.h"

namespace corvane::test {
namespace {

constexpr std::int64_t kMinute = 60;
const DateTime kStart = DateTime::FromCivil(2010, 3, 12);
const std::string kHeader = "$V2,00001,5,6,9,2010/3/12 00:00,12500*00\r\n";

std::string DateText(DateTime when) {
  const CivilTime at = when.ToCivil();
  char text[40];
  std::snprintf(text, sizeof text, "%d/%d/%d %02d:%02d", static_cast<int>(at.year), at.month, at.day, at.hour,
                at.minute);
  return text;
}

std::string Line(DateTime when, const std::string& items = "12500,29310,7,0,1512,903,29300,1498,910,29280") {
  return DateText(when) + "," + items + "\r\n";
}

/// "from-to:missing" of each gap in minutes from `kStart`; a matter of the clock has "clock" instead.
std::string Text(const std::vector<GapRecord>& gaps) {
  std::string text;
  for (const GapRecord& gap : gaps) {
    text += (text.empty() ? "" : " ") + std::to_string((gap.from - kStart) / kMinute) + "-" +
            std::to_string((gap.to - kStart) / kMinute) + ":" +
            (gap.state == GapState::Clock ? "clock" : std::to_string(gap.missing));
  }
  return text;
}

/// "expected/stored" of each day with its battery and the readings outside a table.
std::string Text(const std::vector<DayRecord>& days) {
  std::ostringstream text;
  for (const DayRecord& day : days) {
    text << (day.day - kStart) / kSecondsPerDay << " " << day.expected << "/" << day.stored << " "
         << day.first.seconds() << "-" << day.last.seconds() << " " << day.battery.value_or(-1) << " " << day.outside
         << "@" << day.outside_channel << "\n";
  }
  return text.str();
}

std::string Text(const ScanRecord& scan) {
  std::ostringstream text;
  text << scan.readings << " " << scan.first.seconds() << "-" << scan.last.seconds() << " every " << scan.period << ", "
       << scan.still_channel << " still since " << scan.still_since.seconds();
  return text.str();
}

class CompletenessTest : public ::testing::Test {
 protected:
  RawScan Scan(const std::string& contents, const ScanHints& hints = {}) {
    return ScanRawFile(folder.Write("00001.epd", contents), {}, hints);
  }
  TempFolder folder;
};

TEST_F(CompletenessTest, GapsAreFoundByTheCommonestDistances) {
  const auto step = [](int from, int to, std::optional<std::int64_t> seconds) {
    ScanHints hints;
    hints.steps.push_back({kStart + from * kMinute, kStart + to * kMinute, seconds});
    return hints;
  };
  const auto period = [](int at, std::int64_t seconds, bool certain = true) {
    ScanHints hints;
    hints.periods.push_back({kStart + at * kMinute, seconds, certain});
    return hints;
  };
  const auto unplaced = [&period](int at, std::int64_t seconds) {
    ScanHints hints = period(at, seconds);
    hints.periods[0].placed = false;
    return hints;
  };
  const auto two_periods = [](bool placed) {
    ScanHints hints;
    hints.periods = {{kStart + 1000 * kMinute, 14400, true, placed}, {kStart + 2900 * kMinute, 3600, true, placed}};
    return hints;
  };
  // The dates in minutes from the first one; "+15*20" stands for twenty more, 15 apart.
  const std::tuple<const char*, const char*, ScanHints, const char*> rows[] = {
      {"regular", "0 +15*50", {}, ""},
      {"a gap", "0 +15*3 +75 +15*2", {}, "45-120:4"},
      {"one and a half times is none", "0 +10*3 +15 +10*2", {}, ""},
      {"a little more is one", "0 +10*3 +16 +10*2", {}, "30-46:1"},
      {"pending behind the newest", "0 +15*3 +75 +15", {}, ""},
      {"the first distance", "0 +75 +15*3", {}, "0-75:4"},
      {"two readings", "0 +75", {}, ""},
      {"a longer period", "0 +15*30 +60*30", {}, ""},
      {"a shorter period", "0 +60*30 +15*30", {}, ""},
      {"a gap across a change of period counts by the one before", "0 +15*30 +100 +60*30", {}, "450-550:6"},
      {"of two as common the newer", "0 +30*2 +15*2 +50 +30*2", {}, "90-140:2"},
      {"the nearer behind, too", "0 +15*3 +60 +15*2 +60*2", {}, "45-105:3"},
      {"only twenty count", "0 +60*30 +15*11 +60 +15*30", {}, "1965-2025:3"},
      {"set back", "0 +15*5 -60 +15*5", {}, ""},
      {"set forward by as much", "0 +15*5 +75 +15*5", step(75, 150, 3600), "75-150:clock"},
      {"set forward in a longer gap", "0 +15*5 +120 +15*5", step(75, 195, 3600), "75-195:3"},
      {"set back in a gap", "0 +15*5 +75 +15*5", step(75, 150, -3600), "75-150:4"},
      {"set by command", "0 +15*5 +1000 +15*5", step(100, 1075, {}), "75-1075:clock"},
      {"set by command, with a longer gap behind", "0 +15*5 +1000 +15*5", step(100, 100, {}), "75-1075:66"},
      {"set by command, with a shorter gap behind", "0 +15*5 +1000 +15*5", step(800, 800, {}), "75-1075:17"},
      {"set by more than the distance", "0 +15*5 +75 +15*5", step(75, 150, 36000), "75-150:4"},
      {"set forward in one of two", "0 +15*5 +90 +15*5 +75 +15*5", step(60, 330, 3600), "75-165:5 240-315:clock"},
      {"set forward in either of two", "0 +15*5 +120 +15*5 +120 +15*5", step(60, 400, 3600), "75-195:3 270-390:3"},
      {"set elsewhere", "0 +15*5 +75 +15*5", step(160, 170, {}), "75-150:4"},
      {"set where nothing is missing", "0 +15*9", step(30, 30, {}), ""},
      {"ten years are the clock", "0 +15*5 +6000000 +15*5", {}, "75-6000075:clock"},
      {"a told period forbids the gap", "0 +15*5 +60 +15*2", period(80, 3600), ""},
      {"a told shorter period whose first reading is missing", "0 +360*9 +360 +180*9", period(3310, 10800),
       "3240-3600:1"},
      {"it was set just before that, or behind it", "0 +360*9 +360 +180*9", period(3412, 10800), ""},
      {"the clock may have been set then, too", "0 +360*9 +360 +180*9",
       [&] {
         ScanHints hints = period(3310, 10800);
         hints.steps.push_back(step(3000, 3900, 3600).steps[0]);
         return hints;
       }(),
       ""},
      {"what the unit's clock showed then is not known", "0 +360*9 +360 +180*9", unplaced(3310, 10800), ""},
      {"a period set in another distance than it seems", "0 +240*10 +300 +180*9", unplaced(2300, 10800), ""},
      {"a perhaps set period likewise", "0 +360*9 +360 +180*9", period(3310, 10800, false), "3240-3600:1"},
      {"a told longer period, readings missing before", "0 +15*30 +60 +60*9", period(487, 3600), "450-510:1"},
      {"a told period begins anew", "0 +60*30 +15 +60 +15*2", period(1800, 900), "1815-1875:3"},
      {"a gap across a told period counts by both", "0 +15*30 +150 +60*5", period(480, 3600), "450-600:3"},
      {"a period that was perhaps set", "0 +15*30 +150 +60*5", period(480, 3600, false), "450-600:3"},
      {"a period that was not set", "0 +15*30 +150 +60*5", period(480, 1800, false), "450-600:9"},
      {"two told periods, whose readings stand at whole multiples", "0 +180*3 +3000 +60*5", two_periods(true),
       "540-3540:20"},
      {"the same, their places not sure", "0 +180*3 +3000 +60*5", two_periods(false), "540-3540:20"},
      {"a told period in the first distance, the one before unknown", "0 +360 +180*9", period(230, 10800), ""},
      {"a clock that drifted by minutes over a told period", "0 +360*9 +900 +180*9",
       [&] {
         ScanHints hints = period(3640, 10800);
         hints.steps.push_back({kStart, kStart + 5000 * kMinute, 717});
         return hints;
       }(),
       "3240-4140:3"},
      {"a told period that was not taken", "0 +15*30 +75 +15*9", period(100, 3600), "450-525:4"},
  };
  for (const auto& [name, dates, hints, expected] : rows) {
    std::istringstream words(dates);
    std::string text = kHeader;
    std::string word;
    DateTime when = kStart;
    while (words >> word) {
      const std::size_t star = word.find('*');
      for (int left = star == std::string::npos ? 1 : std::stoi(word.substr(star + 1)); left > 0; --left) {
        when = when + std::stoll(word) * kMinute;
        text += Line(when);
      }
    }
    EXPECT_EQ(Text(Scan(text, hints).gaps), expected) << name;
  }
}

TEST_F(CompletenessTest, WhatIsMissingCountsOnItsDay) {
  const auto minutes = [](int at) { return kStart + at * kMinute; };
  std::string text = kHeader;
  for (int at = 0; at <= 480; at += 240) text += Line(minutes(at));
  ScanHints hints;
  hints.periods = {{minutes(600), 60}, {minutes(720), 14400}};
  std::string later = text;
  for (int at = 960; at <= 1680; at += 240) later += Line(minutes(at));
  EXPECT_EQ(Text(Scan(later, hints).gaps), "480-960:119") << "those of two hours, each minute";
  const std::vector<DayRecord> days = Scan(later, hints).days;
  ASSERT_EQ(days.size(), 2U);
  EXPECT_EQ(std::pair(days[0].expected, days[0].stored), std::pair(std::int64_t{124}, std::int64_t{5}));
  EXPECT_EQ(std::pair(days[1].expected, days[1].stored), std::pair(std::int64_t{2}, std::int64_t{2}));
  text = kHeader;
  for (int at = 600; at <= 720; at += 15) text += Line(minutes(at));
  hints.periods = {{minutes(725), 14400}};
  hints.last_contact = minutes(1090);
  EXPECT_EQ(Scan(text, hints).days.at(0).expected, 10) << "of those overdue one is expected";
}

TEST_F(CompletenessTest, WhatIsNoReadingIsLeftOut) {
  const std::string three = Line(kStart) + Line(kStart + 900) + Line(kStart + 1800);
  const std::tuple<const char*, std::string, int, bool> rows[] = {
      {"empty", "", 0, false},
      {"a header alone", kHeader, 0, true},
      {"no header", three, 3, false},
      {"a torn last line", kHeader + three + "2010/3/12 00:45,1,2", 3, true},
      {"NUL in a line", kHeader + three + std::string(5, '\0') + three, 5, true},
      {"an endless line", kHeader + std::string(600000, '1') + "\n" + three, 3, true},
  };
  for (const auto& [name, contents, readings, has_header] : rows) {
    const RawScan scan = Scan(contents);
    EXPECT_EQ(scan.scan.readings, readings) << name;
    EXPECT_EQ(scan.has_header, has_header) << name;
  }
  EXPECT_TRUE(ScanRawFile(folder.Name("missing.epd"), {}, {}).whole);
  EXPECT_THROW(static_cast<void>(ScanRawFile(folder.path(), {}, {})), RunTimeError) << "a folder";
}

TEST_F(CompletenessTest, AnotherFileIsReadWhole) {
  const auto is_whole = [this](const std::string& contents, bool renamed, const ScanHints& hints) {
    const std::string text = kHeader + Line(kStart) + Line(kStart + 900);
    const RawScan first = Scan(text);
    if (renamed) std::filesystem::rename(folder.Write("other.epd", text), folder.Name("00001.epd"));
    const RawScan again = ScanRawFile(folder.Write("00001.epd", contents.empty() ? text : contents), first.scan, hints);
    return again.whole;
  };
  const std::string grown = kHeader + Line(kStart) + Line(kStart + 900) + Line(kStart + 1800);
  EXPECT_FALSE(is_whole(grown, false, {}));
  EXPECT_TRUE(is_whole(grown, true, {})) << "another inode";
  EXPECT_TRUE(is_whole(kHeader + Line(kStart) + Line(kStart + 960) + Line(kStart + 1800), false, {})) << "other bytes";
  EXPECT_TRUE(is_whole(kHeader, false, {})) << "shorter";
  ScanHints told;
  told.periods.push_back({kStart, 900});
  EXPECT_TRUE(is_whole(grown, false, told)) << "other hints for what was read";
  ScanHints known;
  for (const int begin : {-900, 0, 900}) {
    known.known.emplace_back().from = kStart + begin;
    known.known.back().to = kStart + begin + (begin == 0 ? 1800 : 900);
  }
  EXPECT_EQ(Scan(grown, known).filled, std::vector{kStart}) << "a reading stands between, not at the ends";
  EXPECT_TRUE(ScanRawFile(folder.Name("none.epd"), {}, {}).missing);
}

TEST_F(CompletenessTest, ChannelsAreWatched) {
  ScanHints hints;
  hints.moisture = TableRange{800, 4000};
  std::string text = kHeader;
  for (int i = 0; i < 100; ++i) {
    const std::string n = std::to_string(i);
    // The extra channel has never changed, the second salinity not since the tenth reading.
    text += Line(kStart + i * 900, "12" + std::to_string(100 + i) + ",29310,7,0," + (i % 4 == 0 ? "799" : "800") + "," +
                                       n + "," + n + "," + std::to_string(1000 + i) + "," +
                                       std::to_string(std::min(i, 10)) + "," + n);
  }
  const RawScan scan = Scan(text, hints);
  EXPECT_EQ(scan.scan.still_channel, 9);
  EXPECT_EQ(scan.scan.still_since, kStart + 10 * 900);
  ASSERT_EQ(scan.days.size(), 2U);
  EXPECT_DOUBLE_EQ(scan.days[0].battery.value_or(0), 12.195);
  EXPECT_EQ(scan.days[0].outside, 24);
  EXPECT_EQ(scan.days[1].outside, 1);
  EXPECT_EQ(scan.days[1].outside_channel, 5);
}

/// The truth is known: readings are left out of regular ones whose period is told when it changes.
TEST_F(CompletenessTest, WhatIsLeftOutIsWhatIsMissing) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    std::mt19937 random(seed);
    const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    const int periods[] = {1, 15, 60, 1440};
    ScanHints hints;
    std::string text = kHeader;
    std::string gaps;
    std::map<DateTime, std::pair<int, int>> days;
    DateTime when = kStart + below(1000) * kMinute;
    DateTime before;
    for (int stretch = 0; stretch < 3; ++stretch) {
      const int period = periods[below(4)];
      if (stretch > 0) hints.periods.push_back({when, period * kMinute});
      int missing = 0;
      for (int i = 0; i < 200; ++i) {
        if (i > 0 || stretch > 0) when = when + period * kMinute;
        auto& [expected, stored] = days[when.Midnight()];
        ++expected;
        // Two readings in a row stand at either end, so that it can be told what is a gap.
        if (i > 2 && i < 197 && (missing > 0 ? below(3) > 0 : below(15) == 0)) {
          ++missing;
          continue;
        }
        if (missing > 0) {
          gaps += (gaps.empty() ? "" : " ") + std::to_string((before - kStart) / kMinute) + "-" +
                  std::to_string((when - kStart) / kMinute) + ":" + std::to_string(missing);
        }
        missing = 0;
        ++stored;
        text += Line(when);
        before = when;
      }
      hints.last_contact = when + 10 * period * kMinute + 1;
      if (stretch < 2) continue;
      // Not the tenth: a reading is overdue when half a period has passed.
      for (int i = 1; i <= 9; ++i) ++days[(when + i * period * kMinute).Midnight()].first;
    }
    const RawScan scan = Scan(text, hints);
    EXPECT_EQ(Text(scan.gaps), gaps) << "seed " << seed;
    ASSERT_EQ(scan.days.size(), days.size()) << "seed " << seed;
    for (const DayRecord& day : scan.days) {
      EXPECT_EQ(std::make_pair(static_cast<int>(day.expected), static_cast<int>(day.stored)), days[day.day]) << seed;
    }
  }
}

/// A raw file with all that may come to pass in one, and what is known of it.
std::string AnyFile(std::mt19937& random, ScanHints& hints) {
  const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  const std::string end = below(2) == 0 ? "\n" : "\r\n";
  std::string text = below(4) == 0 ? "" : kHeader;
  DateTime when = kStart + below(1000) * kMinute;
  int period = 15;
  for (int i = below(400); i > 0; --i) {
    const int what = below(60);
    if (what == 0) period = below(3) == 0 ? 1440 : 1 + below(90);
    if (what == 0 && below(2) == 0) hints.periods.push_back({when, period * kMinute, below(2) == 0});
    if (what == 1) when = when + below(3000) * kMinute;
    if (what == 2 && below(3) == 0) when = when - below(below(3) == 0 ? 30000 : 300) * kMinute;
    if (what == 3) hints.steps.push_back({when - below(9) * 600, when + (period + 60 + below(999)) * kMinute, 3600});
    if (what == 3) when = when + 3600;
    if (what == 4 && below(40) == 0) when = when + 5000 * kSecondsPerDay;
    const int sensor = below(3) == 0 ? 700 : 1000 + below(3);
    std::string items = std::to_string(12000 + below(9)) + ",29310," + std::to_string(i) + ",0," +
                        std::to_string(sensor) + ",903,29300,1498," + std::to_string(below(900)) + ",29280";
    if (what == 5) items = "-3,2,x,,12345678901,1.5,,-2,1e3";
    if (what == 6) items = "1";
    std::string line = DateText(when) + "," + items;
    if (what == 7) line.insert(static_cast<std::size_t>(below(20)), 3, '\0');
    if (what == 8) line = "no reading";
    if (what == 9 && below(5) == 0) line += std::string(below(2) == 0 ? 70000 : 300000, ',');
    if (what == 10) text += line + end;
    text += line + end;
    when = when + period * kMinute;
  }
  return text;
}

void Merge(RawScan& known, const RawScan& found) {
  std::erase_if(known.days, [&](const DayRecord& day) { return day.day >= found.changed_from.Midnight(); });
  std::erase_if(known.gaps, [&](const GapRecord& gap) { return gap.to > found.changed_from; });
  known.days.insert(known.days.end(), found.days.begin(), found.days.end());
  known.gaps.insert(known.gaps.end(), found.gaps.begin(), found.gaps.end());
  known.scan = found.scan;
  known.has_header = found.has_header;
}

/// Each piece ends anywhere, often within a line, whose begin is at times cut off before the file grows again.
TEST_F(CompletenessTest, PiecesGiveWhatTheWholeGives) {
  int resumed = 0;
  for (unsigned seed = 1; seed <= 80; ++seed) {
    std::mt19937 random(seed);
    ScanHints hints;
    hints.moisture = TableRange{800, 4000};
    hints.salinity = TableRange{50, 800};
    const std::string text = AnyFile(random, hints);
    const std::string file = folder.Write("pieces.epd", "");
    RawScan known;
    for (std::size_t done = 0; done < text.size();) {
      const std::size_t piece = std::min<std::size_t>(text.size() - done, 1 + random() % (1U << random() % 16U));
      std::ofstream(file, std::ios::app | std::ios::binary) << text.substr(done, piece);
      done += piece;
      ScanHints now = hints;
      now.last_contact = known.scan.last + static_cast<std::int64_t>(random() % 300) * kMinute;
      const RawScan found = ScanRawFile(file, known.scan, now);
      resumed += found.whole ? 0 : 1;
      Merge(known, found);
      const std::size_t line = text.rfind('\n', done - 1) + 1;
      if (done == text.size() || done - line > 100 || random() % 3 != 0) continue;
      done = line;
      std::filesystem::resize_file(file, done);
    }
    Merge(known, ScanRawFile(file, known.scan, hints));
    const RawScan whole = Scan(text, hints);
    const auto earlier = [](const GapRecord& a, const GapRecord& b) {
      return std::tie(a.from, a.to) < std::tie(b.from, b.to);
    };
    std::vector<GapRecord> gaps = whole.gaps;
    std::sort(gaps.begin(), gaps.end(), earlier);
    std::sort(known.gaps.begin(), known.gaps.end(), earlier);
    ASSERT_EQ(Text(known.gaps), Text(gaps)) << "seed " << seed;
    ASSERT_EQ(Text(known.days), Text(whole.days)) << "seed " << seed;
    ASSERT_EQ(Text(known.scan), Text(whole.scan)) << "seed " << seed;
    ASSERT_EQ(known.scan.state, whole.scan.state) << "seed " << seed;
  }
  EXPECT_GT(resumed, 800);
}

}  // namespace
}  // namespace corvane::test
