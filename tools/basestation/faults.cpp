#include "faults.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <optional>

#include "protocol.h"
#include "run_time_error.h"

namespace corvane::basestation {
namespace {

/// What a script may write behind the name of a fault.
struct KindRow {
  FaultKind kind;
  std::string_view name;
  std::string_view place;  ///< the word before the line number: "line", "after" or none
  std::int64_t default_line;
  bool takes_amount;
  bool takes_text;
  bool random;  ///< may strike by probability
};

constexpr KindRow kKinds[] = {
    {FaultKind::Error, "error", "after", 0, true, false, true},
    {FaultKind::Silence, "silence", "after", -1, false, false, true},
    {FaultKind::HangUp, "hang-up", "after", 0, false, false, true},
    {FaultKind::Babble, "babble", "after", 0, false, false, false},
    {FaultKind::Noise, "noise", "line", 0, true, false, true},
    {FaultKind::Flood, "flood", "line", 0, true, false, true},
    {FaultKind::Delay, "delay", "line", 0, true, false, true},
    {FaultKind::WrongItems, "wrong-items", "line", 1, false, false, true},
    {FaultKind::BadDate, "bad-date", "line", 1, false, false, true},
    {FaultKind::FutureDate, "future-date", "line", 1, false, false, true},
    {FaultKind::BadChecksum, "bad-checksum", "line", 1, false, false, true},
    {FaultKind::LowerChecksum, "lower-checksum", "line", 1, false, false, true},
    {FaultKind::NoiseWithin, "noise-within", "line", 1, true, false, true},
    {FaultKind::NoOk, "no-ok", "", 0, false, false, true},
    {FaultKind::Pieces, "pieces", "", 0, true, false, true},
    {FaultKind::Reply, "reply", "", 0, false, true, false},
    {FaultKind::Header, "header", "", 0, false, true, false},
};

const KindRow* FindKind(std::string_view name) {
  const auto* row =
      std::find_if(std::begin(kKinds), std::end(kKinds), [&](const KindRow& r) { return r.name == name; });
  return row == std::end(kKinds) ? nullptr : row;
}

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

/// The text with \r, \n, \e, \\ and \xHH replaced; throws at any other backslash.
std::string Unescaped(std::string_view text) {
  constexpr std::string_view kLetters = "rne\\";
  constexpr std::string_view kCharacters = "\r\n\x1b\\";
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      out += text[i];
      continue;
    }
    const char letter = ++i < text.size() ? text[i] : ' ';
    if (const std::size_t at = kLetters.find(letter); at != kLetters.npos) {
      out += kCharacters[at];
      continue;
    }
    unsigned char code = 0;
    const char* digits = text.data() + i + 1;
    if (letter != 'x' || i + 2 >= text.size() || std::from_chars(digits, digits + 2, code, 16).ptr != digits + 2) {
      throw RunTimeError("a backslash must be followed by r, n, e, \\ or xHH");
    }
    out += static_cast<char>(code);
    i += 2;
  }
  return out;
}

/// Reads the words behind the name of a fault.
void ParseArguments(const KindRow& row, const std::vector<std::string_view>& words, Fault& fault) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  for (std::size_t i = 1; i < words.size(); ++i) {
    const bool is_place = words[i] == row.place;
    const bool is_back = words[i] == "back" && row.kind == FaultKind::HangUp;
    if (words[i] == "random" && row.kind == FaultKind::Pieces) {
      continue;
    }
    if (is_place || is_back) ++i;
    const auto number = i < words.size() ? ParseInteger(words[i], 0, kMost) : std::nullopt;
    if (!number || !(is_place || is_back || row.takes_amount)) {
      throw RunTimeError(std::string(row.name) + " does not understand " +
                         Quoted(words[std::min(i, words.size() - 1)]));
    }
    if (is_place) {
      fault.line = *number + (row.place == "after" ? 1 : 0);
    } else {
      fault.amount = *number;
    }
  }
  if (fault.kind == FaultKind::Pieces && fault.amount == 0) {
    throw RunTimeError("pieces must have at least 1 byte");
  }
}

Fault ParseFault(std::string_view text) {
  const std::vector<std::string_view> words = Words(text);
  const KindRow* row = words.empty() ? nullptr : FindKind(words[0]);
  if (row == nullptr) {
    throw RunTimeError("there is no fault " + Quoted(words.empty() ? "" : words[0]));
  }
  Fault fault{row->kind, row->default_line, -1, {}};
  if (row->takes_text) {
    fault.text = Unescaped(Trim(Trim(text).substr(row->name.size())));
  } else {
    ParseArguments(*row, words, fault);
  }
  return fault;
}

}  // namespace

std::string_view FaultName(FaultKind kind) {
  return std::find_if(std::begin(kKinds), std::end(kKinds), [&](const KindRow& r) { return r.kind == kind; })->name;
}

FaultPlan::Rule FaultPlan::ParseRule(std::string_view line) {
  const std::size_t colon = line.find(':');
  const std::vector<std::string_view> words = Words(line.substr(0, colon));
  if (colon == line.npos || words.size() < 3 || words.size() > 4 || words[0] != "unit") {
    throw RunTimeError("a rule reads: unit UNITS COMMAND [ATTEMPTS]: FAULT");
  }
  const auto units = ParseNumberSet(words[1]);
  const auto attempts = words.size() == 4 ? ParseNumberSet(words[3]) : NumberSet();
  if (!units || !attempts) {
    throw RunTimeError(Quoted(units ? words[3] : words[1]) + " is neither *, a number, a range nor a list of these");
  }
  if (words[2] != "any" && !IsCommandName(words[2])) {
    throw RunTimeError("there is no command " + Quoted(words[2]));
  }
  return {*units, std::string(words[2]), *attempts, ParseFault(line.substr(colon + 1))};
}

void FaultPlan::ReadScript(std::istream& script) {
  std::string line;
  for (int number = 1; std::getline(script, line); ++number) {
    const std::string_view text = Trim(line);
    if (text.empty() || text.front() == '#') {
      continue;
    }
    try {
      rules_.push_back(ParseRule(text));
    } catch (const RunTimeError& error) {
      throw RunTimeError("line " + std::to_string(number) + ": " + error.what());
    }
  }
}

void FaultPlan::ReadProbabilities(std::string_view text) {
  for (const std::string_view part : Split(text, ',')) {
    const std::size_t equals = std::min(part.find('='), part.size());
    const KindRow* row = FindKind(Trim(part.substr(0, equals)));
    if (row == nullptr || !row->random) {
      throw RunTimeError("there is no random fault " + Quoted(part.substr(0, equals)));
    }
    const auto probability = equals < part.size() ? ParseNumber(Trim(part.substr(equals + 1))) : std::nullopt;
    if (!probability || !(*probability >= 0 && *probability <= 1)) {
      throw RunTimeError(std::string(row->name) + " needs a probability from 0 to 1");
    }
    chances_.push_back({row->kind, *probability});
  }
}

Fault FaultPlan::RandomFault(FaultKind kind, std::int64_t lines) {
  Fault fault;
  fault.kind = kind;
  fault.line = lines == 0 ? 0 : 1 + static_cast<std::int64_t>(random_.Below(static_cast<std::uint64_t>(lines)));
  if (kind == FaultKind::Error) fault.amount = 1 + static_cast<std::int64_t>(random_.Below(6));
  if (kind == FaultKind::HangUp) fault.amount = 500;
  const bool may_come_first = kind == FaultKind::Error || kind == FaultKind::Silence;
  if (may_come_first && random_.Chance(0.5)) fault.line = kind == FaultKind::Silence ? -1 : 0;
  return fault;
}

std::vector<Fault> FaultPlan::For(int unit, std::string_view command, std::int64_t attempt, std::int64_t lines) {
  std::vector<Fault> faults;
  for (const Rule& rule : rules_) {
    if (rule.units.Contains(unit) && (rule.command == "any" || rule.command == command) &&
        rule.attempts.Contains(attempt)) {
      faults.push_back(rule.fault);
    }
  }
  for (const Chance& chance : chances_) {
    if (random_.Chance(chance.probability)) faults.push_back(RandomFault(chance.kind, lines));
  }
  return faults;
}

}  // namespace corvane::basestation
