#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "form/form.h"
#include "platform/event_loop.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// The automatic interval of a text in seconds: a time of day, or a number (24 and more hours, below it days).
/// None when the text is no interval or is not above zero.
[[nodiscard]] std::optional<std::int64_t> AutomaticInterval(std::string_view as_Text);
/// Why a text is no automatic interval, as the rest of a sentence.
[[nodiscard]] std::string WhyNoInterval(std::string_view as_Text);
/// The first time strictly after `av_Now` on the grid of whole intervals from the midnight before it.
[[nodiscard]] DateTime NextOnGrid(DateTime av_Now, std::int64_t al_Interval);

/// The heartbeat and the automatic schedule.
class Schedule {
 public:
  /// What the schedule works with; all must outlive it.
  struct Parts {
    Form& form;
    RunFlags& flags;
    const OperationSlot& slot;
    EventLoop& loop;
    Trace& trace;
  };
  explicit Schedule(const Parts& av_Parts) : p_(av_Parts) {}

  /// (Re)starts the heartbeat at a tick a minute or a second and runs one tick.
  void StartHeartbeat();
  void StopHeartbeat() { timer_->Stop(); }
  /// Shows the clock and the count-down of the minimised window, then checks the schedule. **Yields** when it starts a
  /// download.
  void HeartbeatTick();
  /// Starts the automatic download when it is due. **Yields.**
  void CheckSchedule();
  /// Recomputes the next download time. An interval that is none keeps the previous time and says so.
  ///
  /// While automatic download is on, a time that has passed is left to be started, never recomputed away; only an
  /// automatic run, which has just served it, moves it on.
  void CalculateNextDownload();
  /// Shows now as the time of the last download and recomputes the next.
  void RecordDownload();
  /// Forces the retry limit into 1 to 15.
  void LimitMaxRetries();

  /// Runs the download of all units as an automatic run; set by the composition root. **Yields.**
  std::function<void()> start_download;
  /// Called with each heartbeat, before the schedule is checked; set by the composition root.
  std::function<void()> on_heartbeat;

 private:
  /// The next download time; none when its label holds no date.
  [[nodiscard]] std::optional<DateTime> NextDownload() const;
  /// The next download time when it has passed and has not been started yet.
  [[nodiscard]] std::optional<DateTime> DueTime() const;
  void ShowNextDownload(std::int64_t al_Interval);
  void ShowRemainingTime();
  void RecomputeAfterClockWasSetBack();
  /// True while the schedule must keep its hands off: an operation runs or the program changes its own controls.
  [[nodiscard]] bool Held() const;
  [[nodiscard]] bool TicksEverySecond() const;

  Parts p_;
  std::unique_ptr<Timer> timer_ = p_.loop.MakeTimer([this] { HeartbeatTick(); });
  DateTime started_;  ///< the next download time that was started last and has not been recomputed since
};

}  // namespace corvane
