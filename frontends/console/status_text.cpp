#include "status_text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "base/format.h"
#include "base/numbers.h"
#include "base/outside_text.h"
#include "base/text.h"
#include "history/status_texts.h"
#include "history/unit_texts.h"
#include "text_table.h"

namespace corvane::console {
namespace {

constexpr std::size_t kNameWidth = 24;
constexpr std::size_t kNamesOnALine = 5;

std::string Volts(const UnitStatus& unit) {
  return unit.battery ? FixedText(*unit.battery, 2) : "";
}

std::string DaysLeft(const UnitStatus& unit) {
  return unit.battery_days ? FixedText(std::floor(*unit.battery_days), 0) : "";
}

std::string CountOrNothing(std::int64_t count) {
  return count == 0 ? "" : std::to_string(count);
}

std::string ShortName(const std::string& name) {
  const std::string_view cut = CutCharacters(name, kNameWidth);
  return cut.size() == name.size() ? name : std::string(CutCharacters(name, kNameWidth - 2)) + "..";
}

std::string Complete(const UnitStatus& unit, Moment now) {
  const std::string to = KnownToText(unit, now);
  return CompleteText(unit) + (to.empty() ? "" : " " + to);
}

std::vector<std::string> RowOf(const UnitStatus& unit, Moment now) {
  return {ShortName(unit.name),
          std::to_string(unit.id),
          std::string(NameOf(unit.state)),
          unit.last_reading.IsNone() ? "" : FormatDate(unit.last_reading, "yyyy-mm-dd HH:MM"),
          unit.asked == 0 ? "" : std::to_string(unit.answered) + "/" + std::to_string(unit.asked),
          Volts(unit),
          DaysLeft(unit),
          Complete(unit, now),
          CountOrNothing(unit.missing)};
}

void AppendLine(std::string& text, const std::string& line) {
  text += Printable(line) + "\n";
}

/// One line for each thing that is wrong with a unit, and one for its note.
void AppendWrong(std::string& text, const UnitStatus& unit) {
  const std::string lead = unit.name + ": ";
  const bool told = !unit.troubles.empty() && unit.why == unit.troubles.front().text;
  if (!unit.why.empty() && !told && unit.state != UnitState::Off) AppendLine(text, lead + unit.why);
  for (const Trouble& trouble : unit.troubles) {
    if (unit.state != UnitState::Off) AppendLine(text, lead + trouble.text);
  }
  if (!unit.delivery_problem.empty() && unit.state != UnitState::Off) {
    AppendLine(text, lead + "Its file has not got to the server" +
                         (unit.delivered.IsNone() ? "" : " since " + WhenText(unit.delivered)) + ": " +
                         unit.delivery_problem);
  }
  if (!unit.note.empty()) AppendLine(text, lead + "Note: " + unit.note);
}

struct CheckWord {
  NetworkLetter letter;
  std::string_view word;
  int exit_status;
};

constexpr std::array kCheckWords = {
    CheckWord{NetworkLetter::Well, "OK", 0},           CheckWord{NetworkLetter::Warning, "WARNING", 1},
    CheckWord{NetworkLetter::Critical, "CRITICAL", 2}, CheckWord{NetworkLetter::NobodyCollects, "CRITICAL", 2},
    CheckWord{NetworkLetter::Empty, "UNKNOWN", 3},
};

/// One line without the sign that begins the figures.
std::string PluginText(const std::string& text) {
  std::string line = Printable(text);
  std::replace(line.begin(), line.end(), '|', '/');
  return line;
}

std::string NamesOf(const NetworkStatus& status, UnitState state) {
  std::string names;
  std::size_t count = 0;
  for (const UnitStatus& unit : status.units) {
    if (unit.state != state || unit.silenced || ++count > kNamesOnALine) continue;
    names += (names.empty() ? "" : ", ") + unit.name;
  }
  if (count == 0) return "";
  if (count > kNamesOnALine) names += " and " + std::to_string(count - kNamesOnALine) + " more";
  return "; " + std::string(NameOf(state)) + ": " + names;
}

std::string Figures(const NetworkStatus& status) {
  std::string figures;
  for (std::size_t i = 0; i < status.counts.size(); ++i) {
    figures += " " + std::string(NameOf(static_cast<UnitState>(i))) + "=" + std::to_string(status.counts[i]);
  }
  std::int64_t missing = 0;
  for (const UnitStatus& unit : status.units) missing += unit.missing;
  return figures + " missing=" + std::to_string(missing);
}

}  // namespace

std::string StatusTable(const NetworkStatus& status) {
  std::string text;
  AppendLine(text, status.sentence);
  if (!status.nobody_collects.empty() && !status.units.empty()) AppendLine(text, CountsText(status));
  if (!status.last_round.empty()) AppendLine(text, "Last round: " + status.last_round);
  if (!status.next_round.IsNone()) AppendLine(text, "Next round: " + WhenText(status.next_round));
  if (status.units.empty()) return text;
  std::vector<std::vector<std::string>> rows;
  for (const UnitStatus& unit : status.units) rows.push_back(RowOf(unit, status.now));
  text += "\n" + FormatTable({{"Unit"},
                              {"ID", true},
                              {"State"},
                              {"Last reading"},
                              {"Answered", true},
                              {"Volts", true},
                              {"Days", true},
                              {"30 days %", true},
                              {"Missing", true}},
                             rows);
  std::string wrong;
  for (const UnitStatus& unit : status.units) AppendWrong(wrong, unit);
  return wrong.empty() ? text : text + "\n" + wrong;
}

CheckResult StatusCheck(const NetworkStatus& status) {
  const auto* const word = std::find_if(kCheckWords.begin(), kCheckWords.end(),
                                        [&status](const CheckWord& each) { return each.letter == status.letter; });
  const std::string text = std::string(word->word) + " - " + status.sentence + NamesOf(status, UnitState::Silent) +
                           NamesOf(status, UnitState::Late) + NamesOf(status, UnitState::Trouble);
  return {PluginText(text) + " |" + Figures(status) + "\n", word->exit_status};
}

CheckResult CheckUnknown(const std::string& why) {
  return {PluginText("UNKNOWN - " + why) + "\n", 3};
}

}  // namespace corvane::console
