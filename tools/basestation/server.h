#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "exchange.h"
#include "log.h"
#include "pty.h"
#include "random.h"
#include "station.h"

namespace corvane::basestation {

/// Runs a station on a pseudo-terminal: cuts the input into command lines, sends the answers at the line's pace,
/// obeys escapes and signals.
class Server {
 public:
  struct Settings {
    std::int64_t baud = 0;         ///< 10 bits a byte; 0: as fast as the line takes them
    double clock_speed = 0;        ///< unit seconds that pass in a real second
    std::int64_t signal_step = 1;  ///< readings that every unit adds at SIGUSR1
    std::int64_t idle_exit = 0;    ///< seconds without input after which the server ends; 0: never
    std::string state_path;        ///< empty: the units' state is not kept
  };

  Server(Settings settings, Station& station, Pty& pty, Log& log);

  /// Serves until SIGTERM, SIGINT or SIGHUP (or idle); returns an empty text, or why the line was lost.
  ///
  /// `signals` is a signalfd descriptor of the blocked signals.
  [[nodiscard]] std::string Run(int signals);

 private:
  using Clock = std::chrono::steady_clock;

  void TakeInput(std::string_view bytes);
  void TakeLine();
  void EndAnswerThatIsOut();
  void TakeEscape();
  void Interrupt(std::string_view line, bool keep_rest);
  void Refill();
  void ActOnStep();
  void HangUp(std::int64_t back_after);
  [[nodiscard]] std::string ReopenWhenDue();
  void Send();
  [[nodiscard]] std::size_t Allowance();
  [[nodiscard]] bool MaySend() const;
  [[nodiscard]] Clock::time_point NextWake() const;
  [[nodiscard]] short Wait(int signals);
  void TakeSignals(int signals);
  void PassRealTime();
  void SaveState();

  Settings settings_;
  Station& station_;
  Pty& pty_;
  Log& log_;
  Random pieces_{1};
  std::string line_;                  ///< the command line as far as it has come in
  std::optional<Exchange> exchange_;  ///< the answer under way
  std::string out_;                   ///< bytes produced and not yet sent
  std::size_t sent_ = 0;              ///< how many of them are gone
  bool at_line_start_ = true;         ///< whether the last byte sent ended a line
  std::optional<Step> step_;          ///< what to do when `out_` is sent
  Clock::time_point resume_at_{};     ///< nothing is sent before
  Clock::time_point pace_from_{};     ///< when the byte after the last one may start
  Clock::time_point last_sent_{};
  std::optional<Clock::time_point> reopen_at_;
  Clock::time_point last_input_{};
  Clock::time_point units_time_{};
  bool stop_ = false;
  bool changed_ = false;  ///< the state file is out of date
};

}  // namespace corvane::basestation
