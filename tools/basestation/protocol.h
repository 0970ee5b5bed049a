#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvane::basestation {

/// The commands that a base station understands.
enum class Command { Download, SetDate, GetDate, SetLogPeriod, SetMode, SetDelays, ReadMemory, Test };

/// The numbers of the error replies, "ERROR" followed by one of these.
inline constexpr int kInvalidCommand = 1;
inline constexpr int kNoResponse = 2;
inline constexpr int kCancelled = 4;
inline constexpr int kBusy = 5;

/// One command line taken apart: which unit behind which relay shall do what.
struct Request {
  Command command = Command::Test;
  int relay = 0;
  int unit = 0;
  std::string_view parameters;
};

/// Takes a command line (without its carriage return) apart; nothing when it is not one. An empty line is `Test`.
[[nodiscard]] std::optional<Request> ParseRequest(std::string_view line);

/// The name of a command in scripts and logs, such as "get-date".
[[nodiscard]] std::string_view CommandName(Command command);

/// Whether a script may name this command.
[[nodiscard]] bool IsCommandName(std::string_view name);

/// Appends "$", the items, "*", their checksum and CR LF: the checksum is the exclusive-or of all characters of the
/// items as two upper-case hexadecimal digits, as in NMEA 0183 sentences.
void AppendFramed(std::string& out, std::string_view items);

/// Turns "$items" at the end of `out`, from position `frame` on, into a whole framed line.
void CloseFrame(std::string& out, std::size_t frame);

/// The line of an error reply, with CR LF.
[[nodiscard]] std::string ErrorLine(std::int64_t number);

}  // namespace corvane::basestation
