#include "link/schedule.h"

#include <cmath>
#include <string>

#include "base/format.h"
#include "base/numbers.h"

namespace corvane {
namespace {

constexpr std::int64_t kMinuteTick = 60000;
constexpr std::int64_t kSecondTick = 1000;
constexpr double kFirstHours = 24;  ///< a number from here on counts hours, below it days
constexpr double kSecondsPerHour = 3600;
constexpr double kLongestInterval = 100 * 366.0 * kSecondsPerDay;
constexpr std::int64_t kEarliestDate = 100 * kSecondsPerDay;  ///< below it a date is none
constexpr int kFewestRetries = 1;
constexpr int kMostRetries = 15;

}  // namespace

std::optional<std::int64_t> AutomaticInterval(std::string_view as_Text) {
  std::int64_t interval = 0;
  if (const auto time = ParseTimeOfDay(as_Text)) {
    interval = *time;
  } else if (const auto number = ParseNumber(as_Text)) {
    // Intended: "36" is 36 hours and "12" is 12 days; existing settings rely on it.
    const double seconds = *number * (*number >= kFirstHours ? kSecondsPerHour : static_cast<double>(kSecondsPerDay));
    if (seconds >= 0 && seconds <= kLongestInterval) interval = std::llround(seconds);
  }
  if (interval <= 0) return std::nullopt;
  return interval;
}

std::string WhyNoInterval(std::string_view as_Text) {
  const bool too_long = !ParseTimeOfDay(as_Text) && ParseNumber(as_Text).value_or(0) >= kFirstHours;
  return too_long ? "is too long; no more than 100 years can be waited for" : "is no interval above zero";
}

DateTime NextOnGrid(DateTime av_Now, std::int64_t al_Interval) {
  return av_Now.Midnight() + (av_Now.TimeOfDay() / al_Interval + 1) * al_Interval;
}

void Schedule::StartHeartbeat() {
  timer_->Stop();
  timer_->Start(p_.form.Opt_HeartBeat.GetOptionIndex() == 0 ? kMinuteTick : kSecondTick);
  HeartbeatTick();
}

bool Schedule::TicksEverySecond() const {
  return timer_->Interval() == kSecondTick;
}

bool Schedule::Held() const {
  return p_.form.Suppress.set() || p_.slot.Taken() || p_.flags.closing;
}

std::optional<DateTime> Schedule::NextDownload() const {
  const auto next = ParseDate(p_.form.Lbl_NextDownload.text());
  if (!next || next->seconds() < kEarliestDate) return std::nullopt;
  return next;
}

std::optional<DateTime> Schedule::DueTime() const {
  const auto next = NextDownload();
  if (!next || p_.loop.Now() <= *next || *next == started_) return std::nullopt;
  return next;
}

void Schedule::HeartbeatTick() {
  if (on_heartbeat) on_heartbeat();
  p_.form.Lbl_Now.SetText(FormatDate(p_.loop.Now(), TicksEverySecond() ? "d mmm yyyy HH:MM:SS" : kShownDatePattern));
  p_.form.Lbl_Now.Repaint();
  if (p_.form.Chk_Automatic.ticked() && !Held()) {
    RecomputeAfterClockWasSetBack();
    if (p_.form.Frm_Main.minimised()) ShowRemainingTime();
  }
  CheckSchedule();
}

void Schedule::ShowRemainingTime() {
  const auto next = NextDownload();
  if (!next) return;
  const std::int64_t remaining = *next - p_.loop.Now();
  p_.form.Frm_Main.SetTitle((remaining < 0 ? "-" : "") + DurationText(remaining, TicksEverySecond()));
}

void Schedule::RecomputeAfterClockWasSetBack() {
  const auto next = NextDownload();
  const auto interval = AutomaticInterval(p_.form.Txt_AutomaticInterval.text());
  if (next && interval && *next > p_.loop.Now() + *interval) ShowNextDownload(*interval);
}

void Schedule::CheckSchedule() {
  if (Held() || !p_.form.Chk_Automatic.ticked() || !start_download) return;
  const auto due = DueTime();
  if (!due) return;
  started_ = *due;
  const AutomaticRun automatic(p_.flags);
  start_download();
}

void Schedule::CalculateNextDownload() {
  const std::string& text = p_.form.Txt_AutomaticInterval.text();
  const auto interval = AutomaticInterval(text);
  if (!interval) {
    p_.trace.Status("\"" + text + "\" " + WhyNoInterval(text) + ": the next download stays at " +
                    (p_.form.Lbl_NextDownload.text().empty() ? "none" : p_.form.Lbl_NextDownload.text()));
    return;
  }
  if (p_.form.Chk_Automatic.ticked() && !p_.flags.automatic_run && DueTime()) return;
  ShowNextDownload(*interval);
}

void Schedule::ShowNextDownload(std::int64_t al_Interval) {
  constexpr std::int64_t kMinute = 60;
  const DateTime next = NextOnGrid(p_.loop.Now(), al_Interval);
  // The label has no seconds: rounded down, a time between two minutes would be due twice.
  const DateTime shown = next + (kMinute - next.TimeOfDay() % kMinute) % kMinute;
  p_.form.Lbl_NextDownload.SetText(FormatDate(shown, kShownDatePattern));
  started_ = DateTime();
}

void Schedule::RecordDownload() {
  p_.form.Lbl_LastDownload.SetText(FormatDate(p_.loop.Now(), kShownDatePattern));
  CalculateNextDownload();
}

void Schedule::LimitMaxRetries() {
  const double retries = LeadingNumber(p_.form.Txt_MaxRetries.text());
  if (retries > kMostRetries) p_.form.Txt_MaxRetries.SetText(std::to_string(kMostRetries));
  if (!(retries >= kFewestRetries)) p_.form.Txt_MaxRetries.SetText(std::to_string(kFewestRetries));
}

}  // namespace corvane
