#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/dates.h"
#include "form/form.h"
#include "link/link_writer.h"
#include "link/pause.h"
#include "link/reply_timer.h"
#include "platform/event_loop.h"
#include "state/link_state.h"
#include "state/records.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// One row of the command table.
struct CommandInfo {
  std::string_view code;
  std::string_view name;
  std::int64_t lines_expected;
};
/// The row of a command number, 0 to `kLastState`; the spare row for any other.
[[nodiscard]] const CommandInfo& CommandOf(std::int16_t ai_Command);
/// The serial port index of a unit that is reached without a serial port.
inline constexpr std::int16_t kNoPort = 99;
/// The serial port index of a connection type: radio 0, hand-held 1, any other `kNoPort`.
[[nodiscard]] std::int16_t PortIndexForUnit(std::int32_t al_GetFrom);
/// The command line for a unit: address, code, one blank, parameters; empty for the test command.
/// Format: docs/formats/wire-lines.md.
[[nodiscard]] std::string BuildCommandLine(const Registry& av_Registry, const Unit& av_Unit, std::int16_t ai_Command,
                                           std::string_view as_Parameters);
/// The parameters of a download: "yymmddHHNN" of the last reading, "0001010000" when there is none.
[[nodiscard]] std::string DownloadParameters(DateTime av_LastDate);
/// The minutes of a log-period text (a time of day, or a number of minutes) that a unit can take: whole ones, 1 to 255.
[[nodiscard]] std::optional<int> LogPeriodMinutes(std::string_view as_LogPeriod);
/// A log-period text (time of day or number of minutes) as two hexadecimal digits of whole minutes; "00" for any other.
[[nodiscard]] std::string LogPeriodParameters(std::string_view as_LogPeriod);

/// The exchange of one command and its answer.
class Exchange {
 public:
  /// What an exchange works with; all must outlive it.
  struct Parts {
    Form& form;
    LinkState& link;
    const RunFlags& flags;
    EventLoop& loop;
    LinkWriter& writer;
    ReplyTimer& timer;
    Pauser& pauser;
    Trace& trace;
  };
  explicit Exchange(const Parts& av_Parts) : p_(av_Parts) {}

  /// Sends one line and its carriage return. **Yields** when "Slow send" is ticked.
  void SendLine(std::string_view as_Line);
  /// Sends one line and its carriage return, and starts the count-down. **Yields** when "Slow send" is ticked.
  void SendCommand(std::string_view as_Line);
  /// Declares which answer is awaited, 0 to `kLastState`.
  void SetState(std::int16_t ai_Command);
  /// Waits until the answer is complete or the exchange failed, was cancelled or the program closes. **Yields.**
  void WaitForChangeOfState();
  /// Declares the awaited answer complete.
  void SetStateFinished();

 private:
  /// What has left of the line and its carriage return.
  [[nodiscard]] std::string SendSlowly(const std::string& as_Line);
  /// Cancelled, failed, out of time or closing.
  [[nodiscard]] bool Ended() const;

  Parts p_;
};

}  // namespace corvane
