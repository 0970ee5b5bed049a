#include "history_reading.h"

#include <algorithm>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "desktop/folder_holder.h"
#include "history/history_reading.h"
#include "history/unit_health.h"
#include "options.h"
#include "posix/local_clock.h"
#include "sqlite/sqlite_history_store.h"
#include "units.h"

namespace corvane::console {
namespace {

Holder HolderOf(const std::string& folder) {
  const auto held = FolderIsHeld(folder);
  if (!held) return Holder::Unknown;
  return *held ? Holder::Somebody : Holder::Nobody;
}

}  // namespace

HistoryReading::HistoryReading(std::string folder) : folder_(std::move(folder)), now_(LocalClock().NowUtc()) {}

Status HistoryReading::Read(const HistoryQuery& query, HistoryContents& contents) const {
  SqliteHistoryStore store;
  return ReadHistory(store, folder_, query, contents);
}

Status HistoryReading::ReadForStatus() {
  return Read(StatusQuery(now_), contents_);
}

Status HistoryReading::ReadUnit(std::int64_t key, HistoryContents& contents) {
  return Read(HealthQuery(now_, key), contents);
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
  if (found.empty()) {
    std::vector<std::string> names;
    for (const UnitRecord& unit : contents_.units) {
      if (unit.position > 0) names.push_back(unit.name);
    }
    throw UsageError(NoUnitText(name, names, "status"));
  }
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
