#include "sqlite/history_schema.h"

#include <array>
#include <cstddef>
#include <string>

#include <sqlite3.h>

#include "sqlite/history_tables.h"

namespace corvane {
namespace {

/// Version 1. Contacts stand by unit and, as rounds count up, by time: what is read of a unit lies together.
constexpr const char* kFirstVersion = R"sql(
CREATE TABLE unit (
  key INTEGER PRIMARY KEY, client_id INTEGER, unit_id INTEGER, file TEXT, position INTEGER, name TEXT, client TEXT,
  relay TEXT, relay_id INTEGER, active INTEGER, get_from INTEGER, sent INTEGER, added INTEGER, added_ahead INTEGER,
  last_asked INTEGER, last_asked_ahead INTEGER, last_answered INTEGER, last_answered_ahead INTEGER) STRICT;
CREATE TABLE round (
  key INTEGER PRIMARY KEY, kind INTEGER, automatic INTEGER, all_units INTEGER, began INTEGER, began_ahead INTEGER,
  ended INTEGER, ended_ahead INTEGER, asked INTEGER, answered INTEGER, stored INTEGER, problems INTEGER,
  ending TEXT) STRICT;
CREATE TABLE contact (
  unit INTEGER, round INTEGER, at INTEGER, at_ahead INTEGER, get_from INTEGER, command INTEGER, tries INTEGER,
  outcome INTEGER, error TEXT, announced INTEGER, stored INTEGER, rejected INTEGER, last_reading INTEGER, battery REAL,
  ambient REAL, clock_offset INTEGER, milliseconds_on_air INTEGER, period_minutes INTEGER,
  PRIMARY KEY (unit, round)) STRICT, WITHOUT ROWID;
CREATE TABLE delivery (
  unit INTEGER, target INTEGER, file TEXT, tried INTEGER, tried_ahead INTEGER, done INTEGER, done_ahead INTEGER,
  problem TEXT, bytes INTEGER, last_reading INTEGER, PRIMARY KEY (unit, target)) STRICT, WITHOUT ROWID;
CREATE TABLE day (
  unit INTEGER, day INTEGER, expected INTEGER, stored INTEGER, first_reading INTEGER, last_reading INTEGER,
  battery REAL, outside INTEGER, outside_channel INTEGER, PRIMARY KEY (unit, day)) STRICT, WITHOUT ROWID;
CREATE TABLE gap (
  unit INTEGER, from_reading INTEGER, to_reading INTEGER, missing INTEGER, state INTEGER, tries INTEGER, found INTEGER,
  found_ahead INTEGER, changed INTEGER, changed_ahead INTEGER,
  PRIMARY KEY (unit, from_reading)) STRICT, WITHOUT ROWID;
CREATE INDEX gap_that_stands ON gap (unit, from_reading) WHERE state IN (0, 1, 3);
CREATE TABLE scan (
  unit INTEGER PRIMARY KEY, inode INTEGER, size INTEGER, modified INTEGER, tail_crc INTEGER, state BLOB,
  readings INTEGER, first_reading INTEGER, last_reading INTEGER, period INTEGER, still_channel INTEGER,
  still_since INTEGER) STRICT;
CREATE TABLE alert (
  cause TEXT, unit INTEGER, subject TEXT, raised INTEGER, raised_ahead INTEGER, told INTEGER, told_ahead INTEGER,
  cleared INTEGER, cleared_ahead INTEGER, good_rounds INTEGER,
  PRIMARY KEY (cause, unit, subject)) STRICT, WITHOUT ROWID;
CREATE TABLE note (
  unit INTEGER PRIMARY KEY, text TEXT, written INTEGER, written_ahead INTEGER, until INTEGER) STRICT;
CREATE TABLE network (
  row INTEGER PRIMARY KEY, version TEXT, automatic INTEGER, interval INTEGER,
  next_download INTEGER, goes_on INTEGER, late_after REAL, battery_limit REAL, repairs_gaps INTEGER, alive INTEGER,
  alive_ahead INTEGER, open INTEGER) STRICT;
)sql";

constexpr const char* kSecondVersion = "ALTER TABLE round ADD COLUMN clock_step INTEGER NOT NULL DEFAULT 0";
constexpr const char* kThirdVersion = "ALTER TABLE network ADD COLUMN repair_limit INTEGER NOT NULL DEFAULT 2000";

/// What brings a file from the version of its place to the next one. A row that was released is not changed any more.
constexpr std::array<const char*, kHistoryVersion> kSteps = {kFirstVersion, kSecondVersion, kThirdVersion};

template <class... Records>
void Compile(Database& database) {
  (database.Compile(SqlToRead<Records>("FROM " + std::string(Table<Records>::kName))), ...);
}

}  // namespace

HistoryFile RecogniseHistory(Database& database) {
  const std::int64_t id = database.Number("PRAGMA application_id");
  const std::int64_t version = database.Number("PRAGMA user_version");
  if (id == 0 && version == 0 && database.Number("SELECT count(*) FROM sqlite_schema") == 0) return HistoryFile::Empty;
  if (id != kHistoryApplicationId || version < 1) return HistoryFile::OfAnotherProgram;
  if (version > kHistoryVersion) return HistoryFile::Newer;
  return version < kHistoryVersion ? HistoryFile::Older : HistoryFile::Present;
}

void BringUpToDate(Database& database) {
  database.Execute("BEGIN IMMEDIATE");
  const std::int64_t version = database.Number("PRAGMA user_version");
  for (std::int64_t i = version; i < kHistoryVersion; ++i) database.Execute(kSteps[static_cast<std::size_t>(i)]);
  database.Execute("PRAGMA application_id = " + std::to_string(kHistoryApplicationId));
  database.Execute("PRAGMA user_version = " + std::to_string(kHistoryVersion));
  database.Execute("COMMIT");
}

void CheckTables(Database& database) {
  try {
    Compile<UnitRecord, RoundRecord, ContactRecord, DeliveryRecord, DayRecord, GapRecord, ScanRecord, AlertRecord,
            NoteRecord, NetworkRecord>(database);
  } catch (const SqliteError& error) {
    throw SqliteError(error.code() == SQLITE_ERROR ? SQLITE_CORRUPT : error.code(), error.what());
  }
}

}  // namespace corvane
