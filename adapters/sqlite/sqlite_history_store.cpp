#include "sqlite/sqlite_history_store.h"

#include <chrono>
#include <exception>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <sqlite3.h>

#include "base/files.h"
#include "base/paths.h"
#include "sqlite/history_reading.h"
#include "sqlite/history_schema.h"
#include "sqlite/history_tables.h"

namespace corvane {
namespace {

constexpr std::chrono::milliseconds kLongestWait{100};
constexpr std::chrono::milliseconds kLongestWaitToCopy{500};
/// A log above this size is cut when all of it is in the file.
constexpr const char* kLongestLog = "4000000";
/// `Forget` ends behind so many contacts and so many days, so that a shorter time to keep does not hold a round.
constexpr std::int64_t kForgottenAtOnce = 200000;

template <class Record>
void WriteAll(Database& database, const std::vector<Record>& records) {
  for (const Record& record : records) WriteRecord(database, record);
}

void RemoveGap(Database& database, const GapRecord& gap) {
  Statement& statement = database.Prepared("DELETE FROM gap WHERE unit = ? AND from_reading = ?");
  statement.PutInteger(gap.unit);
  statement.PutInteger(gap.from.seconds());
  statement.Run();
}

void RemoveNote(Database& database, const NoteRecord& note) {
  Statement& statement = database.Prepared("DELETE FROM note WHERE unit = ?");
  statement.PutInteger(note.unit);
  statement.Run();
}

void WriteContents(Database& database, const HistoryContents& changes) {
  WriteAll(database, changes.units);
  WriteAll(database, changes.rounds);
  WriteAll(database, changes.contacts);
  WriteAll(database, changes.deliveries);
  WriteAll(database, changes.days);
  for (const GapRecord& gap : changes.gaps) {
    gap.state == GapState::Dropped ? RemoveGap(database, gap) : WriteRecord(database, gap);
  }
  WriteAll(database, changes.scans);
  WriteAll(database, changes.alerts);
  for (const NoteRecord& note : changes.notes) {
    note.text.empty() ? RemoveNote(database, note) : WriteRecord(database, note);
  }
  if (changes.network) WriteRecord(database, *changes.network);
}

void RunWith(Database& database, const std::string& sql, std::initializer_list<std::int64_t> values) {
  Statement& statement = database.Prepared(sql);
  for (const std::int64_t value : values) statement.PutInteger(value);
  statement.Run();
}

void ForgetOld(Database& database, Moment before) {
  // By each record's own time: a clock that was wrong for a while takes only its own records along.
  RunWith(database,
          "DELETE FROM contact WHERE (unit, round) IN (SELECT contact.unit, contact.round FROM unit CROSS JOIN contact "
          "ON contact.unit = unit.key AND contact.round <= (SELECT max(key) FROM round WHERE began < ?) "
          "AND contact.at < ? LIMIT ?)",
          {before.utc, before.utc, kForgottenAtOnce});
  RunWith(database,
          "DELETE FROM day WHERE (unit, day) IN (SELECT day.unit, day.day FROM unit CROSS JOIN day "
          "ON day.unit = unit.key AND day.day < ? LIMIT ?)",
          {before.Local().seconds(), kForgottenAtOnce});
  // The last round and the last unit stay: their keys are not to be given again.
  RunWith(database, "DELETE FROM round WHERE began < ? AND ended < ? AND key < (SELECT max(key) FROM round)",
          {before.utc, before.utc});
  // What is lost, or was the clock's, would be found again as new in a raw file that is as old.
  RunWith(database,
          "DELETE FROM gap WHERE changed < ? AND (state = 2 OR (state IN (3, 4) AND NOT EXISTS (SELECT 1 FROM unit "
          "WHERE unit.key = gap.unit AND unit.position > 0)))",
          {before.utc});
  RunWith(database, "DELETE FROM alert WHERE cleared <> 0 AND cleared < ?", {before.utc});
  RunWith(database,
          "DELETE FROM unit WHERE position = 0 AND added < ? AND last_asked < ? AND key < (SELECT max(key) FROM unit) "
          "AND NOT EXISTS (SELECT 1 FROM contact WHERE contact.unit = unit.key) "
          "AND NOT EXISTS (SELECT 1 FROM day WHERE day.unit = unit.key)",
          {before.utc, before.utc});
  for (const char* const table : {"delivery", "gap", "scan", "note"}) {
    RunWith(database, "DELETE FROM " + std::string(table) + " WHERE unit NOT IN (SELECT key FROM unit)", {});
  }
}

}  // namespace

Status SqliteHistoryStore::OpenToWrite(const std::string& as_File, std::string& as_SetAside) {
  Close();
  as_SetAside.clear();
  file_ = as_File;
  to_read_ = false;
  const FileState state = StateOf(file_);
  if (state.error != 0) return {kFailed, Status::FromErrno(file_, state.error).text()};
  if (state.there && !state.plain) return {kFailed, file_ + ": is not a plain file"};
  if (std::string target; state.there) {
    if (Status followed = FollowLink(file_, target); !followed.ok()) return {kFailed, followed.text()};
    file_ = target;
  }
  std::string why;
  if (state.there && damaged_inode_ == state.inode) {
    why = "it is damaged";
  } else if (state.empty && !StateOf(file_ + "-wal").empty) {
    why = "its main part is missing";
  }
  if (!why.empty()) {
    if (Status aside = SetAside(why, as_SetAside); !aside.ok()) return aside;
  }
  const Status opened = OpenFile();
  if (opened.code() != kDamaged) return opened;
  if (Status aside = SetAside(opened.text(), as_SetAside); !aside.ok()) return aside;
  return OpenFile();
}

Status SqliteHistoryStore::SetAside(const std::string& why, std::string& set_aside) {
  Close();
  if (Status moved = SetAsideAsBad(file_); !moved.ok()) return {kFailed, moved.text()};
  damaged_inode_ = 0;
  const std::string name(FileNameOf(file_));
  set_aside = "The history cannot be read (" + why + "): it is kept as \"" + name + ".bad\", and a new one was begun.";
  return Status::Ok();
}

Status SqliteHistoryStore::OpenFile() {
  if (!StateOf(file_).there) {
    if (Status made = MakeHistoryFile(file_); !made.ok()) return {kFailed, made.text()};
  }
  HistoryFile found = HistoryFile::Empty;
  Status opened = Run([&] {
    database_.Open(file_, Database::Access::Write);
    found = RecogniseHistory(database_);
    if (found == HistoryFile::Newer) return;
    if (found == HistoryFile::OfAnotherProgram) throw SqliteError(SQLITE_NOTADB, "it is a file of another program");
    if (database_.IsReadOnly()) throw SqliteError(SQLITE_READONLY, "it may not be written");
    database_.Execute(on_network_(file_) ? "PRAGMA journal_mode = DELETE" : "PRAGMA journal_mode = WAL");
    database_.Execute(
        std::string("PRAGMA synchronous = NORMAL; PRAGMA foreign_keys = OFF; PRAGMA journal_size_limit = ") +
        kLongestLog);
    if (found != HistoryFile::Present) BringUpToDate(database_);
    CheckTables(database_);
    // Finds out now, not in a round, that nothing can be written.
    database_.Execute("BEGIN IMMEDIATE; ROLLBACK");
  });
  if (opened.ok() && found == HistoryFile::Newer) {
    opened = {kNewer, file_ + ": was written by a newer version of this program"};
  }
  if (!opened.ok()) database_.Close();
  return opened;
}

Status SqliteHistoryStore::Readable() const {
  const FileState state = StateOf(file_);
  if (state.error != 0) return {kFailed, Status::FromErrno(file_, state.error).text()};
  if (!state.there || (state.plain && state.empty)) return {kMissing, file_ + ": there is no history"};
  if (!state.plain) return {kFailed, file_ + ": is not a plain file"};
  const Status readable = MayRead(file_);
  return readable.ok() ? readable : Status(kFailed, readable.text());
}

bool SqliteHistoryStore::StandsAlone() const {
  return StateOf(file_ + "-wal").empty && !StateOf(file_ + "-shm").there;
}

void SqliteHistoryStore::ConnectToRead() {
  database_.Open(file_, Database::Access::Read);
  alone_ = StandsAlone() && database_.IsKeptWithLog();
  if (alone_) database_.Open(file_, Database::Access::Unchanged);
}

Status SqliteHistoryStore::OpenToRead(const std::string& as_File) {
  Close();
  file_ = as_File;
  to_read_ = true;
  if (Status readable = Readable(); !readable.ok()) return readable;
  HistoryFile found = HistoryFile::Empty;
  Status opened = Run([&] {
    ConnectToRead();
    found = RecogniseHistory(database_);
    if (found == HistoryFile::OfAnotherProgram) throw SqliteError(SQLITE_NOTADB, "it is a file of another program");
    if (found == HistoryFile::Present) CheckTables(database_);
  });
  if (opened.ok() && found == HistoryFile::Empty) opened = {kMissing, file_ + ": there is no history"};
  if (opened.ok() && found == HistoryFile::Newer) {
    opened = {kNewer, file_ + ": was written by a newer version of this program"};
  }
  if (opened.ok() && found == HistoryFile::Older) {
    opened = {kFailed, file_ + ": was written by an older version of this program, and none has opened it since"};
  }
  if (!opened.ok()) database_.Close();
  return opened;
}

void SqliteHistoryStore::Close() {
  database_.Close();
}

Status SqliteHistoryStore::Failure(int code, const std::string& text) const {
  switch (code) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return {kBusy, file_ + ": another program holds it"};
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return {kDamaged, file_ + ": " + text};
    default:
      return {kFailed, file_ + ": " + text};
  }
}

Status SqliteHistoryStore::Run(const std::function<void()>& work) {
  database_.WaitAtMost(kLongestWait);
  Status result;
  try {
    work();
  } catch (const SqliteError& error) {
    result = Failure(error.code(), error.what());
  } catch (const std::exception& error) {
    result = {kFailed, file_ + ": " + error.what()};
  }
  if (!result.ok()) database_.RollBack();
  if (result.code() == kDamaged && !to_read_) damaged_inode_ = StateOf(file_).inode;
  return result;
}

Status SqliteHistoryStore::RunToRead(const std::function<void()>& work) {
  Status result = Run(work);
  // Somebody has begun to write what was taken for unchanging.
  if (alone_ && !StandsAlone()) {
    result = Run([&] {
      ConnectToRead();
      work();
    });
  }
  return result;
}

Status SqliteHistoryStore::Change(const std::function<void()>& work) {
  if (!IsOpen() || to_read_) return {kFailed, file_ + ": the history is not open to be written"};
  if (database_.HasMoved()) {
    Close();
    return {kMissing, file_ + ": was moved or deleted while it was open"};
  }
  return Run([&] {
    database_.Execute("BEGIN IMMEDIATE");
    work();
    database_.Execute("COMMIT");
  });
}

Status SqliteHistoryStore::Write(const HistoryContents& av_Changes) {
  return Change([&] { WriteContents(database_, av_Changes); });
}

Status SqliteHistoryStore::Replace(std::int64_t al_Unit, DateTime av_From, const HistoryContents& av_Changes) {
  return Change([&] {
    RunWith(database_, "DELETE FROM day WHERE unit = ? AND day >= ?", {al_Unit, av_From.Midnight().seconds()});
    RunWith(database_, "DELETE FROM gap WHERE unit = ? AND to_reading > ? AND state <> 2",
            {al_Unit, av_From.seconds()});
    WriteContents(database_, av_Changes);
  });
}

Status SqliteHistoryStore::Read(const HistoryQuery& av_Query, HistoryContents& av_Result) {
  if (!IsOpen()) return {kFailed, file_ + ": the history is not open"};
  const auto read = [&] {
    av_Result = {};
    ReadContents(database_, av_Query, av_Result);
  };
  Status result = RunToRead(read);
  if (!result.ok()) av_Result = {};
  return result;
}

Status SqliteHistoryStore::CopyTo(const std::string& copy, const std::function<bool()>& cancelled) {
  // The copy is made with its permissions before anything is in it.
  OutputFile file;
  if (Status made = file.Create(copy, kOwnerOnly); !made.ok()) return {kFailed, made.text()};
  file.Close();
  return RunToRead([&] {
    // There is time: nobody waits for a round meanwhile.
    database_.WaitAtMost(kLongestWaitToCopy);
    database_.CopyTo(copy, cancelled);
  });
}

Status SqliteHistoryStore::Forget(Moment av_Before) {
  return Change([&] { ForgetOld(database_, av_Before); });
}

}  // namespace corvane
