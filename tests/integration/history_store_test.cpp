#include "sqlite/sqlite_history_store.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/small_disk.h"
#include "support/temp_folder.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;
constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
const HistoryQuery kEverything{0, {kLeast, 0}, kMost, DateTime(kLeast), true, true};
const Moment kNoon{1'700'000'000, 7200};
const DateTime kDay(45'000 * kSecondsPerDay);

Moment At(std::int64_t utc) {
  return {utc, 0};
}

DayRecord Day(std::int64_t unit, DateTime day) {
  DayRecord record;
  record.unit = unit, record.day = day;
  return record;
}

/// One record of each kind with values as far out as they go, or all of the same keys with others.
HistoryContents Extremes(bool other) {
  const std::string odd = other ? "" : std::string("\xC3\xB6\xFF'\";--\0\r\n", 11);
  const std::int64_t least = other ? 0 : kLeast, most = other ? 1 : kMost;
  const auto number = other ? std::nullopt : std::optional(kLeast);
  const auto real = other ? std::nullopt : std::optional(-1e300);
  const Moment moment{least, other ? 0 : std::numeric_limits<std::int32_t>::min()};
  HistoryContents c;
  c.units = {{1, -5, 32'767, odd, 7, odd, odd, odd, 9, !other, 3, !other, moment, kNoon, moment}};
  c.rounds = {{kMost, RoundKind::Repair, other ? RoundStart::ByHand : RoundStart::ByCommand, !other, moment, kNoon,
               most, least, most, least, odd}};
  c.contacts = {{kMost,
                 1,
                 {least, 60},
                 2,
                 -3,
                 most,
                 Outcome::NoPort,
                 odd,
                 most,
                 least,
                 most,
                 DateTime(least),
                 real,
                 real,
                 number,
                 most,
                 number}};
  c.deliveries = {{1, Target::Calibrated, odd, moment, kNoon, odd, most, DateTime(most)}};
  c.days = {{1, kDay, most, least, DateTime(most), DateTime(least), real, most, 65}};
  c.gaps = {{1, kDay, DateTime(most), least, GapState::Lost, most, moment, kNoon}};
  c.scans = {{1, other ? 0 : std::numeric_limits<std::uint64_t>::max(), most, least, other ? 0 : 0xFFFFFFFFU, odd, most,
              DateTime(least), DateTime(most), least, -1, DateTime(1)}};
  c.alerts = {{"silent", 1, "", moment, kNoon, {}, most}};
  c.notes = {{1, odd + "x", moment, DateTime(least)}};
  c.network = {{odd, !other, number, DateTime(most), !other, 1e-300, other ? 0.5 : -0.0, !other, most, moment, !other}};
  return c;
}

/// Two units with four rounds, days and gaps in each state.
HistoryContents TwoUnits() {
  HistoryContents c;
  c.units.resize(2);
  c.units[0].key = 1, c.units[1].key = 2;
  for (std::int64_t i = 1; i <= 4; ++i) {
    RoundRecord& round = c.rounds.emplace_back();
    round.key = i, round.began = At(i * 100), round.ended = At(i * 100 + 90);
    for (std::int64_t unit = 1; unit <= 2; ++unit) {
      ContactRecord& contact = c.contacts.emplace_back();
      contact.round = i, contact.unit = unit, contact.at = At(i * 100 + 50);
      c.days.push_back(Day(unit, kDay + i * kSecondsPerDay));
    }
  }
  for (const GapState state : {GapState::Found, GapState::Asked, GapState::Filled, GapState::Lost, GapState::Clock}) {
    const DateTime from = kDay + (static_cast<int>(state) + 1) * kSecondsPerDay;
    c.gaps.push_back({2, from, from + 7200, 1, state, 0, At(100), At(100)});
  }
  c.alerts = {{"late", 1, "", At(100), At(100), At(150), 0}, {"late", 2, "", At(100), {}, {}, 0}};
  return c;
}

class HistoryInAFile : public testing::Test {
 protected:
  Status Open(SqliteHistoryStore& opened, bool to_write = true) {
    return to_write ? opened.OpenToWrite(file, set_aside) : opened.OpenToRead(file);
  }
  HistoryContents Everything(SqliteHistoryStore& opened) {
    HistoryContents all;
    const Status read = opened.Read(kEverything, all);
    EXPECT_TRUE(read.ok()) << read.text();
    return all;
  }
  /// A file with `contents`, closed.
  void Make(const HistoryContents& contents) {
    SqliteHistoryStore maker;
    ASSERT_TRUE(Open(maker).ok() && maker.Write(contents).ok());
  }
  void Sql(const std::string& sql) {
    Database database;
    database.Open(file, Database::Access::Write);
    database.Execute(sql);
  }

  TempFolder folder;
  const std::string file = folder.Name("history.db");
  std::string set_aside;
  SqliteHistoryStore store, second;
};

TEST_F(HistoryInAFile, HoldsEveryRecordToTheLastBit) {
  for (const bool on_network : {false, true}) {
    SqliteHistoryStore writer([=](const std::string&) { return on_network; });
    ASSERT_TRUE(Open(writer).ok());
    ASSERT_TRUE(Open(second, false).ok());
    for (const bool other : {false, true}) {
      const HistoryContents written = Extremes(other);
      ASSERT_TRUE(writer.Write(written).ok());
      const HistoryContents read = Everything(second);
      EXPECT_TRUE(read == written) << on_network << other;
      EXPECT_EQ(read.contacts[0].at.ahead, 60);
      EXPECT_EQ(read.rounds[0].began.ahead, written.rounds[0].began.ahead);
    }
    second.Close();
    EXPECT_EQ(StateOf(file + "-wal").empty, on_network);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
  }
}

TEST_F(HistoryInAFile, ReadsWhatIsAskedFor) {
  ASSERT_TRUE(Open(store).ok() && store.Write(TwoUnits()).ok());
  const struct {
    const char* name;
    HistoryQuery query;
    std::vector<std::int64_t> contacts, rounds;
    std::size_t days, gaps;
  } rows[] = {{"nothing", {0, At(1000), 0, {}, false, false}, {}, {}, 0, 0},
              {"all", kEverything, {1, 1, 1, 1, 2, 2, 2, 2}, {1, 2, 3, 4}, 8, 3},
              {"from a time on", {0, At(350), 0, kDay + 4 * kSecondsPerDay, true, false}, {1, 1, 2, 2}, {3, 4}, 2, 3},
              {"last rounds", {0, At(451), 2, {}, false, false}, {}, {3, 4}, 0, 0},
              {"one unit", {2, At(450), 2, kDay, true, false}, {2}, {3, 4}, 4, 3},
              {"the other", {1, At(450), 0, kDay, true, false}, {1}, {4}, 4, 0},
              {"a round", {0, {}, 0, {}, true, false, true, 1}, {1, 2}, {1}, 0, 5},
              {"the last round", {0, {}, 2, kDay, true, true, true, kMost}, {1, 2}, {4}, 0, 0},
              {"before the first", {0, At(1), 0, {}, true, false, true, -1}, {}, {}, 0, 0}};
  for (const auto& row : rows) {
    HistoryContents got;
    ASSERT_TRUE(store.Read(row.query, got).ok()) << row.name;
    std::vector<std::int64_t> contacts, rounds;
    for (const ContactRecord& contact : got.contacts) contacts.push_back(contact.unit);
    for (const RoundRecord& round : got.rounds) rounds.push_back(round.key);
    EXPECT_TRUE(contacts == row.contacts && rounds == row.rounds) << row.name;
    EXPECT_EQ(got.days.size(), row.days) << row.name;
    EXPECT_EQ(got.gaps.size(), row.gaps) << row.name;
    EXPECT_EQ(got.units.size(), 2U) << row.name;
    EXPECT_EQ(got.alerts.size(), 1U) << row.name;
  }
}

TEST_F(HistoryInAFile, TakesOutWhatIsReplacedDroppedAndForgotten) {
  HistoryContents all = TwoUnits();
  all.units[0].position = 1;
  all.notes = {{1, "dug up", kNoon, {}}, {2, "stays", kNoon, {}}};
  ASSERT_TRUE(Open(store).ok() && store.Write(all).ok());
  HistoryContents changes;
  changes.notes = {{1, "", kNoon, {}}};
  changes.gaps = {{2, kDay + kSecondsPerDay, {}, 0, GapState::Dropped, 0, {}, {}},
                  {1, kDay, kDay + 3600, 5, GapState::Lost, 3, kNoon, kNoon}};
  ASSERT_TRUE(store.Write(changes).ok());
  EXPECT_EQ(Everything(store).notes.size(), 1U);
  EXPECT_EQ(Everything(store).gaps.size(), 3U);
  changes = {};
  changes.days = {Day(2, kDay + 3 * kSecondsPerDay)};
  // In the middle of day 3, and before the end of the gap of day 2 (which is asked for), not of day 4 (lost).
  ASSERT_TRUE(store.Replace(2, kDay + 3 * kSecondsPerDay + 100, changes).ok());
  EXPECT_EQ(Everything(store).days.size(), 7U);
  EXPECT_EQ(Everything(store).gaps.size(), 2U);
  ASSERT_TRUE(store.Forget(At(100'000'000'000)).ok());
  const HistoryContents left = Everything(store);
  EXPECT_TRUE(left.contacts.empty() && left.days.empty());
  EXPECT_EQ(left.rounds, std::vector{all.rounds.back()});
  EXPECT_EQ(left.units, all.units) << "the first is in the list, the key of the last must not come again";
  EXPECT_EQ(left.gaps.size(), 2U) << "one is still asked for, one lost in a file that may be as old";
}

TEST_F(HistoryInAFile, SaysWhatIsWrongWithAFileAndLosesNothing) {
  using Store = HistoryStore;
  const std::string garbage(5000, 'g');
  const struct {
    const char* name;
    std::function<void()> spoil;
    int to_read, to_write;
    bool aside;
  } rows[] = {
      {"missing", [] {}, Store::kMissing, 0, false},
      {"empty", [&] { folder.Write("history.db", ""); }, Store::kMissing, 0, false},
      {"garbage", [&] { folder.Write("history.db", garbage); }, Store::kDamaged, 0, true},
      {"a few bytes", [&] { folder.Write("history.db", "text"); }, Store::kDamaged, 0, true},
      {"cut", [&] { Make(TwoUnits()), fs::resize_file(file, fs::file_size(file) / 2); }, Store::kDamaged, 0, true},
      {"cut in a page", [&] { Make(TwoUnits()), fs::resize_file(file, 5001); }, Store::kDamaged, 0, true},
      {"a table is gone", [&] { Make({}), Sql("DROP TABLE day"); }, Store::kDamaged, 0, true},
      {"of another program", [&] { folder.Write("history.db", ""), Sql("CREATE TABLE t (a)"); }, Store::kDamaged, 0,
       true},
      {"older", [&] { Make({}), Sql("ALTER TABLE network DROP COLUMN repair_limit; PRAGMA user_version = 2"); },
       Store::kFailed, 0, false},
      {"newer", [&] { Make({}), Sql("PRAGMA user_version = 4"); }, Store::kNewer, Store::kNewer, false},
      {"its log alone", [&] { folder.Write("history.db-wal", garbage); }, Store::kMissing, 0, true},
      {"a device", [&] { fs::create_symlink("/dev/null", file); }, Store::kFailed, Store::kFailed, false}};
  for (const auto& row : rows) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.path())) fs::remove_all(entry);
    row.spoil();
    const std::string before = folder.Read("history.db");
    EXPECT_EQ(Open(second, false).code(), row.to_read) << row.name;
    const Status opened = Open(store);
    EXPECT_EQ(opened.code(), row.to_write) << row.name << opened.text();
    EXPECT_EQ(!set_aside.empty(), row.aside) << row.name << set_aside;
    EXPECT_TRUE(!row.aside || folder.Read("history.db.bad") == before) << row.name;
    if (row.to_write == 0) {
      EXPECT_TRUE(store.Write(TwoUnits()).ok() && Everything(store).units.size() == 2) << row.name;
    } else {
      EXPECT_TRUE(folder.Read("history.db") == before) << row.name;
    }
    store.Close(), second.Close();
  }
}

TEST_F(HistoryInAFile, SetsAsideWhatTurnsOutDamagedLater) {
  HistoryContents many = TwoUnits();
  for (int i = 0; i < 5000; ++i) many.days.push_back(Day(1, DateTime(i * kSecondsPerDay)));
  Make(many);
  std::string bytes = folder.Read("history.db");
  std::fill(bytes.begin() + bytes.size() / 2, bytes.end(), '\x7F');
  folder.Write("history.db", bytes);
  ASSERT_TRUE(Open(store).ok() && set_aside.empty());
  HistoryContents all;
  EXPECT_EQ(store.Read(kEverything, all).code(), HistoryStore::kDamaged);
  EXPECT_TRUE(all == HistoryContents{});
  ASSERT_TRUE(Open(store).ok());
  EXPECT_NE(set_aside.find("\"history.db.bad\""), std::string::npos) << set_aside;
  EXPECT_TRUE(folder.Read("history.db.bad") == bytes);
}

TEST_F(HistoryInAFile, DoesNotWaitForAProgramThatHoldsIt) {
  Make(TwoUnits());
  ASSERT_TRUE(Open(store).ok() && Open(second, false).ok());
  const auto begin = std::chrono::steady_clock::now();
  {
    Database other;
    other.Open(file, Database::Access::Write);
    other.Execute("BEGIN IMMEDIATE; DELETE FROM day");
    EXPECT_EQ(store.Write(TwoUnits()).code(), HistoryStore::kBusy);
    EXPECT_EQ(store.Forget(kNoon).code(), HistoryStore::kBusy);
    EXPECT_EQ(Everything(second).days.size(), 8U);
  }
  EXPECT_TRUE(store.Write(TwoUnits()).ok());
  store.Close(), second.Close();
  Database other;
  other.Open(file, Database::Access::Write);
  other.Execute("PRAGMA locking_mode = EXCLUSIVE; BEGIN IMMEDIATE; DELETE FROM day");
  EXPECT_EQ(Open(store).code(), HistoryStore::kBusy);
  EXPECT_EQ(Open(second, false).code(), HistoryStore::kBusy);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
  EXPECT_TRUE(set_aside.empty());
}

TEST_F(HistoryInAFile, IsCopiedWholeOrNotAtAll) {
  const std::string copy = folder.Name("copy.db");
  const auto copied = [&] {
    SqliteHistoryStore opened;
    return opened.OpenToRead(copy).ok() ? Everything(opened).days.size() : 0;
  };
  SqliteHistoryStore writer([](const std::string&) { return true; });
  ASSERT_TRUE(Open(writer).ok() && writer.Write(TwoUnits()).ok());
  ASSERT_TRUE(Open(second, false).ok());
  {
    Database other;
    other.Open(file, Database::Access::Write);
    other.Execute("BEGIN EXCLUSIVE");
    EXPECT_EQ(second.CopyTo(copy).code(), HistoryStore::kBusy);
  }
  EXPECT_TRUE(second.CopyTo(copy).ok());
  EXPECT_EQ(copied(), 8U);
  writer.Close(), second.Close();
  // Taken for unchanging, and then written: with a log, of which the file itself knows nothing yet.
  ASSERT_TRUE(Open(store).ok());
  store.Close();
  fs::remove(file + "-wal"), fs::remove(file + "-shm");
  ASSERT_TRUE(Open(second, false).ok());
  HistoryContents more;
  more.days = {Day(1, kDay)};
  ASSERT_TRUE(Open(store).ok() && store.Write(more).ok());
  EXPECT_TRUE(second.CopyTo(copy).ok());
  EXPECT_EQ(copied(), 9U);
}

TEST_F(HistoryInAFile, GoesOnBehindAFullDisk) {
  {
    const SmallDisk disk(0);
    EXPECT_EQ(Open(store).code(), HistoryStore::kFailed);
  }
  ASSERT_TRUE(Open(store).ok() && store.Write(TwoUnits()).ok());
  HistoryContents more;
  for (int i = 0; i < 5000; ++i) more.days.push_back(Day(1, DateTime(i * kSecondsPerDay)));
  {
    const SmallDisk disk(100'000);
    const Status written = store.Write(more);
    EXPECT_EQ(written.code(), HistoryStore::kFailed) << written.text();
    EXPECT_EQ(Everything(store).days.size(), 8U);
  }
  EXPECT_TRUE(store.Write(more).ok());
  EXPECT_EQ(Everything(store).days.size(), 5008U);
  fs::rename(file, file + ".elsewhere");
  EXPECT_EQ(store.Write(more).code(), HistoryStore::kMissing);
  EXPECT_FALSE(store.IsOpen());
}

/// Runs `work` in a process of its own as another user, unless that is 0; its answer, or -1.
int InChild(uid_t user, const std::function<int()>& work) {
  const pid_t process = fork();
  if (process == 0) {
    if (user != 0 && (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0)) _exit(99);
    _exit(work());
  }
  int status = 0;
  return waitpid(process, &status, 0) == process && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(HistoryInAFile, LosesOnlyWhatWasNotWholeAtAKill) {
  for (const bool on_network : {false, true}) {
    fs::remove(file);
    EXPECT_EQ(InChild(0,
                      [&] {
                        SqliteHistoryStore killed([=](const std::string&) { return on_network; });
                        if (!Open(killed).ok() || !killed.Write(TwoUnits()).ok()) return 1;
                        Database other;
                        other.Open(file, Database::Access::Write);
                        other.Execute("PRAGMA cache_size = 1; BEGIN; DELETE FROM day; DELETE FROM contact");
                        kill(getpid(), SIGKILL);
                        return 2;
                      }),
              -1);
    ASSERT_TRUE(Open(store).ok());
    EXPECT_TRUE(set_aside.empty()) << set_aside;
    EXPECT_EQ(Everything(store).days.size(), 8U);
    store.Close();
  }
}

TEST_F(HistoryInAFile, IsReadByAUserWhoMayOnlyRead) {
  if (getuid() != 0) GTEST_SKIP() << "only root can become another user";
  constexpr uid_t kOther = 65534;
  const auto read = [&] {
    return InChild(kOther, [&] {
      if (const Status opened = Open(second, false); !opened.ok()) return opened.code();
      HistoryContents all;
      const Status got = second.Read(kEverything, all);
      return got.ok() ? static_cast<int>(100 + all.contacts.size()) : got.code();
    });
  };
  ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
  ASSERT_TRUE(Open(store).ok());
  ASSERT_EQ(chown(file.c_str(), 0, kOther), 0);
  ASSERT_TRUE(Open(store).ok() && store.Write(TwoUnits()).ok());
  for (const char* const helper : {"-wal", "-shm"}) ASSERT_EQ(chown((file + helper).c_str(), 0, kOther), 0);
  EXPECT_EQ(read(), 108) << "beside the program that writes";
  EXPECT_EQ(InChild(kOther, [&] { return Open(second).code(); }), HistoryStore::kFailed);
  store.Close();
  EXPECT_EQ(read(), 108) << "behind a clean close";
  EXPECT_EQ(
      InChild(0, [&] { return Open(store).ok() && store.Write(TwoUnits()).ok() ? (kill(getpid(), SIGKILL), 1) : 2; }),
      -1);
  EXPECT_EQ(read(), 108) << "behind a kill";
  Make({});
  fs::remove(file + "-wal"), fs::remove(file + "-shm");
  EXPECT_EQ(read(), 108) << "a copy of the file alone";
  EXPECT_FALSE(fs::exists(file + "-shm"));
  ASSERT_EQ(chmod(file.c_str(), 0600), 0);
  EXPECT_EQ(read(), HistoryStore::kFailed);
}

}  // namespace
}  // namespace corvane::test
