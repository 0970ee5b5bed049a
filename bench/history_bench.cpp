// Measures the file of the history.
//   corvane-bench-history fill UNITS DAYS FILE   makes one of so many units with one round a day
//   corvane-bench-history status FILE            opens and reads it as the status does; prints the seconds of that, and
//                                                of working out the status
//   corvane-bench-history page FILE              prints the milliseconds that reading for the page takes in the loop's
//                                                thread, behind the status
//   corvane-bench-history round UNITS FILE       prints the milliseconds of what a round over the first units writes
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>

#include "base/status.h"
#include "history/network_status.h"
#include "page/page_contents.h"
#include "sqlite/sqlite_history_store.h"

namespace {

using namespace corvane;

/// The machine's, so that corvanectl status finds in a file what it looks for.
const Moment kNow{static_cast<std::int64_t>(std::time(nullptr)), 0};

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Moment DaysAgo(std::int64_t days) {
  return {kNow.utc - days * kSecondsPerDay, 0};
}

void Open(SqliteHistoryStore& store, const std::string& file) {
  std::string set_aside;
  Require(store.OpenToWrite(file, set_aside));
}

UnitRecord UnitOf(std::int64_t key) {
  UnitRecord unit;
  unit.key = key;
  unit.unit_id = unit.position = static_cast<std::int32_t>(key);
  unit.name = "Station number " + std::to_string(key);
  // As the program names it, so that a window that opens the history knows its units.
  char file[32];
  std::snprintf(file, sizeof file, "%05lld.epd", static_cast<long long>(key));
  unit.file = file;
  unit.relay = "Hill";
  unit.active = true;
  unit.added = DaysAgo(4000);
  unit.last_asked = unit.last_answered = kNow;
  return unit;
}

ContactRecord ContactOf(std::int64_t unit, std::int64_t round, Moment at) {
  ContactRecord contact;
  contact.unit = unit;
  contact.round = round;
  contact.at = at;
  contact.command = 2;
  contact.tries = 1;
  contact.outcome = (unit + round) % 50 == 0 ? Outcome::Silent : Outcome::Answered;
  contact.error = contact.outcome == Outcome::Silent ? "The unit did not answer." : "";
  contact.announced = contact.stored = 24;
  contact.last_reading = at.Local();
  contact.battery = 12.345 + static_cast<double>(round % 100) / 1000;
  contact.ambient = 21.5;
  contact.clock_offset = round % 600;
  contact.milliseconds_on_air = 4321;
  return contact;
}

DayRecord DayOf(std::int64_t unit, Moment at) {
  DayRecord day;
  day.unit = unit;
  day.day = at.Local().Midnight();
  day.expected = day.stored = 24;
  day.first = day.day;
  day.last = day.day + 23 * 3600;
  day.battery = 12.345;
  return day;
}

RoundRecord RoundOf(std::int64_t key, Moment at, std::int64_t units) {
  RoundRecord round;
  round.key = key;
  round.began = round.ended = at;
  round.asked = round.answered = units;
  return round;
}

ScanRecord ScanOf(std::int64_t unit) {
  ScanRecord scan;
  scan.unit = unit;
  scan.state = std::string(200, 's');
  scan.readings = 40'000;
  scan.last = kNow.Local();
  scan.period = 3600;
  return scan;
}

/// Every second round first, then those between: pages are then as full as those of a file that grew round by round.
void Fill(std::int64_t units, std::int64_t days, const std::string& file) {
  SqliteHistoryStore store;
  Open(store, file);
  HistoryContents common;
  for (std::int64_t i = 1; i <= days; ++i) common.rounds.push_back(RoundOf(i, DaysAgo(days - i), units));
  common.network.emplace();
  Require(store.Write(common));
  for (std::int64_t pass = 0; pass < 2; ++pass) {
    for (std::int64_t unit = 1; unit <= units; ++unit) {
      HistoryContents changes;
      changes.units = {UnitOf(unit)};
      changes.scans = {ScanOf(unit)};
      for (std::int64_t i = 1 + pass; i <= days; i += 2) {
        changes.contacts.push_back(ContactOf(unit, i, DaysAgo(days - i)));
        changes.days.push_back(DayOf(unit, DaysAgo(days - i)));
      }
      for (std::int64_t i = 0; i < 10; ++i) {
        const DateTime from = kNow.Local() - (i * 20 + pass) * kSecondsPerDay;
        changes.gaps.push_back({unit, from, from + 7200, 1, i < 2 ? GapState::Found : GapState::Filled, 0, kNow, kNow});
      }
      Require(store.Write(changes));
    }
  }
}

void MeasureStatus(const std::string& file) {
  SqliteHistoryStore store;
  HistoryContents contents;
  const double read = Seconds([&] {
    Require(store.OpenToRead(file));
    Require(store.Read(StatusQuery(kNow), contents));
    store.Close();
  });
  NetworkStatus status;
  const double worked_out = Seconds([&] { status = WorkOutStatus(contents, kNow, Holder::Somebody); });
  std::printf("read %.3f s, worked out %.3f s, %zu units, %zu contacts, %zu days\n", read, worked_out,
              status.units.size(), contents.contacts.size(), contents.days.size());
}

void MeasurePage(const std::string& file) {
  SqliteHistoryStore store;
  HistoryContents contents;
  Require(store.OpenToRead(file));
  Require(store.Read(StatusQuery(kNow), contents));
  const NetworkStatus status = WorkOutStatus(contents, kNow, Holder::Somebody);
  std::size_t charts = 0;
  const double seconds = Seconds([&] {
    HistoryContents read;
    Require(store.Read(PageQuery(status), read));
    charts = ContentsOf(status, read).charts.size();
  });
  std::printf(charts == status.units.size() ? "%.1f\n" : "failed\n", seconds * 1000);
}

void MeasureRound(std::int64_t units, const std::string& file) {
  SqliteHistoryStore store;
  Open(store, file);
  HistoryContents last;
  HistoryQuery query;
  query.contacts_since = DaysAgo(-1);
  query.rounds = 1;
  Require(store.Read(query, last));
  const std::int64_t key = last.rounds.empty() ? 1 : last.rounds[0].key + 1;
  const double seconds = Seconds([&] {
    HistoryContents round;
    round.rounds = {RoundOf(key, kNow, units)};
    Require(store.Write(round));
    for (std::int64_t unit = 1; unit <= units; ++unit) {
      HistoryContents contact;
      contact.units = {UnitOf(unit)};
      contact.contacts = {ContactOf(unit, key, kNow)};
      Require(store.Write(contact));
    }
    for (std::int64_t unit = 1; unit <= units; ++unit) {
      HistoryContents scan;
      scan.days = {DayOf(unit, kNow)};
      scan.scans = {ScanOf(unit)};
      Require(store.Replace(unit, kNow.Local(), scan));
    }
    Require(store.Write(round));
  });
  std::printf("%.1f\n", seconds * 1000);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view what = argc > 1 ? argv[1] : "";
  try {
    if (what == "fill" && argc == 5) return Fill(std::atoll(argv[2]), std::atoll(argv[3]), argv[4]), 0;
    if (what == "status" && argc == 3) return MeasureStatus(argv[2]), 0;
    if (what == "page" && argc == 3) return MeasurePage(argv[2]), 0;
    if (what == "round" && argc == 4) return MeasureRound(std::atoll(argv[2]), argv[3]), 0;
  } catch (const RunTimeError& failure) {
    std::fprintf(stderr, "corvane-bench-history: %s\n", failure.what());
    return 1;
  }
  std::fprintf(stderr,
               "usage: corvane-bench-history fill UNITS DAYS FILE | status FILE | page FILE | round UNITS FILE\n");
  return 2;
}
