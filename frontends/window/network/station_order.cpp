#include "window/network/station_order.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "window/network/network_phrases.h"

namespace corvane::window {
namespace {

/// Behind everything that has a value.
constexpr double kNothing = std::numeric_limits<double>::max();

/// Volts follow behind all that have days left, which are fewer than this.
constexpr double kNoDays = 1e9;

double Number(const std::optional<double>& value) {
  return value.value_or(kNothing);
}

/// How soon a battery needs somebody: by its days until the limit, without a trend by its volts.
double BatteryNumber(const UnitStatus& unit) {
  if (unit.battery && unit.battery_days) return std::min(*unit.battery_days, kNoDays);
  return unit.battery ? kNoDays + *unit.battery : kNothing;
}

/// What a column of numbers is sorted by, the smallest first.
double NumberOf(const UnitStatus& unit, StationColumn column) {
  switch (column) {
    case StationColumn::State:
      return PlaceOf(unit.state);
    case StationColumn::LastReading:
      return unit.last_reading.IsNone() ? 0 : static_cast<double>(unit.last_reading.seconds());
    case StationColumn::LastContact:
      return static_cast<double>(unit.last_contact.utc);
    case StationColumn::Answered:
      return unit.asked == 0 ? kNothing : static_cast<double>(unit.answered) / static_cast<double>(unit.asked);
    case StationColumn::Battery:
      return BatteryNumber(unit);
    case StationColumn::Complete:
      return Number(unit.complete);
    case StationColumn::Gaps:
      return static_cast<double>(unit.missing);
    case StationColumn::Delivered:
      return static_cast<double>(unit.delivered.utc);
    default:
      return 0;
  }
}

QString TextOf(const UnitStatus& unit, StationColumn column) {
  if (column == StationColumn::Name) return QString::fromStdString(unit.name).toCaseFolded();
  if (column == StationColumn::Client) return QString::fromStdString(unit.client).toCaseFolded();
  return {};
}

bool Contains(const std::string& text, const QString& part) {
  return QString::fromStdString(text).contains(part, Qt::CaseInsensitive);
}

bool Fits(const UnitStatus& unit, const StationChoice& choice) {
  const auto& letters = choice.letters;
  if (!letters.empty() && std::find(letters.begin(), letters.end(), unit.state) == letters.end()) return false;
  return choice.text.isEmpty() || Contains(unit.name, choice.text) || Contains(unit.client, choice.text) ||
         Contains(unit.relay, choice.text) || QString::number(unit.id) == choice.text;
}

/// A unit with what it is sorted by, worked out once.
struct Sorted {
  double number;
  QString text;
  int state;
  std::int32_t position;
  std::size_t place;
};

bool Before(const Sorted& one, const Sorted& other, bool descending) {
  if (one.number != other.number) return (one.number < other.number) != descending;
  if (const int texts = one.text.compare(other.text); texts != 0) return (texts < 0) != descending;
  return std::tie(one.state, one.position) < std::tie(other.state, other.position);
}

}  // namespace

QString GroupOf(const UnitStatus& unit, Grouping grouping, const Phrases& phrases) {
  if (grouping == Grouping::None) return {};
  if (grouping == Grouping::Client) {
    return QString::fromStdString(unit.client.empty() ? phrases.Text(kNetworkSays.no_client) : unit.client);
  }
  return QString::fromStdString(unit.relay.empty() ? phrases.Text(kNetworkSays.no_relay)
                                                   : phrases.Text(kNetworkSays.relay, {unit.relay}));
}

std::vector<StationGroup> Arrange(const std::vector<UnitStatus>& units, const StationChoice& choice,
                                  const Phrases& phrases) {
  std::vector<Sorted> sorted;
  for (std::size_t place = 0; place < units.size(); ++place) {
    const UnitStatus& unit = units[place];
    if (!Fits(unit, choice)) continue;
    sorted.push_back(
        {NumberOf(unit, choice.sorted_by), TextOf(unit, choice.sorted_by), PlaceOf(unit.state), unit.position, place});
  }
  std::sort(sorted.begin(), sorted.end(),
            [&choice](const Sorted& one, const Sorted& other) { return Before(one, other, choice.descending); });
  std::map<QString, std::vector<std::size_t>> groups;
  if (choice.grouping == Grouping::None) groups[{}];
  for (const Sorted& each : sorted) groups[GroupOf(units[each.place], choice.grouping, phrases)].push_back(each.place);
  std::vector<StationGroup> all;
  for (auto& [name, places] : groups) all.push_back({name, std::move(places)});
  return all;
}

StationRows RowsOf(std::vector<UnitStatus> units, const StationChoice& choice, const Phrases& phrases) {
  std::vector<StationGroup> groups = Arrange(units, choice, phrases);
  return {std::move(units), choice, std::move(groups)};
}

}  // namespace corvane::window
