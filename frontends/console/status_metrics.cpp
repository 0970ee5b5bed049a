#include "status_metrics.h"

#include <cmath>
#include <optional>
#include <string_view>

#include "base/numbers.h"
#include "base/outside_text.h"
#include "state/app_info.h"

namespace corvane::console {
namespace {

using Value = std::optional<double>;

template <typename Number>
Value Of(Number number) {
  return static_cast<double>(number);
}

template <typename Number>
Value Of(const std::optional<Number>& number) {
  return number ? Value(static_cast<double>(*number)) : std::nullopt;
}

Value Time(Moment when) {
  return when.IsNone() ? std::nullopt : Of(when.utc);
}

struct NetworkMetric {
  std::string_view name;
  std::string_view help;
  Value (*value)(const NetworkStatus& status);
};

/// Those of the last round are left out where there was none.
constexpr NetworkMetric kNetworkMetrics[] = {
    {"corvane_collects", "1 while somebody collects as the settings want it, 0 when nobody does.",
     [](const NetworkStatus& status) { return Of(status.nobody_collects.empty() ? 1 : 0); }},
    {"corvane_next_round_timestamp_seconds", "When the next round is planned.",
     [](const NetworkStatus& status) {
       const DateTime next = status.next_round;
       return next.IsNone() ? std::nullopt : Of(status.now.utc + (next - status.now.Local()));
     }},
    {"corvane_last_round_start_timestamp_seconds", "When the last round began.",
     [](const NetworkStatus& status) { return Time(status.last.began); }},
    {"corvane_last_round_end_timestamp_seconds", "When the last round ended.",
     [](const NetworkStatus& status) { return Time(status.last.ended); }},
    {"corvane_last_round_units_asked", "Units asked in the last round.",
     [](const NetworkStatus& status) { return status.last.key != 0 ? Of(status.last.asked) : std::nullopt; }},
    {"corvane_last_round_units_answered", "Units that answered in the last round.",
     [](const NetworkStatus& status) { return status.last.key != 0 ? Of(status.last.answered) : std::nullopt; }},
    {"corvane_last_round_readings_stored", "Readings stored in the last round.",
     [](const NetworkStatus& status) { return status.last.key != 0 ? Of(status.last.stored) : std::nullopt; }},
    {"corvane_last_round_problems", "Units and files of the last round that ended untried or with a problem.",
     [](const NetworkStatus& status) { return status.last.key != 0 ? Of(status.last.problems) : std::nullopt; }},
};

struct UnitMetric {
  std::string_view name;
  std::string_view help;
  Value (*value)(const UnitStatus& unit, Moment now);
};

constexpr UnitMetric kUnitMetrics[] = {
    {"corvane_unit_last_reading_timestamp_seconds", "Date of the last reading, by this computer's clock.",
     [](const UnitStatus& unit, Moment now) {
       return unit.reading_age ? Of(now.utc - *unit.reading_age) : std::nullopt;
     }},
    {"corvane_unit_last_answer_timestamp_seconds", "When the unit answered last.",
     [](const UnitStatus& unit, Moment) { return Time(unit.last_answered); }},
    {"corvane_unit_rounds_asked", "Of its last 20 rounds, those in which the unit was asked.",
     [](const UnitStatus& unit, Moment) { return Of(unit.asked); }},
    {"corvane_unit_rounds_answered", "Of these, those in which it answered.",
     [](const UnitStatus& unit, Moment) { return Of(unit.answered); }},
    {"corvane_unit_battery_volts", "Battery of the unit.",
     [](const UnitStatus& unit, Moment) { return Of(unit.battery); }},
    {"corvane_unit_battery_left_seconds", "Time until the battery is down to its limit.",
     [](const UnitStatus& unit, Moment) {
       return unit.battery_days ? Of(*unit.battery_days * kSecondsPerDay) : std::nullopt;
     }},
    {"corvane_unit_clock_offset_seconds", "How far the unit's clock is ahead of this computer's.",
     [](const UnitStatus& unit, Moment) { return Of(unit.clock_offset); }},
    {"corvane_unit_complete_ratio", "Share of the readings expected in the last 30 days that are there.",
     [](const UnitStatus& unit, Moment) { return Of(unit.complete); }},
    {"corvane_unit_gaps", "Gaps in the unit's readings.", [](const UnitStatus& unit, Moment) { return Of(unit.gaps); }},
    {"corvane_unit_missing_readings", "Readings missing in these gaps.",
     [](const UnitStatus& unit, Moment) { return Of(unit.missing); }},
    {"corvane_unit_lost_readings", "Missing readings that the unit does not hold any more.",
     [](const UnitStatus& unit, Moment) { return Of(unit.lost); }},
    {"corvane_unit_delivered_timestamp_seconds", "When the unit's file got to the server last.",
     [](const UnitStatus& unit, Moment) { return Time(unit.delivered); }},
    {"corvane_unit_silenced", "1 while a note holds back the unit's alerts.",
     [](const UnitStatus& unit, Moment) { return Of(unit.silenced ? 1 : 0); }},
};

std::string Number(double value) {
  return value == std::floor(value) ? FixedText(value, 0) : FixedText(value, 6);
}

std::string Label(std::string_view name, const std::string& value) {
  std::string label = std::string(name) + "=\"";
  for (const char c : Printable(value)) {
    if (c == '"' || c == '\\') label += '\\';
    label += c;
  }
  return label + "\"";
}

/// Client, ID and file tell units apart; the rest is for people.
std::string LabelsOf(const UnitStatus& unit) {
  return Label("client_id", std::to_string(unit.client_id)) + "," + Label("id", std::to_string(unit.id)) + "," +
         Label("file", unit.file) + "," + Label("unit", unit.name) + "," + Label("client", unit.client) + "," +
         Label("relay", unit.relay);
}

std::string Sample(std::string_view name, const std::string& labels, double value) {
  return std::string(name) + (labels.empty() ? "" : "{" + labels + "}") + " " + Number(value) + "\n";
}

std::string Heading(std::string_view name, std::string_view help) {
  return "# HELP " + std::string(name) + " " + std::string(help) + "\n# TYPE " + std::string(name) + " gauge\n";
}

std::string States(const NetworkStatus& status, const std::vector<std::string>& labels) {
  std::string text = Heading("corvane_info", "The program, in its label.");
  text += Sample("corvane_info", Label("version", AppInfo::VersionText()), 1);
  text += Heading("corvane_state", "1; how the network stands is in its label.");
  text += Sample("corvane_state", Label("state", std::string(NameOf(status.letter))), 1);
  text += Heading("corvane_units", "Units, by how they stand.");
  for (std::size_t i = 0; i < status.counts.size(); ++i) {
    const std::string state(NameOf(static_cast<UnitState>(i)));
    text += Sample("corvane_units", Label("state", state), static_cast<double>(status.counts[i]));
  }
  if (!status.units.empty()) text += Heading("corvane_unit_state", "1; how the unit stands is in its label.");
  for (std::size_t i = 0; i < status.units.size(); ++i) {
    const std::string state(NameOf(status.units[i].state));
    text += Sample("corvane_unit_state", labels[i] + "," + Label("state", state), 1);
  }
  return text;
}

}  // namespace

std::string StatusMetrics(const NetworkStatus& status) {
  std::vector<std::string> labels;
  labels.reserve(status.units.size());
  for (const UnitStatus& unit : status.units) labels.push_back(LabelsOf(unit));
  std::string text = States(status, labels);
  for (const NetworkMetric& metric : kNetworkMetrics) {
    const Value value = metric.value(status);
    if (value) text += Heading(metric.name, metric.help) + Sample(metric.name, "", *value);
  }
  for (const UnitMetric& metric : kUnitMetrics) {
    std::string samples;
    for (std::size_t i = 0; i < status.units.size(); ++i) {
      const Value value = metric.value(status.units[i], status.now);
      if (value && std::isfinite(*value)) samples += Sample(metric.name, labels[i], *value);
    }
    if (!samples.empty()) text += Heading(metric.name, metric.help) + samples;
  }
  return text;
}

}  // namespace corvane::console
