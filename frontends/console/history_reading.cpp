#include "history_reading.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "desktop/folder_holder.h"
#include "options.h"
#include "posix/local_clock.h"
#include "sqlite/sqlite_history_store.h"

namespace corvane::console {
namespace {

constexpr Moment kEver{1, 0};

struct FailureText {
  int code;
  const char* says;
};

constexpr std::array kFailures = {
    FailureText{HistoryStore::kMissing, " is not there yet: the first download makes it. --home names another folder"},
    FailureText{HistoryStore::kNewer, " was written by a newer version: use the corvanectl of that version"},
    FailureText{HistoryStore::kDamaged,
                " is damaged: the window or corvanectl run sets it aside and begins anew when it comes upon the "
                "damage; to do so "
                "now, move it away while neither runs"},
    FailureText{HistoryStore::kBusy, " is held by another program: try again in a moment"},
};

Holder HolderOf(const std::string& folder) {
  const auto held = FolderIsHeld(folder);
  if (!held) return Holder::Unknown;
  return *held ? Holder::Somebody : Holder::Nobody;
}

}  // namespace

std::string HistoryFile(const std::string& folder) {
  return AddBackslash(folder) + "history.db";
}

Status HistoryFailure(const Status& failure, const std::string& file) {
  const auto* const found = std::find_if(kFailures.begin(), kFailures.end(),
                                         [&failure](const FailureText& each) { return each.code == failure.code(); });
  if (found == kFailures.end()) return {failure.code(), "the history cannot be used: " + failure.text()};
  return {failure.code(), "the history " + file + found->says};
}

HistoryReading::HistoryReading(std::string folder) : folder_(std::move(folder)), now_(LocalClock().NowUtc()) {}

Status HistoryReading::Read(const HistoryQuery& query, HistoryContents& contents) const {
  const std::string file = HistoryFile(folder_);
  SqliteHistoryStore store;
  Status status = store.OpenToRead(file);
  if (status.ok()) status = store.Read(query, contents);
  return status.ok() ? status : HistoryFailure(status, file);
}

Status HistoryReading::ReadForStatus() {
  return Read(StatusQuery(now_), contents_);
}

Status HistoryReading::ReadUnit(std::int64_t key, HistoryContents& contents) {
  HistoryQuery query = StatusQuery(now_);
  query.unit = key;
  query.contacts_since = kEver;
  return Read(query, contents);
}

const UnitRecord& HistoryReading::FindUnit(const std::string& name) const {
  const auto id = ParseInteger(name, INT32_MIN, INT32_MAX);
  std::vector<const UnitRecord*> found;
  for (const UnitRecord& unit : contents_.units) {
    if (unit.position > 0 && EqualsNoCase(unit.name, name)) found.push_back(&unit);
  }
  const bool named = !found.empty();
  for (const UnitRecord& unit : contents_.units) {
    if (!named && id && unit.position > 0 && unit.unit_id == *id) found.push_back(&unit);
  }
  if (found.empty()) throw UsageError("there is no unit \"" + name + "\"; corvanectl status lists them");
  if (found.size() > 1) throw UsageError("several units are called \"" + name + "\": name the unit by its ID or name");
  return *found.front();
}

NetworkStatus HistoryReading::StatusOf(const std::vector<std::string>& names) const {
  const Holder holder = HolderOf(folder_);
  if (names.empty()) return WorkOutStatus(contents_, now_, holder);
  HistoryContents wanted = contents_;
  wanted.units.clear();
  for (const std::string& name : names) {
    const UnitRecord& unit = FindUnit(name);
    const bool there = std::any_of(wanted.units.begin(), wanted.units.end(),
                                   [&unit](const UnitRecord& each) { return each.key == unit.key; });
    if (!there) wanted.units.push_back(unit);
  }
  return WorkOutStatus(wanted, now_, holder);
}

}  // namespace corvane::console
