#include "station.h"

#include <algorithm>
#include <charconv>
#include <istream>
#include <optional>
#include <ostream>

#include "random.h"
#include "run_time_error.h"
#include "text.h"

namespace corvane::basestation {
namespace {

constexpr std::string_view kDone = "OK\r\n";

std::optional<Seconds> ParseLogPeriod(std::string_view hex) {
  unsigned minutes = 0;
  const bool digits = hex.size() == 2 && hex.find_first_not_of("0123456789ABCDEF") == hex.npos;
  if (!digits || std::from_chars(hex.data(), hex.data() + 2, minutes, 16).ec != std::errc{} || minutes == 0) {
    return std::nullopt;
  }
  return minutes * kMinute;
}

std::string MemoryLine(const Unit& unit) {
  std::string line = "Readings " + std::to_string(unit.readings()) + ", last ";
  if (unit.memory().empty()) {
    line += "none";
  } else {
    AppendTime(line, unit.last_reading());
  }
  line += ", log period " + std::to_string(unit.period() / kMinute) + " min\r\n";
  return line;
}

}  // namespace

Station::Station(Settings settings, std::vector<Unit> units, FaultPlan faults)
    : settings_(settings), faults_(std::move(faults)) {
  for (Unit& unit : units) units_.emplace(unit.id(), std::move(unit));
}

Exchange Station::Answer(std::string_view line) {
  const std::string echo = settings_.echo ? std::string(line) + "\r\n" : std::string();
  const std::uint64_t seed = Mix(settings_.seed) + exchanges_++;
  last_faults_.clear();
  const auto request = ParseRequest(line);
  if (!request) {
    return {echo, ErrorLine(kInvalidCommand), {}, seed};
  }
  if (request->command == Command::Test) {
    return {echo, "Corvane base station " CORVANE_VERSION " ready\r\n", FaultsOf(*request), seed};
  }
  const auto found = units_.find(request->unit);
  if (found == units_.end() || found->second.relay() != request->relay) {
    return {echo, ErrorLine(kNoResponse), {}, seed};
  }
  Unit& unit = found->second;
  if (request->command != Command::Download) {
    std::vector<Fault> faults = FaultsOf(*request);
    const bool reached = std::none_of(faults.begin(), faults.end(), [](const Fault& fault) {
      return fault.kind == FaultKind::Error && fault.line <= 0;
    });
    return {echo, reached ? ReplyOf(*request, unit) : ErrorLine(kNoResponse), std::move(faults), seed};
  }
  const auto after = request->parameters.size() == 10 ? ParseTimeDigits(request->parameters) : std::nullopt;
  if (!after) {
    return {echo, ErrorLine(kInvalidCommand), {}, seed};
  }
  Selection readings = unit.Later(*after);
  std::vector<Fault> faults = FaultsOf(*request, readings);
  return {echo, unit, std::move(readings), std::move(faults), seed};
}

std::string Station::ReplyOf(const Request& request, Unit& unit) {
  const bool bare = request.parameters.empty();
  const std::string refusal = ErrorLine(kInvalidCommand);
  switch (request.command) {
    case Command::SetDate: {
      const auto clock = request.parameters.size() == 12 ? ParseTimeDigits(request.parameters) : std::nullopt;
      if (clock) unit.SetClock(*clock);
      return clock ? std::string(kDone) : refusal;
    }
    case Command::SetLogPeriod: {
      const auto period = ParseLogPeriod(request.parameters);
      if (period) unit.SetPeriod(*period);
      return period ? std::string(kDone) : refusal;
    }
    case Command::GetDate: {
      std::string line;
      AppendTimeWithSeconds(line, unit.clock());
      return bare ? line + "\r\n" : refusal;
    }
    case Command::ReadMemory:
      return bare ? MemoryLine(unit) : refusal;
    default:
      return std::string(kDone);
  }
}

std::vector<Fault> Station::FaultsOf(const Request& request, const Selection& readings) {
  const std::int64_t attempt = ++attempts_[{request.unit, request.command}];
  std::vector<Fault> faults = faults_.For(request.unit, CommandName(request.command), attempt, readings.size());
  if (more_faults) {
    for (Fault& fault : more_faults(request, readings)) faults.push_back(std::move(fault));
  }
  for (const Fault& fault : faults) {
    last_faults_ += last_faults_.empty() ? "" : ", ";
    last_faults_ += FaultName(fault.kind);
  }
  return faults;
}

void Station::Finish(const Exchange& exchange) {
  const auto unit = units_.find(exchange.download_unit());
  if (exchange.complete() && unit != units_.end()) unit->second.PassReadings(settings_.advance);
}

Unit* Station::Find(int id) {
  const auto found = units_.find(id);
  return found == units_.end() ? nullptr : &found->second;
}

void Station::PassReadings(std::int64_t count) {
  for (auto& [id, unit] : units_) unit.PassReadings(count);
}

void Station::PassTime(Seconds seconds) {
  for (auto& [id, unit] : units_) unit.PassTime(seconds);
}

std::string Station::StateHeader() const {
  const int sensors = units_.empty() ? 0 : units_.begin()->second.soil().sensors();
  return "seed " + std::to_string(settings_.seed) + " sensors " + std::to_string(sensors);
}

void Station::Restore(std::istream& state) {
  std::string line;
  if (!std::getline(state, line)) {
    return;
  }
  if (line != StateHeader()) {
    throw RunTimeError("was written with other options (" + line + ")");
  }
  while (std::getline(state, line)) {
    const std::size_t colon = line.find(':');
    const auto id = ParseInteger(std::string_view(line).substr(0, colon), 1, 99999);
    const auto unit = id ? units_.find(static_cast<int>(*id)) : units_.end();
    if (!id || colon == line.npos ||
        (unit != units_.end() && !unit->second.Restore(std::string_view(line).substr(colon + 1)))) {
      throw RunTimeError("holds a line that is no unit's state: " + line);
    }
  }
}

void Station::WriteState(std::ostream& out) const {
  out << StateHeader() << '\n';
  for (const auto& [id, unit] : units_) out << id << ": " << unit.State() << '\n';
}

}  // namespace corvane::basestation
