#include "options.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "text.h"

namespace corvane::basestation {
namespace {

constexpr int kHighestId = 99999;

/// What was written, before units and relays are brought together.
struct Raw {
  Options options;
  std::string units = "5";
  std::string relays;
};

struct OptionRow {
  std::string_view name;
  std::string_view value;  ///< what the value is called in the help, empty for a switch
  std::string_view help;
  void (*take)(Raw& raw, const std::string& value);
};

std::int64_t Number(const std::string& value, std::int64_t least, std::int64_t most) {
  const auto number = ParseInteger(value, least, most);
  if (!number) {
    throw UsageError("\"" + value + "\" is not a number from " + std::to_string(least) + " to " + std::to_string(most));
  }
  return *number;
}

Seconds ParseStartDate(const std::string& value) {
  const auto time = ParseTime(value);
  if (!time || *time < *TimeOf(2001, 1, 1, 0, 0, 0) || *time > *TimeOf(2099, 12, 31, 23, 59, 0)) {
    throw UsageError("\"" + value + "\" is not a date such as \"2010/03/12 14:05\" in the years 2001 to 2099");
  }
  return *time;
}

double ParseSpeed(const std::string& value) {
  const auto speed = ParseNumber(value);
  if (!speed || !(*speed >= 0 && *speed <= 1e6)) {
    throw UsageError("\"" + value + "\" is not a number from 0 to 1000000");
  }
  return *speed;
}

constexpr OptionRow kOptions[] = {
    {"--link", "PATH", "make PATH a symbolic link to the device; removed at the end",
     [](Raw& raw, const std::string& value) { raw.options.link = value; }},
    {"--units", "N|LIST", "N units numbered from 1, or a list such as 1-3,17@4 (unit 17 behind relay 4);\n5",
     [](Raw& raw, const std::string& value) { raw.units = value; }},
    {"--relays", "N|LIST",
     "put the units listed without @ behind relays 1 to N, or those listed, in turn;\n"
     "none: units are reached directly (relay 0)",
     [](Raw& raw, const std::string& value) { raw.relays = value; }},
    {"--readings", "N", "readings in each unit's memory at the start; 100",
     [](Raw& raw, const std::string& value) { raw.options.readings = Number(value, 0, 50'000'000); }},
    {"--interval", "MINUTES", "log period, 1 to 255; 15",
     [](Raw& raw, const std::string& value) { raw.options.interval = Number(value, 1, 255); }},
    {"--sensors", "N", "sensors of each unit, 0 to 20; 3",
     [](Raw& raw, const std::string& value) { raw.options.sensors = Number(value, 0, 20); }},
    {"--seed", "N", "number that all readings and random faults follow from; 1",
     [](Raw& raw, const std::string& value) { raw.options.seed = Number(value, 0, 1'000'000'000); }},
    {"--start", "DATE", "date of the first reading; \"2010/03/12 00:00\"",
     [](Raw& raw, const std::string& value) { raw.options.start = ParseStartDate(value); }},
    {"--advance", "N",
     "after a complete download the unit's clock moves on by N readings; also what\n"
     "SIGUSR1 adds to every unit (at least 1); 0",
     [](Raw& raw, const std::string& value) { raw.options.advance = Number(value, 0, 1'000'000); }},
    {"--clock-speed", "X", "let the units' clocks run X times as fast as real time; 0: they stand still",
     [](Raw& raw, const std::string& value) { raw.options.clock_speed = ParseSpeed(value); }},
    {"--baud", "N", "send no faster than a line of N baud; unpaced",
     [](Raw& raw, const std::string& value) { raw.options.baud = Number(value, 1, 10'000'000); }},
    {"--no-echo", "", "do not repeat the command line before the answer",
     [](Raw& raw, const std::string&) { raw.options.echo = false; }},
    {"--state", "FILE", "keep the units' clocks and memories in FILE from run to run",
     [](Raw& raw, const std::string& value) { raw.options.state = value; }},
    {"--script", "FILE", "make the faults that FILE describes, such as: unit 3 download 1-2: error 2",
     [](Raw& raw, const std::string& value) { raw.options.script = value; }},
    {"--faults", "LIST", "make random faults, such as bad-checksum=0.1,silence=0.02 (probability a command)",
     [](Raw& raw, const std::string& value) { raw.options.faults = value; }},
    {"--log", "FILE", "add a line for each command, answer and fault to FILE (- is the error output)",
     [](Raw& raw, const std::string& value) { raw.options.log = value; }},
    {"--idle-exit", "SECONDS", "end after so many seconds without input",
     [](Raw& raw, const std::string& value) { raw.options.idle_exit = Number(value, 1, 1'000'000); }},
    {"--end-with-input", "", "end when the standard input does, so together with the program at its other end",
     [](Raw& raw, const std::string&) { raw.options.end_with_input = true; }},
    {"--end-with-link", "", "end within a second when somebody has removed the link",
     [](Raw& raw, const std::string&) { raw.options.end_with_link = true; }},
    {"--help", "", "show this text", [](Raw& raw, const std::string&) { raw.options.help = true; }},
    {"--version", "", "show the version", [](Raw& raw, const std::string&) { raw.options.version = true; }},
};

/// The numbers of "N" (1 to N) or of a list of numbers and ranges.
std::vector<int> ParseIds(std::string_view text) {
  const auto bad = [text] { return UsageError("\"" + std::string(text) + "\" is no number or list of identifiers"); };
  const std::size_t dash = text.find('-');
  const auto low = ParseInteger(text.substr(0, dash), 1, kHighestId);
  const auto high = dash == text.npos ? low : ParseInteger(text.substr(dash + 1), 1, kHighestId);
  if (!low || !high || *low > *high) {
    throw bad();
  }
  std::vector<int> ids;
  for (auto id = *low; id <= *high; ++id) ids.push_back(static_cast<int>(id));
  return ids;
}

/// "N" alone means 1 to N; anything else is a list as it stands.
std::string Spelled(const std::string& text) {
  return ParseInteger(text, 1, kHighestId) ? "1-" + text : text;
}

std::vector<int> ParseRelays(const std::string& text) {
  std::vector<int> ids;
  if (text.empty() || text == "0") {
    return ids;
  }
  const std::string list = Spelled(text);
  for (const std::string_view part : Split(list, ',')) {
    const std::vector<int> more = ParseIds(part);
    ids.insert(ids.end(), more.begin(), more.end());
  }
  return ids;
}

std::vector<Place> ParsePlaces(const std::string& units, const std::vector<int>& relay_ids) {
  const std::string list = Spelled(units);
  std::vector<Place> places;
  std::set<int> seen;
  std::size_t turn = 0;
  for (const std::string_view part : Split(list, ',')) {
    const std::size_t at = part.find('@');
    const auto named = at == part.npos ? std::nullopt : ParseInteger(part.substr(at + 1), 0, kHighestId);
    if (at != part.npos && !named) {
      throw UsageError("\"" + std::string(part) + "\" names no relay after the @");
    }
    for (const int id : ParseIds(part.substr(0, at))) {
      const int dealt = relay_ids.empty() || named ? 0 : relay_ids[turn++ % relay_ids.size()];
      places.push_back({id, named ? static_cast<int>(*named) : dealt});
      if (!seen.insert(id).second) throw UsageError("unit " + std::to_string(id) + " is listed twice");
    }
  }
  return places;
}

}  // namespace

Options ParseOptions(const std::vector<std::string>& arguments) {
  Raw raw;
  raw.options.start = *TimeOf(2010, 3, 12, 0, 0, 0);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::size_t equals = std::min(arguments[i].find('='), arguments[i].size());
    const std::string name = arguments[i].substr(0, equals);
    const auto* row = std::find_if(std::begin(kOptions), std::end(kOptions),
                                   [&name](const OptionRow& option) { return option.name == name; });
    const bool attached = equals < arguments[i].size();
    if (row == std::end(kOptions) || (attached && row->value.empty())) {
      throw UsageError("unknown argument \"" + arguments[i] + "\"");
    }
    if (!row->value.empty() && !attached && i + 1 == arguments.size()) {
      throw UsageError(name + " needs a value");
    }
    try {
      row->take(raw, attached ? arguments[i].substr(equals + 1) : row->value.empty() ? "" : arguments[++i]);
    } catch (const UsageError& error) {
      throw UsageError(name + ": " + error.what());
    }
  }
  raw.options.places = ParsePlaces(raw.units, ParseRelays(raw.relays));
  const Options& options = raw.options;
  if (options.start + options.readings * options.interval * kMinute > *TimeOf(2099, 1, 1, 0, 0, 0)) {
    throw UsageError("so many readings at this interval end after the year 2098: choose fewer or an earlier start");
  }
  if (options.end_with_link && options.link.empty()) throw UsageError("--end-with-link needs --link");
  return options;
}

std::string HelpText() {
  constexpr std::size_t kColumn = 24;
  std::string text =
      "Usage: corvane-basestation [OPTION]...\n"
      "Plays a radio base station with relays and field units on a pseudo-terminal, for trying, training and\n"
      "testing. Prints \"ready: DEVICE\" when an application can open the device. Ends on SIGTERM or Ctrl-C.\n\n"
      "Options (the text ends with the default, where there is one):\n";
  for (const OptionRow& option : kOptions) {
    std::string line = "  " + std::string(option.name);
    if (!option.value.empty()) line += " " + std::string(option.value);
    line.resize(std::max(line.size() + 1, kColumn), ' ');
    for (const char character : option.help) {
      line += character;
      if (character == '\n') line.append(kColumn, ' ');
    }
    text += line + "\n";
  }
  return text +
         "\nSIGUSR1 lets time pass until every unit has new readings (--advance, at least 1).\n"
         "Exit status: 0 ended as asked, 2 wrong usage, 3 could not start or lost its line.\n";
}

std::string VersionText() {
  return "corvane-basestation " CORVANE_VERSION "\n";
}

}  // namespace corvane::basestation
