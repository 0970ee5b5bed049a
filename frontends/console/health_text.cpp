#include "health_text.h"

#include <algorithm>
#include <vector>

#include "base/format.h"
#include "base/numbers.h"
#include "base/outside_text.h"
#include "base/text.h"
#include "link/exchange.h"
#include "text_table.h"

namespace corvane::console {
namespace {

std::vector<std::string> RowOf(const ContactRecord& contact) {
  return {FormatDate(contact.at.Local(), "yyyy-mm-dd HH:MM"),
          ToLower(CommandOf(contact.command).name),
          std::string(NameOf(contact.outcome)),
          std::to_string(contact.tries),
          std::to_string(contact.stored),
          std::to_string(contact.rejected),
          FixedText(static_cast<double>(contact.milliseconds_on_air) / 1000, 1),
          contact.error};
}

/// The subject in a column of its own, named once.
std::string Aligned(const std::vector<HealthLine>& lines) {
  std::vector<std::vector<std::string>> rows;
  std::string before;
  for (const HealthLine& line : lines) {
    rows.push_back({line.about == before ? "" : line.about, line.text});
    before = line.about;
  }
  std::string table = FormatTable({{""}, {""}}, rows);
  return table.substr(table.find('\n') + 1);
}

}  // namespace

std::string HealthText(const UnitStatus& unit, const UnitHealth& health) {
  std::string text = unit.name + " (ID " + std::to_string(unit.id) +
                     (unit.client.empty() ? "" : ", client " + unit.client) + ", file " + unit.file + ")";
  text = Printable(text) + "\n\n" + Aligned(health.lines);
  if (!health.contacts.empty()) {
    std::vector<std::vector<std::string>> rows;
    for (const ContactRecord& contact : health.contacts) rows.push_back(RowOf(contact));
    text += "\n" + FormatTable({{"Last contacts"},
                                {"Asked to"},
                                {"Outcome"},
                                {"Tries", true},
                                {"Stored", true},
                                {"Rejected", true},
                                {"Seconds", true},
                                {"Error"}},
                               rows);
  }
  if (health.take_along.empty()) return text;
  text += "\nTake along:\n";
  for (const HealthLine& thing : health.take_along) text += "* " + Printable(thing.about + ": " + thing.text) + "\n";
  return text;
}

}  // namespace corvane::console
