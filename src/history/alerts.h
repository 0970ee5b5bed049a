#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "form/form.h"
#include "history/alert_book.h"
#include "history/network_status.h"
#include "platform/command_runner.h"
#include "platform/event_loop.h"
#include "platform/history_records.h"
#include "trace/trace.h"

namespace corvane {

/// Tells people what is wrong with the network, by the command of the setting `AlertCommand`; without one it does
/// nothing.
///
/// One command runs at a time, beside whatever else is done. What has come about meanwhile is told by the next. What a
/// command that failed had to tell is told again behind the next round, or an hour later.
class Alerts {
 public:
  /// All must outlive this object.
  struct Parts {
    CommandRunner* runner;  ///< none: nobody is told
    const Form& form;
    EventLoop& loop;
    Trace& trace;
  };
  explicit Alerts(const Parts& av_Parts) : p_(av_Parts) {}
  ~Alerts();
  Alerts(const Alerts&) = delete;
  Alerts& operator=(const Alerts&) = delete;

  /// Whether there is a command.
  [[nodiscard]] bool SwitchedOn() const;
  /// Tells what a round has changed.
  void AfterRound(const NetworkStatus& av_Status);
  /// The same, where the history cannot be read: tells that.
  void AfterRoundInTheDark();
  /// Looks now and then, between rounds: for a digest, what has to be told again, and whether anybody collects.
  ///
  /// To be called with each heartbeat, by a program that stays; the first call looks at once, so that a program that
  /// starts late says so.
  void OnHeartbeat();

  // Set by the composition root.
  /// The alerts that stand in the history; asked for once.
  std::function<std::vector<AlertRecord>()> read_records;
  /// Keeps records in the history.
  std::function<void(const std::vector<AlertRecord>&)> write_records;
  /// How the network stands now; none when that cannot be known.
  std::function<std::optional<NetworkStatus>()> work_out_status;
  /// Why the history cannot be written; empty when it can.
  std::function<std::string()> history_problem;

 private:
  static constexpr std::int64_t kNoRound = -1;

  [[nodiscard]] bool DigestIsDueNow() const;
  [[nodiscard]] bool RoundHasEnded(const NetworkStatus& av_Status) const;
  void LookAt(const NetworkStatus& av_Status, bool ab_Known);
  void ReadStanding();
  void Take(AlertStep&& av_Step);
  void Tell(const std::vector<AlertEvent>& av_Events, const NetworkStatus& av_Status);
  void OnEnd(const CommandEnding& av_Ending);
  void LogOutput(const std::string& as_Output);

  Parts p_;
  std::vector<AlertRecord> standing_;
  std::set<AlertKey> perhaps_told_;       ///< by a command whose end a kill has hidden
  bool read_ = false;                     ///< what stands in the history is known
  std::vector<AlertRecord> told_;         ///< by the command that runs
  std::optional<NetworkStatus> waiting_;  ///< what is to be looked at when the command has ended
  bool waiting_is_known_ = false;         ///< whether it holds more than the time
  std::int64_t last_round_ = kNoRound;    ///< that was looked at
  std::int64_t next_look_ = 0;            ///< monotonic milliseconds
  bool held_ = false;                     ///< a command has failed: nothing before `next_look_` or a round's end
};

}  // namespace corvane
