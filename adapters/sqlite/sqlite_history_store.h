#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "platform/history_store.h"
#include "sqlite/database.h"
#include "sqlite/history_files.h"

namespace corvane {

/// The history in an SQLite file. Format: docs/formats/history.md.
class SqliteHistoryStore : public HistoryStore {
 public:
  /// `on_network` tells whether a file lies on another computer.
  explicit SqliteHistoryStore(std::function<bool(const std::string& file)> on_network = IsOnNetwork)
      : on_network_(std::move(on_network)) {}

  Status OpenToWrite(const std::string& as_File, std::string& as_SetAside) override;
  Status OpenToRead(const std::string& as_File) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return database_.IsOpen(); }

  Status Write(const HistoryContents& av_Changes) override;
  Status Replace(std::int64_t al_Unit, DateTime av_From, const HistoryContents& av_Changes) override;
  Status Read(const HistoryQuery& av_Query, HistoryContents& av_Result) override;
  Status Forget(Moment av_Before) override;
  /// Copies the history that is open into the file `copy`, made readable for its owner only, as it stands at one
  /// moment, whoever writes meanwhile. Fails where `cancelled`, asked meanwhile, is true; the copy of a failure is not
  /// to be used.
  Status CopyTo(const std::string& copy, const std::function<bool()>& cancelled = {});

 private:
  /// Runs `work` and turns what it throws into a status; no transaction stays open.
  Status Run(const std::function<void()>& work);
  /// The same for what only reads; done again where somebody wrote meanwhile what was taken for unchanging.
  Status RunToRead(const std::function<void()>& work);
  /// As `Run`, between the begin and the end of a transaction that writes.
  Status Change(const std::function<void()>& work);
  [[nodiscard]] Status Failure(int code, const std::string& text) const;

  Status OpenFile();
  Status SetAside(const std::string& why, std::string& set_aside);
  /// What can be said of the file before it is opened to be read.
  [[nodiscard]] Status Readable() const;
  /// Nobody has it open, and its log is empty or missing: what its writer keeps beside it need not be made.
  [[nodiscard]] bool StandsAlone() const;
  void ConnectToRead();

  std::function<bool(const std::string& file)> on_network_;
  Database database_;
  std::string file_;
  bool to_read_ = false;
  bool alone_ = false;               ///< opened as a file that nobody writes
  std::uint64_t damaged_inode_ = 0;  ///< of the file whose damage showed while it was open, 0 none
};

}  // namespace corvane
