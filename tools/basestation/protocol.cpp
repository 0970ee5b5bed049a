#include "protocol.h"

#include <algorithm>
#include <iterator>

#include "text.h"

namespace corvane::basestation {
namespace {

struct CommandRow {
  Command command;
  std::string_view code;
  std::string_view name;
};

constexpr CommandRow kCommands[] = {
    {Command::Download, "rr", "download"},      {Command::SetDate, "WT", "set-date"},
    {Command::GetDate, "rt", "get-date"},       {Command::SetLogPeriod, "WI", "set-log-period"},
    {Command::SetMode, "SM", "set-mode"},       {Command::SetDelays, "SD", "set-delays"},
    {Command::ReadMemory, "rm", "read-memory"}, {Command::Test, "", "test"},
};

constexpr std::string_view kHexDigits = "0123456789ABCDEF";
constexpr std::string_view kAddressShape = "RRRRR:UUUUU:PP";
constexpr std::size_t kHeadSize = kAddressShape.size() + 3;

std::optional<int> ParseIdentifier(std::string_view text) {
  const bool digits = text.size() == 5 && text.find_first_not_of("0123456789") == text.npos;
  const auto number = digits ? ParseInteger(text, 0, 99999) : std::nullopt;
  return number ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

}  // namespace

std::optional<Request> ParseRequest(std::string_view line) {
  if (line.empty()) {
    return Request{};
  }
  if (line.size() < kHeadSize || line[5] != ':' || line[11] != ':' || line[kHeadSize - 1] != ' ') {
    return std::nullopt;
  }
  const auto relay = ParseIdentifier(line.substr(0, 5));
  const auto unit = ParseIdentifier(line.substr(6, 5));
  const bool password = line.substr(12, 2).find_first_not_of(kHexDigits) == line.npos;
  const std::string_view code = line.substr(kAddressShape.size(), 2);
  const auto* row =
      std::find_if(std::begin(kCommands), std::end(kCommands), [code](const CommandRow& r) { return r.code == code; });
  if (!relay || !unit || !password || row == std::end(kCommands)) {
    return std::nullopt;
  }
  return Request{row->command, *relay, *unit, line.substr(kHeadSize)};
}

std::string_view CommandName(Command command) {
  return std::find_if(std::begin(kCommands), std::end(kCommands),
                      [command](const CommandRow& r) { return r.command == command; })
      ->name;
}

bool IsCommandName(std::string_view name) {
  return std::any_of(std::begin(kCommands), std::end(kCommands),
                     [name](const CommandRow& r) { return r.name == name; });
}

void AppendFramed(std::string& out, std::string_view items) {
  const std::size_t frame = out.size();
  out += '$';
  out += items;
  CloseFrame(out, frame);
}

void CloseFrame(std::string& out, std::size_t frame) {
  unsigned sum = 0;
  for (std::size_t i = frame + 1; i < out.size(); ++i) sum ^= static_cast<unsigned char>(out[i]);
  const char end[] = {'*', kHexDigits[sum >> 4], kHexDigits[sum & 15], '\r', '\n'};
  out.append(end, sizeof end);
}

std::string ErrorLine(std::int64_t number) {
  return "ERROR " + std::to_string(number) + "\r\n";
}

}  // namespace corvane::basestation
