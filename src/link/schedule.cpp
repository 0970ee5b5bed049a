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

DateTime NextOnGrid(DateTime av_Now, std::int64_t al_Interval) {
  return av_Now.Midnight() + (av_Now.TimeOfDay() / al_Interval + 1) * al_Interval;
}

Schedule::Schedule(Form& av_Form, RunFlags& av_Flags, const OperationSlot& av_Slot, EventLoop& av_Loop, Trace& av_Trace)
    : form_(av_Form),
      flags_(av_Flags),
      slot_(av_Slot),
      loop_(av_Loop),
      trace_(av_Trace),
      timer_(av_Loop.MakeTimer([this] { HeartbeatTick(); })) {}

void Schedule::StartHeartbeat() {
  timer_->Stop();
  timer_->Start(form_.Opt_HeartBeat.GetOptionIndex() == 0 ? kMinuteTick : kSecondTick);
  HeartbeatTick();
}

bool Schedule::TicksEverySecond() const {
  return timer_->Interval() == kSecondTick;
}

bool Schedule::Held() const {
  return form_.Suppress.set() || slot_.Taken() || flags_.closing;
}

std::optional<DateTime> Schedule::NextDownload() const {
  const auto next = ParseDate(form_.Lbl_NextDownload.text());
  if (!next || next->seconds() < kEarliestDate) return std::nullopt;
  return next;
}

std::optional<DateTime> Schedule::DueTime() const {
  const auto next = NextDownload();
  if (!next || loop_.Now() <= *next || *next == started_) return std::nullopt;
  return next;
}

void Schedule::HeartbeatTick() {
  form_.Lbl_Now.SetText(FormatDate(loop_.Now(), TicksEverySecond() ? "d mmm yyyy HH:MM:SS" : kShownDatePattern));
  form_.Lbl_Now.Repaint();
  if (form_.Chk_Automatic.ticked() && !Held()) {
    RecomputeAfterClockWasSetBack();
    if (form_.Frm_Main.minimised()) ShowRemainingTime();
  }
  CheckSchedule();
}

void Schedule::ShowRemainingTime() {
  const auto next = NextDownload();
  if (!next) return;
  const std::int64_t remaining = *next - loop_.Now();
  form_.Frm_Main.SetTitle((remaining < 0 ? "-" : "") + DurationText(remaining, TicksEverySecond()));
}

void Schedule::RecomputeAfterClockWasSetBack() {
  const auto next = NextDownload();
  const auto interval = AutomaticInterval(form_.Txt_AutomaticInterval.text());
  if (next && interval && *next > loop_.Now() + *interval) ShowNextDownload(*interval);
}

void Schedule::CheckSchedule() {
  if (Held() || !form_.Chk_Automatic.ticked() || !start_download) return;
  const auto due = DueTime();
  if (!due) return;
  started_ = *due;
  const AutomaticRun automatic(flags_);
  start_download();
}

void Schedule::CalculateNextDownload() {
  const std::string& text = form_.Txt_AutomaticInterval.text();
  const auto interval = AutomaticInterval(text);
  if (!interval) {
    trace_.Status("\"" + text + "\" is no interval above zero: the next download stays at " +
                  (form_.Lbl_NextDownload.text().empty() ? "none" : form_.Lbl_NextDownload.text()));
    return;
  }
  if (form_.Chk_Automatic.ticked() && !flags_.automatic_run && DueTime()) return;
  ShowNextDownload(*interval);
}

void Schedule::ShowNextDownload(std::int64_t al_Interval) {
  constexpr std::int64_t kMinute = 60;
  const DateTime next = NextOnGrid(loop_.Now(), al_Interval);
  // The label has no seconds: rounded down, a time between two minutes would be due twice.
  const DateTime shown = next + (kMinute - next.TimeOfDay() % kMinute) % kMinute;
  form_.Lbl_NextDownload.SetText(FormatDate(shown, kShownDatePattern));
  started_ = DateTime();
}

void Schedule::LimitMaxRetries() {
  const double retries = LeadingNumber(form_.Txt_MaxRetries.text());
  if (retries > kMostRetries) form_.Txt_MaxRetries.SetText(std::to_string(kMostRetries));
  if (!(retries >= kFewestRetries)) form_.Txt_MaxRetries.SetText(std::to_string(kFewestRetries));
}

}  // namespace corvane
