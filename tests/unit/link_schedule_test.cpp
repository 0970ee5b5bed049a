#include "link/schedule.h"

#include <gtest/gtest.h>

#include "unit/link_world.h"

namespace corvane::test {
namespace {

TEST(ScheduleGridTest, ComputesTheNextTime) {
  const auto on = [](int day, int hour, int minute = 0, int second = 0) {
    return DateTime::FromCivil(2010, 3, day, hour, minute, second);
  };
  const struct {
    const char* interval;
    DateTime now;
    DateTime next;
  } rows[] = {
      {"03:00", on(12, 10, 20), on(12, 12)}, {"03:00", on(12, 22, 10), on(13, 0)},
      {"3:00", on(12, 12), on(12, 15)},      {"03:00", on(12, 11, 59, 59), on(12, 12)},
      {"0:30", on(12, 0), on(12, 0, 30)},    {"36", on(12, 10), on(13, 12)},
      {"24", on(12, 10), on(13, 0)},         {"2", on(12, 10), on(14, 0)},
      {"12", on(12, 10), on(24, 0)},         {"0.25", on(12, 10), on(12, 12)},
      {"05:00", on(12, 21), on(13, 1)},
  };
  for (const auto& row : rows) {
    const auto interval = AutomaticInterval(row.interval);
    ASSERT_TRUE(interval) << row.interval;
    EXPECT_EQ(NextOnGrid(row.now, *interval), row.next) << row.interval;
  }
  for (const char* text : {"", "0", "0:00", "-1", "soon", "25:00", "3 hours", "1e300", "nan", "inf"}) {
    EXPECT_FALSE(AutomaticInterval(text)) << text;
  }
}

class ScheduleTest : public LinkTest {
 protected:
  ScheduleTest() {
    form.Txt_AutomaticInterval.SetText("03:00");
    form.Opt_HeartBeat.SetOptionIndex(1);
    form.Chk_Automatic.SetTicked(true);
    form.Lbl_NextDownload.SetText("12 Mar 2010 12:00");
    schedule.start_download = [this] {
      slot.Run([this] {
        EXPECT_TRUE(flags.automatic_run);
        started.push_back(form.Lbl_Now.text());
        pauser.Pause(5000);
        schedule.CalculateNextDownload();
      });
    };
  }
  static constexpr std::int64_t kHour = 3600000;

  Schedule schedule{form, flags, slot, loop, trace};
  std::vector<std::string> started;
};

TEST_F(ScheduleTest, ShowsTheClockAndTheCountDown) {
  schedule.StartHeartbeat();
  EXPECT_EQ(form.Lbl_Now.text(), "12 Mar 2010 10:00:00");
  EXPECT_EQ(form.Frm_Main.title(), "Corvane");
  form.Frm_Main.SetMinimised(true);
  loop.Advance(1000);
  EXPECT_EQ(form.Frm_Main.title(), "01:59:59");
  form.Opt_HeartBeat.SetOptionIndex(0);
  schedule.StartHeartbeat();
  EXPECT_EQ(form.Lbl_Now.text(), "12 Mar 2010 10:00");
  EXPECT_EQ(form.Frm_Main.title(), "01:59");
}

TEST_F(ScheduleTest, StartsEachDownloadOnce) {
  schedule.StartHeartbeat();
  loop.Advance(9 * kHour);
  EXPECT_EQ(started,
            (std::vector<std::string>{"12 Mar 2010 12:00:01", "12 Mar 2010 15:00:01", "12 Mar 2010 18:00:01"}));
  EXPECT_EQ(form.Lbl_NextDownload.text(), "12 Mar 2010 21:00");
  EXPECT_FALSE(flags.automatic_run);
}

TEST_F(ScheduleTest, StartsOnlyWhatIsDue) {
  const struct {
    const char* name;
    std::function<void()> change;
    std::size_t downloads;
  } rows[] = {
      {"passed while the program did not run", [] {}, 1},
      {"automatic download is off", [this] { form.Chk_Automatic.SetTicked(false); }, 0},
      {"no date", [this] { form.Lbl_NextDownload.SetText("soon"); }, 0},
      {"no next time", [this] { form.Lbl_NextDownload.SetText(""); }, 0},
      {"not later than now", [this] { loop.SetNow(DateTime::FromCivil(2010, 3, 12, 9)); }, 0},
      {"closing", [this] { flags.closing = true; }, 0},
  };
  for (const auto& row : rows) {
    started.clear();
    loop.SetNow(DateTime::FromCivil(2010, 3, 12, 10));
    form.Chk_Automatic.SetTicked(true);
    form.Lbl_NextDownload.SetText("12 Mar 2010 09:00");
    schedule.CalculateNextDownload();
    row.change();
    schedule.CheckSchedule();
    EXPECT_EQ(started.size(), row.downloads) << row.name;
    flags.closing = false;
  }
}

TEST_F(ScheduleTest, WaitsForARunningOperation) {
  form.Lbl_NextDownload.SetText("12 Mar 2010 09:00");
  slot.Run([this] {
    schedule.StartHeartbeat();
    loop.Advance(10000);
    EXPECT_TRUE(started.empty());
    EXPECT_EQ(form.Lbl_Now.text(), "12 Mar 2010 10:00:10") << "the clock goes on";
  });
  {
    const SuppressEvents::Guard guard(form.Suppress);
    schedule.CheckSchedule();
    EXPECT_TRUE(started.empty());
  }
  loop.Advance(1000);
  EXPECT_EQ(started.size(), 1U);
}

TEST_F(ScheduleTest, RefusesAnIntervalThatIsNone) {
  form.Txt_AutomaticInterval.SetText("0");
  schedule.CalculateNextDownload();
  EXPECT_EQ(form.Lbl_NextDownload.text(), "12 Mar 2010 12:00");
  EXPECT_EQ(form.Lbl_Status.text(), "\"0\" is no interval above zero: the next download stays at 12 Mar 2010 12:00");
  schedule.StartHeartbeat();
  loop.Advance(5 * kHour);
  EXPECT_EQ(started.size(), 1U) << "a time that cannot move on is started once";
  form.Txt_AutomaticInterval.SetText("03:00");
  schedule.CalculateNextDownload();
  EXPECT_EQ(form.Lbl_NextDownload.text(), "12 Mar 2010 18:00");
}

TEST_F(ScheduleTest, MovesATimeThatIsTooFarAhead) {
  form.Lbl_NextDownload.SetText("14 Mar 2010 12:00");
  form.Chk_Automatic.SetTicked(false);
  schedule.StartHeartbeat();
  EXPECT_EQ(form.Lbl_NextDownload.text(), "14 Mar 2010 12:00");
  form.Chk_Automatic.SetTicked(true);
  loop.Advance(1000);
  EXPECT_EQ(form.Lbl_NextDownload.text(), "12 Mar 2010 12:00");
}

TEST_F(ScheduleTest, ATimeBetweenMinutesIsDueOnce) {
  form.Txt_AutomaticInterval.SetText("0:01:30");
  form.Lbl_NextDownload.SetText("");
  schedule.CalculateNextDownload();
  EXPECT_EQ(form.Lbl_NextDownload.text(), "12 Mar 2010 10:02");
  schedule.StartHeartbeat();
  loop.Advance(9 * 60000);
  EXPECT_EQ(started, (std::vector<std::string>{"12 Mar 2010 10:02:01", "12 Mar 2010 10:03:01", "12 Mar 2010 10:05:01",
                                               "12 Mar 2010 10:06:01", "12 Mar 2010 10:08:01"}));
}

TEST_F(ScheduleTest, LimitsTheRetries) {
  const struct {
    const char* text;
    const char* limited;
  } rows[] = {{"40", "15"}, {"16", "15"}, {"15", "15"}, {"10", "10"}, {"0", "1"}, {"-5", "1"}, {"many", "1"}};
  for (const auto& row : rows) {
    form.Txt_MaxRetries.SetText(row.text);
    schedule.LimitMaxRetries();
    EXPECT_EQ(form.Txt_MaxRetries.text(), row.limited) << row.text;
  }
}

}  // namespace
}  // namespace corvane::test
