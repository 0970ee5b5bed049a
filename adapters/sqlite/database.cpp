#include "sqlite/database.h"

#include <utility>

#include <sqlite3.h>

#include "base/encoding.h"

namespace corvane {
namespace {

constexpr int kMillisecondsBetweenTries = 4;
constexpr int kPagesAtOnce = 1024;
constexpr sqlite3_int64 kReadVersionAt = 19;  // in the file's header; 2: a write-ahead log
constexpr char kKeptWithLog = 2;

}  // namespace

Statement::Statement(sqlite3* connection, const std::string& sql) : connection_(connection) {
  Check(sqlite3_prepare_v3(connection, sql.c_str(), static_cast<int>(sql.size()) + 1, SQLITE_PREPARE_PERSISTENT,
                           &statement_, nullptr));
}

Statement::~Statement() {
  sqlite3_finalize(statement_);
}

void Statement::Check(int code) {
  if (code == SQLITE_OK) return;
  const SqliteError error(code, sqlite3_errmsg(connection_));
  Reset();
  throw error;
}

void Statement::PutInteger(std::int64_t value) {
  Check(sqlite3_bind_int64(statement_, ++parameter_, value));
}

void Statement::PutReal(double value) {
  Check(sqlite3_bind_double(statement_, ++parameter_, value));
}

void Statement::PutText(std::string_view text) {
  Check(sqlite3_bind_text64(statement_, ++parameter_, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void Statement::PutBytes(std::string_view bytes) {
  Check(sqlite3_bind_blob64(statement_, ++parameter_, bytes.data(), bytes.size(), SQLITE_STATIC));
}

bool Statement::Step() {
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) Check(code);
  Reset();
  return false;
}

void Statement::Run() {
  while (Step()) {
  }
}

void Statement::Reset() {
  parameter_ = 0;
  if (statement_ == nullptr) return;
  sqlite3_reset(statement_);
  sqlite3_clear_bindings(statement_);
}

bool Statement::IsNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

std::int64_t Statement::Integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

double Statement::Real(int column) const {
  return sqlite3_column_double(statement_, column);
}

std::string Statement::Bytes(int column) const {
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column));
  return bytes == nullptr ? "" : std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column)));
}

void Database::Open(const std::string& path, Access access) {
  Close();
  int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  flags |= access == Access::Write ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
  if (access == Access::Unchanged) flags |= SQLITE_OPEN_URI;
  const std::string name = access == Access::Unchanged ? "file:" + PercentEncoded(path) + "?immutable=1" : path;
  const int code = sqlite3_open_v2(name.c_str(), &connection_, flags, nullptr);
  if (code != SQLITE_OK) {
    const SqliteError error(code, connection_ == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(connection_));
    Close();
    throw error;
  }
  sqlite3_busy_handler(connection_, OnBusy, this);
  // Another user who may not make the log and its index can read only while they are there.
  int keep = 1;
  sqlite3_file_control(connection_, "main", SQLITE_FCNTL_PERSIST_WAL, &keep);
  // What a damaged file claims is not to be believed.
  sqlite3_db_config(connection_, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  Execute("PRAGMA trusted_schema = OFF; PRAGMA cell_size_check = ON; PRAGMA temp_store = MEMORY");
}

void Database::Close() {
  statements_.clear();
  sqlite3_close(std::exchange(connection_, nullptr));
}

bool Database::IsReadOnly() const {
  return sqlite3_db_readonly(connection_, "main") == 1;
}

bool Database::IsKeptWithLog() const {
  // Read through the connection's own descriptor: closing another one of the same file would drop its locks.
  sqlite3_file* file = nullptr;
  char version = 0;
  return sqlite3_file_control(connection_, "main", SQLITE_FCNTL_FILE_POINTER, &file) == SQLITE_OK && file != nullptr &&
         file->pMethods != nullptr && file->pMethods->xRead(file, &version, 1, kReadVersionAt) == SQLITE_OK &&
         version == kKeptWithLog;
}

bool Database::HasMoved() const {
  int moved = 0;
  return sqlite3_file_control(connection_, "main", SQLITE_FCNTL_HAS_MOVED, &moved) == SQLITE_OK && moved != 0;
}

void Database::CopyTo(const std::string& path, const std::function<bool()>& cancelled) {
  Database copy;
  copy.Open(path, Access::Write);
  // A file that is copied elsewhere has no log beside it.
  int keep = 0;
  sqlite3_file_control(copy.connection_, "main", SQLITE_FCNTL_PERSIST_WAL, &keep);
  // What is read here holds the moment until all of it is copied.
  Execute("BEGIN");
  static_cast<void>(Number("SELECT count(*) FROM sqlite_schema"));
  sqlite3_backup* const backup = sqlite3_backup_init(copy.connection_, "main", connection_, "main");
  if (backup == nullptr) throw SqliteError(sqlite3_errcode(copy.connection_), sqlite3_errmsg(copy.connection_));
  int copied = SQLITE_OK;
  while (copied == SQLITE_OK) {
    copied = cancelled && cancelled() ? SQLITE_INTERRUPT : sqlite3_backup_step(backup, kPagesAtOnce);
  }
  // The end of the copying does not tell again that another program holds the file.
  const int ended = sqlite3_backup_finish(backup);
  if (const int code = copied == SQLITE_DONE ? ended : copied; code != SQLITE_OK) {
    throw SqliteError(code, sqlite3_errstr(code));
  }
  RollBack();
  copy.Execute("PRAGMA journal_mode = DELETE");
}

void Database::Execute(const std::string& sql) {
  const int code = sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) throw SqliteError(code, sqlite3_errmsg(connection_));
}

std::int64_t Database::Number(const std::string& sql) {
  Statement statement(connection_, sql);
  return statement.Step() ? statement.Integer(0) : 0;
}

Statement& Database::Prepared(const std::string& sql) {
  return statements_.try_emplace(sql, connection_, sql).first->second;
}

void Database::RollBack() {
  if (connection_ != nullptr && sqlite3_get_autocommit(connection_) == 0) {
    sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
  }
}

int Database::OnBusy(void* database, int /*calls*/) {
  if (std::chrono::steady_clock::now() >= static_cast<Database*>(database)->until_) return 0;
  sqlite3_sleep(kMillisecondsBetweenTries);
  return 1;
}

}  // namespace corvane
