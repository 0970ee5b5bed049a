#include "sqlite/history_reading.h"

#include <initializer_list>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sqlite/history_tables.h"

namespace corvane {
namespace {

/// Before this round no contact is of that time or later; rounds follow each other, so only the last before it can
/// reach into it.
constexpr std::string_view kFirstRound =
    "SELECT coalesce((SELECT min(key) - 1 FROM round WHERE began >= ?), (SELECT max(key) FROM round), 0)";
constexpr std::string_view kContactsOfAll =
    "FROM unit CROSS JOIN contact ON contact.unit = unit.key AND contact.round >= ? AND contact.at >= ? "
    "ORDER BY unit.key, contact.round";
constexpr std::string_view kContactsOfUnit =
    "FROM contact WHERE contact.round >= ? AND contact.at >= ? AND contact.unit = ? ORDER BY contact.round";
constexpr std::string_view kContactsOfRound =
    "FROM unit CROSS JOIN contact ON contact.unit = unit.key AND contact.round = ? ORDER BY unit.key";
constexpr std::string_view kDaysOfAll =
    "FROM unit CROSS JOIN day ON day.unit = unit.key AND day.day >= ? ORDER BY unit.key, day.day";
constexpr std::string_view kDaysOfUnit = "FROM day WHERE day.day >= ? AND day.unit = ? ORDER BY day.day";
constexpr std::string_view kGapsOfAll = "FROM gap WHERE state IN (0, 1, 3) ORDER BY unit, from_reading";
constexpr std::string_view kGapsOfUnit = "FROM gap WHERE state IN (0, 1, 3) AND unit = ? ORDER BY from_reading";

/// A transaction that reads; all of it sees the same.
class Snapshot {
 public:
  explicit Snapshot(Database& database) : database_(database) { database_.Execute("BEGIN"); }
  ~Snapshot() { database_.RollBack(); }
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;

 private:
  Database& database_;
};

template <class Record>
void ReadAll(Database& database, std::string_view rest, std::vector<Record>& records) {
  ReadRecords(database.Prepared(SqlToRead<Record>(rest)), records);
}

/// Reads the records of one unit, or of all of them; `values` are those of the first parameters.
template <class Record>
void ReadOf(Database& database, std::int64_t unit, std::string_view all, std::string_view of_unit,
            std::initializer_list<std::int64_t> values, std::vector<Record>& records) {
  Statement& statement = database.Prepared(SqlToRead<Record>(unit == 0 ? all : of_unit));
  for (const std::int64_t value : values) statement.PutInteger(value);
  if (unit != 0) statement.PutInteger(unit);
  ReadRecords(statement, records);
}

std::int64_t FirstRound(Database& database, Moment since) {
  Statement& statement = database.Prepared(std::string(kFirstRound));
  statement.PutInteger(since.utc);
  const std::int64_t first = statement.Step() ? statement.Integer(0) : 0;
  statement.Reset();
  return first;
}

void ReadContacts(Database& database, const HistoryQuery& query, std::vector<ContactRecord>& contacts) {
  const std::int64_t first = FirstRound(database, query.contacts_since);
  ReadOf(database, query.unit, kContactsOfAll, kContactsOfUnit, {first, query.contacts_since.utc}, contacts);
}

/// The last round whose key is at most `key`, its contacts, and where wanted the gaps that changed while it ran.
void ReadRound(Database& database, const HistoryQuery& query, HistoryContents& contents) {
  ReadOf(database, 0, "FROM round WHERE key <= ? ORDER BY key DESC LIMIT 1", "", {query.round}, contents.rounds);
  if (contents.rounds.empty()) return;
  const RoundRecord& round = contents.rounds.front();
  ReadOf(database, 0, kContactsOfRound, "", {round.key}, contents.contacts);
  if (!query.gaps) return;
  const std::int64_t until = round.ended.IsNone() ? std::numeric_limits<std::int64_t>::max() : round.ended.utc;
  ReadOf(database, 0, "FROM gap WHERE changed >= ? AND changed <= ? ORDER BY unit, from_reading", "",
         {round.began.utc, until}, contents.gaps);
}

/// The rounds of the contacts that were read, the last `count`, and those of clock steps.
void ReadRounds(Database& database, std::int64_t count, HistoryContents& contents) {
  std::set<std::int64_t> keys;
  for (const ContactRecord& contact : contents.contacts) keys.insert(contact.round);
  Statement& last = database.Prepared("SELECT key FROM round ORDER BY key DESC LIMIT ?");
  last.PutInteger(count < 0 ? 0 : count);
  while (last.Step()) keys.insert(last.Integer(0));
  Statement& steps = database.Prepared("SELECT key FROM round WHERE clock_step <> 0");
  while (steps.Step()) keys.insert(steps.Integer(0));
  Statement& statement = database.Prepared(SqlToRead<RoundRecord>("FROM round WHERE key = ?"));
  for (const std::int64_t key : keys) {
    statement.PutInteger(key);
    ReadRecords(statement, contents.rounds);
  }
}

void ReadLists(Database& database, HistoryContents& contents) {
  ReadAll(database, "FROM unit ORDER BY key", contents.units);
  ReadAll(database, "FROM delivery ORDER BY unit, target", contents.deliveries);
  ReadAll(database, "FROM alert WHERE cleared = 0 ORDER BY cause, unit, subject", contents.alerts);
  ReadAll(database, "FROM note ORDER BY unit", contents.notes);
  std::vector<NetworkRecord> networks;
  ReadAll(database, "FROM network", networks);
  if (!networks.empty()) contents.network = std::move(networks.front());
}

}  // namespace

void ReadContents(Database& database, const HistoryQuery& query, HistoryContents& contents) {
  const Snapshot snapshot(database);
  if (query.lists) ReadLists(database, contents);
  if (query.round != 0) return ReadRound(database, query, contents);
  ReadContacts(database, query, contents.contacts);
  if (query.lists) ReadRounds(database, query.rounds, contents);
  if (query.days_since) {
    ReadOf(database, query.unit, kDaysOfAll, kDaysOfUnit, {query.days_since->seconds()}, contents.days);
  }
  if (query.gaps) ReadOf(database, query.unit, kGapsOfAll, kGapsOfUnit, {}, contents.gaps);
  if (query.scans) {
    ReadOf(database, query.unit, "FROM scan ORDER BY unit", "FROM scan WHERE unit = ?", {}, contents.scans);
  }
}

}  // namespace corvane
