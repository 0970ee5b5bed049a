// The thin layer over SQLite: a connection, its prepared statements, and failures as exceptions.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace corvane {

/// A call of SQLite that failed; `code()` is its primary result code.
class SqliteError : public std::runtime_error {
 public:
  SqliteError(int code, const std::string& text) : std::runtime_error(text), code_(code & 0xFF) {}
  [[nodiscard]] int code() const { return code_; }

 private:
  int code_;
};

/// A prepared statement. Values are put in the order of its parameters, from the first one again behind the last row.
class Statement {
 public:
  Statement(sqlite3* connection, const std::string& sql);
  ~Statement();
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void PutInteger(std::int64_t value);
  void PutReal(double value);
  /// `text` has to live until the statement has run.
  void PutText(std::string_view text);
  void PutBytes(std::string_view bytes);
  void PutNull() { ++parameter_; }

  /// Goes to the next row; false behind the last one.
  bool Step();
  /// Runs a statement that gives no rows.
  void Run();
  /// Gives up the rows that are left.
  void Reset();

  [[nodiscard]] bool IsNull(int column) const;
  [[nodiscard]] std::int64_t Integer(int column) const;
  [[nodiscard]] double Real(int column) const;
  [[nodiscard]] std::string Bytes(int column) const;

 private:
  void Check(int code);

  sqlite3* connection_;
  sqlite3_stmt* statement_ = nullptr;
  int parameter_ = 0;
};

/// A connection to a database file. Everything throws `SqliteError`.
class Database {
 public:
  enum class Access {
    Write,     ///< the file must be there
    Read,      ///< beside one that writes
    Unchanged  ///< without locks and helper files: nobody writes meanwhile
  };

  Database() = default;
  ~Database() { Close(); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void Open(const std::string& path, Access access);
  /// Closes; what its log still holds goes into the file, the log itself and its index stay.
  void Close();
  [[nodiscard]] bool IsOpen() const { return connection_ != nullptr; }
  [[nodiscard]] bool IsReadOnly() const;
  /// The file itself says that it is kept with a write-ahead log. Takes no lock.
  [[nodiscard]] bool IsKeptWithLog() const;
  /// The file that was opened no longer bears its name.
  [[nodiscard]] bool HasMoved() const;

  /// From now until `limit` is over, calls wait for other programs; after that they fail at once.
  void WaitAtMost(std::chrono::milliseconds limit) { until_ = std::chrono::steady_clock::now() + limit; }
  void Execute(const std::string& sql);
  /// The first number that a query gives.
  [[nodiscard]] std::int64_t Number(const std::string& sql);
  /// Throws when the statement could not be run.
  void Compile(const std::string& sql) { const Statement statement(connection_, sql); }
  /// The statement of that text, which is prepared once and stays until `Close`.
  Statement& Prepared(const std::string& sql);
  /// Copies all of it, as it stands at one moment, into the empty file `path`, which is whole in itself then. Asks
  /// `cancelled` meanwhile whether to break off, which fails; after a failure a transaction may be open.
  void CopyTo(const std::string& path, const std::function<bool()>& cancelled);
  /// Leaves a transaction, if one is open. Throws nothing.
  void RollBack();

 private:
  static int OnBusy(void* database, int calls);

  sqlite3* connection_ = nullptr;
  std::map<std::string, Statement> statements_;
  std::chrono::steady_clock::time_point until_;
};

}  // namespace corvane
