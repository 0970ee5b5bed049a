#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "field_year/disk.h"
#include "field_year/year_loop.h"
#include "platform/command_runner.h"
#include "sqlite/sqlite_history_store.h"

namespace corvane::test {

/// The real history on the simulated computer's disk: a commit lasts at once, or fails where the disk does.
class YearStore : public SqliteHistoryStore {
 public:
  explicit YearStore(const Disk& disk) : disk_(disk) {}
  Status OpenToWrite(const std::string& file, std::string& set_aside) override {
    return Fails() ? kNoRoom : SqliteHistoryStore::OpenToWrite(file, set_aside);
  }
  Status Write(const HistoryContents& changes) override {
    HistoryContents others = changes;
    others.network.reset();
    others.alerts.clear();
    if (others != HistoryContents()) status_.reset();
    if (status_ && changes.network) status_->network = changes.network;
    return Fails() ? kNoRoom : SqliteHistoryStore::Write(changes);
  }
  Status Replace(std::int64_t unit, DateTime from, const HistoryContents& changes) override {
    status_.reset();
    return Fails() ? kNoRoom : SqliteHistoryStore::Replace(unit, from, changes);
  }
  Status Forget(Moment before) override { return Fails() ? kNoRoom : SqliteHistoryStore::Forget(before); }
  /// What a status looks at is remembered until it changes: alerts are looked at every hour of the year.
  Status Read(const HistoryQuery& query, HistoryContents& result) override {
    if (Fails() || !query.days_since) return SqliteHistoryStore::Read(query, result);
    if (!status_) {
      HistoryContents read;
      if (Status failed = SqliteHistoryStore::Read(query, read); !failed.ok()) return failed;
      status_ = std::move(read);
    }
    result = *status_;
    return Status::Ok();
  }

 private:
  [[nodiscard]] bool Fails() const { return disk_.is_full || disk_.is_read_only || disk_.power_is_off; }

  inline static const Status kNoRoom{kFailed, "the disk fails"};
  const Disk& disk_;
  std::optional<HistoryContents> status_;
};

/// Keeps what the alert command is told; it ends a second later.
class YearRunner : public CommandRunner {
 public:
  explicit YearRunner(YearLoop& loop) : loop_(loop) {}
  [[nodiscard]] bool Running() const override { return on_end_ != nullptr; }
  void Start(const std::string& /*command*/, const std::string& input, std::int64_t /*seconds*/,
             std::function<void(const CommandEnding&)> on_end) override {
    loop_.Check();
    told.push_back(input);
    on_end_ = std::move(on_end);
    loop_.After(1000, [this] {
      if (on_end_) std::exchange(on_end_, nullptr)({});
    });
  }
  /// What is not over is told once more, or not at all.
  void Stop() override {
    on_end_ = nullptr;
    if (!told.empty()) told.pop_back();
  }

  std::vector<std::string> told;  ///< since it was emptied

 private:
  YearLoop& loop_;
  std::function<void(const CommandEnding&)> on_end_;
};

}  // namespace corvane::test
