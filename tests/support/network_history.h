// The history of a network with one unit that is fine, to be changed by a test.
#pragma once

#include <string>

#include "history/network_status.h"
#include "state/link_state.h"
#include "state/records.h"

namespace corvane::test {

inline constexpr std::int64_t kHour = 3600;
inline const DateTime kLocal = DateTime::FromCivil(2026, 6, 30, 12);
inline const Moment kNow =
    Moment::At((kLocal.seconds() - 25569 * kSecondsPerDay) - 2 * kHour, kLocal);  // summer, UTC+2

inline Moment Ago(std::int64_t seconds) {
  return {kNow.utc - seconds, kNow.ahead};
}

/// A network with one unit that is fine, whose last rounds and days can be changed.
struct NetworkHistory {
  HistoryContents history;

  NetworkHistory() {
    NetworkRecord network;
    network.automatic = true;
    network.interval = 3 * kHour;
    network.next_download = kLocal + kHour;
    network.alive = Ago(60);
    network.open = true;
    history.network = network;
    Add("North");
    for (std::int64_t i = 10; i > 0; --i) Contact(1, i, Outcome::Answered);
    for (std::int64_t i = 20; i >= 0; --i) Day(i, 12.5);
  }

  UnitRecord& Add(const std::string& name, const std::string& relay = "") {
    UnitRecord unit;
    unit.key = std::ssize(history.units) + 1;
    unit.unit_id = static_cast<std::int32_t>(unit.key);
    unit.position = unit.unit_id;
    unit.name = name;
    unit.relay = relay;
    unit.active = true;
    unit.get_from = kFromRadio;
    unit.added = Ago(90 * kSecondsPerDay);
    history.units.push_back(unit);
    ScanRecord scan;
    scan.unit = unit.key;
    scan.last = kLocal - kHour;
    scan.period = 900;
    history.scans.push_back(scan);
    return history.units.back();
  }

  /// In the `back`th round from the end, three hours apart.
  ContactRecord& Contact(std::int64_t unit, std::int64_t back, Outcome outcome) {
    ContactRecord contact;
    contact.round = 100 - back;
    contact.unit = unit;
    contact.at = Ago(back * 3 * kHour);
    contact.command = kDownload;
    contact.outcome = outcome;
    history.contacts.push_back(contact);
    return history.contacts.back();
  }

  void Day(std::int64_t back, double battery) {
    DayRecord day;
    day.unit = 1;
    day.day = kLocal.Midnight() - back * kSecondsPerDay;
    day.expected = 96;
    day.stored = 96;
    day.battery = battery;
    history.days.push_back(day);
  }

  void Gap(GapState state, std::int64_t days_ago, std::int64_t missing) {
    const DateTime from = kLocal - days_ago * kSecondsPerDay;
    history.gaps.push_back({1, from, from + kHour, missing, state, 0, {}, {}});
  }

  UnitRecord& unit() { return history.units[0]; }
  ScanRecord& scan() { return history.scans[0]; }
  NetworkRecord& network() { return *history.network; }
  ContactRecord& last() { return history.contacts.back(); }
  ContactRecord& before() { return history.contacts[history.contacts.size() - 2]; }
  void Silence() { last().outcome = before().outcome = Outcome::Silent; }
  [[nodiscard]] NetworkStatus Status(Holder holder = Holder::Somebody) const {
    return WorkOutStatus(history, kNow, holder);
  }
};

}  // namespace corvane::test
