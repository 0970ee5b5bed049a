#include "link/schedule.h"

#include <gtest/gtest.h>

#include "state/operation_slot.h"
#include "unit/link_world.h"

namespace corvane::test {
namespace {

TEST(ScheduleGridTest, ComputesTheNextTime) {
  const auto on = [](int day, int hour, int minute = 0) { return DateTime::FromCivil(2010, 3, day, hour, minute); };
  const std::tuple<const char*, DateTime, DateTime> rows[] = {
      {"03:00", on(12, 22, 10), on(13, 0)}, {"3:00", on(12, 12), on(12, 15)}, {"03:00", on(12, 11, 59), on(12, 12)},
      {"0:30", on(12, 0), on(12, 0, 30)},   {"36", on(12, 10), on(13, 12)},   {"24", on(12, 10), on(13, 0)},
      {"12", on(12, 10), on(24, 0)},        {"0.25", on(12, 10), on(12, 12)}, {"05:00", on(12, 21), on(13, 1)}};
  for (const auto& [text, now, next] : rows) {
    const auto interval = AutomaticInterval(text);
    ASSERT_TRUE(interval) << text;
    EXPECT_EQ(NextOnGrid(now, *interval), next) << text;
  }
  for (const char* text : {"", "0", "0:00", "-1", "soon", "25:00", "3 hours", "1e300", "nan", "inf"}) {
    EXPECT_FALSE(AutomaticInterval(text)) << text;
  }
}

constexpr std::int64_t kHour = 3600000;

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
        started += form.Lbl_Now.text().substr(12) + " ";
        pauser.Pause(5000);
        schedule.CalculateNextDownload();
      });
    };
  }
  OperationSlot slot{link, states};
  Schedule schedule{{form, flags, slot, loop, trace}};
  std::string started;  ///< the times of day
};

TEST_F(ScheduleTest, ShowsTheClockAndTheCountDown) {
  schedule.StartHeartbeat();
  EXPECT_EQ(form.Lbl_Now.text(), "12 Mar 2010 10:00:00");
  form.Frm_Main.SetMinimised(true);
  loop.Advance(1000);
  EXPECT_EQ(form.Frm_Main.title(), "01:59:59");
}

TEST_F(ScheduleTest, StartsEachDownloadOnce) {
  schedule.StartHeartbeat();
  loop.Advance(9 * kHour);
  EXPECT_EQ(started, "12:00:01 15:00:01 18:00:01 ");
  EXPECT_EQ(form.Lbl_NextDownload.text(), "12 Mar 2010 21:00");
  EXPECT_FALSE(flags.automatic_run);
  form.Txt_AutomaticInterval.SetText("0:01:30");
  schedule.CalculateNextDownload();
  loop.Advance(kHour / 10);
  EXPECT_EQ(started, "12:00:01 15:00:01 18:00:01 19:02:01 19:03:01 19:05:01 ") << "between minutes";
}

TEST_F(ScheduleTest, StartsOnlyWhatIsDue) {
  const std::pair<const char*, std::function<void()>> rows[] = {
      {"automatic download is off", [this] { form.Chk_Automatic.SetTicked(false); }},
      {"no date", [this] { form.Lbl_NextDownload.SetText("soon"); }},
      {"not later than now", [this] { form.Lbl_NextDownload.SetText("12 Mar 2010 10:00"); }},
      {"closing", [this] { flags.closing = true; }},
  };
  for (const auto& [name, change] : rows) {
    form.Chk_Automatic.SetTicked(true);
    form.Lbl_NextDownload.SetText("12 Mar 2010 09:00");
    change();
    schedule.CheckSchedule();
    EXPECT_EQ(started, "") << name;
  }
}

TEST_F(ScheduleTest, WaitsForARunningOperation) {
  form.Lbl_NextDownload.SetText("12 Mar 2010 09:00");
  slot.Run([this] {
    schedule.StartHeartbeat();
    loop.Advance(10000);
    EXPECT_EQ(started, "");
    EXPECT_EQ(form.Lbl_Now.text(), "12 Mar 2010 10:00:10") << "the clock goes on";
  });
  loop.Advance(1000);
  EXPECT_EQ(started, "10:00:11 ");
}

TEST_F(ScheduleTest, RefusesAnIntervalThatIsNone) {
  form.Txt_AutomaticInterval.SetText("0");
  schedule.CalculateNextDownload();
  EXPECT_EQ(form.Lbl_Status.text(), "\"0\" is no interval above zero: the next download stays at 12 Mar 2010 12:00");
  schedule.StartHeartbeat();
  loop.Advance(5 * kHour);
  EXPECT_EQ(started, "12:00:01 ") << "a time that cannot move on is started once";
  form.Txt_AutomaticInterval.SetText("03:00");
  schedule.CalculateNextDownload();
  EXPECT_EQ(form.Lbl_NextDownload.text(), "12 Mar 2010 18:00");
}

TEST_F(ScheduleTest, MovesATimeThatIsTooFarAhead) {
  form.Lbl_NextDownload.SetText("14 Mar 2010 12:00");
  schedule.StartHeartbeat();
  EXPECT_EQ(form.Lbl_NextDownload.text(), "12 Mar 2010 12:00");
}

}  // namespace
}  // namespace corvane::test
