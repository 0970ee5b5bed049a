#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "conversation.h"
#include "log.h"
#include "pty.h"
#include "random.h"
#include "station.h"

namespace corvane::basestation {

/// Carries a conversation over a pseudo-terminal in real time: the line's pace, hang-ups, signals, the state file.
class Server {
 public:
  struct Settings {
    std::int64_t baud = 0;         ///< 10 bits a byte; 0: as fast as the line takes them
    double clock_speed = 0;        ///< unit seconds that pass in a real second
    std::int64_t signal_step = 1;  ///< readings that every unit adds at SIGUSR1
    std::int64_t idle_exit = 0;    ///< seconds without input after which the server ends; 0: never
    int lifeline = -1;             ///< a descriptor at whose end the server ends; -1: none
    bool end_with_link = false;    ///< the server ends when its link is gone
    std::string state_path;        ///< empty: the units' state is not kept
  };

  Server(Settings settings, Station& station, Pty& pty, Log& log);
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Serves until SIGTERM, SIGINT or SIGHUP, or as the settings say; throws `RunTimeError` when the line is lost.
  ///
  /// `signals` is a signalfd descriptor of the blocked signals.
  void Run(int signals);

 private:
  using Clock = std::chrono::steady_clock;

  void TakeInput(std::string_view bytes);
  void HangUpWhenRead();
  void ReopenWhenDue();
  void Send();
  [[nodiscard]] std::size_t Allowance();
  [[nodiscard]] bool MaySend() const;
  [[nodiscard]] Clock::time_point NextWake() const;
  [[nodiscard]] short Wait(int signals);
  void TakeSignals(int signals);
  /// True when the lifeline has come to its end or the link has gone.
  [[nodiscard]] bool LeftAlone();
  void PassRealTime();
  void KeepState();

  Settings settings_;
  Station& station_;
  Pty& pty_;
  Log& log_;
  Conversation conversation_;
  Random pieces_{1};
  Clock::time_point hold_until_{};  ///< the application has to read first; looked at again then
  Clock::time_point pace_from_{};   ///< when the byte after the last one may start
  Clock::time_point last_sent_{};
  std::optional<Clock::time_point> reopen_at_;
  Clock::time_point last_input_{};
  Clock::time_point units_time_{};
  Clock::time_point look_at_link_{};  ///< when to look whether the link is there
  bool stop_ = false;
  bool changed_ = false;  ///< the state file is out of date
};

}  // namespace corvane::basestation
