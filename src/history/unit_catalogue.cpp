#include "history/unit_catalogue.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace corvane {
namespace {

/// Everything that the list of units says of a unit.
bool SaysTheSame(const UnitRecord& av_One, const UnitRecord& av_Other) {
  return av_One.position == av_Other.position && av_One.name == av_Other.name && av_One.client == av_Other.client &&
         av_One.relay == av_Other.relay && av_One.relay_id == av_Other.relay_id && av_One.active == av_Other.active &&
         av_One.get_from == av_Other.get_from && av_One.sent == av_Other.sent;
}

std::string TextOfMarks(const UnitRecord& av_Unit) {
  return "client " + std::to_string(av_Unit.client_id) + ", ID " + std::to_string(av_Unit.unit_id) + ", file " +
         av_Unit.file;
}

}  // namespace

std::vector<UnitRecord> PresentUnits(const Registry& av_Registry, const FileNames& av_Names) {
  std::vector<UnitRecord> present;
  for (std::int32_t position = 1; position <= av_Registry.Units.count(); ++position) {
    const Unit& unit = av_Registry.Units[position];
    const Client* client = av_Registry.FindClient(unit.ClientID);
    const Relay* relay = unit.RelayID == 0 ? nullptr : av_Registry.FindRelay(unit.RelayID);
    UnitRecord record;
    record.client_id = unit.ClientID;
    record.unit_id = unit.ID;
    record.file = av_Names.DataFileShortName(position, false);
    record.position = position;
    record.name = unit.Name;
    if (client != nullptr) record.client = client->Name;
    if (relay != nullptr) record.relay = relay->Name;
    record.relay_id = unit.RelayID;
    record.active = unit.Active != 0;
    record.get_from = unit.GetFrom;
    record.sent = unit.ftpFile != 0;
    present.push_back(std::move(record));
  }
  return present;
}

bool UnitCatalogue::MayBeBehind(const Registry& av_Registry, const FileNames& av_Names) {
  const Lists lists{av_Registry.edits(), av_Names.DataFileShortName(FileNames::kExample, false)};
  return std::exchange(seen_, lists) != lists;
}

std::map<std::int64_t, std::int64_t> UnitCatalogue::Adopt(const std::vector<UnitRecord>& av_Stored) {
  seen_.reset();
  const auto known = std::exchange(units_, {});
  by_marks_.clear();
  for (const UnitRecord& unit : av_Stored) Put(unit);
  std::map<std::int64_t, std::int64_t> changed;
  for (const auto& [key, unit] : known) {
    const UnitRecord* same = FindSame(unit);
    UnitRecord merged = unit;
    if (same != nullptr) {
      merged.key = same->key;
      merged.added = same->added;
      merged.last_asked = std::max(same->last_asked, unit.last_asked);
      merged.last_answered = std::max(same->last_answered, unit.last_answered);
    } else if (units_.contains(key)) {
      merged.key = NewKey();
    }
    if (merged.key != key) changed[key] = merged.key;
    Put(merged);
  }
  if (keys_.empty()) {
    for (const UnitRecord& unit : av_Stored) {
      if (unit.position < 1) continue;
      const auto count = static_cast<std::size_t>(unit.position);
      if (keys_.size() < count) keys_.resize(count);
      keys_[count - 1] = unit.key;
    }
  }
  for (std::int64_t& key : keys_) {
    if (const auto found = changed.find(key); found != changed.end()) key = found->second;
  }
  IndexAddresses();
  return changed;
}

std::vector<UnitRecord> UnitCatalogue::Follow(std::vector<UnitRecord> av_Present, Moment av_Now,
                                              std::vector<std::string>& av_Sentences) {
  std::vector<UnitRecord> changed;
  std::set<std::int64_t> there;
  std::vector<std::int64_t> keys;
  for (UnitRecord& unit : av_Present) {
    const UnitRecord* known = FindSame(unit);
    unit.key = known == nullptr ? NewKey() : known->key;
    unit.added = known == nullptr ? av_Now : known->added;
    keys.push_back(unit.key);
    // Two units of the list that are one by its marks share the record, which is that of the first.
    if (!there.insert(unit.key).second) {
      if (shared_.insert(unit.key).second) {
        av_Sentences.push_back("The history keeps one record for several units of the list, \"" + unit.name +
                               "\" the later of them: " + TextOfMarks(unit));
      }
      continue;
    }
    const std::int64_t former = KeyOf(unit.position);
    if (known == nullptr && former != 0 && units_[former].name == unit.name) {
      av_Sentences.push_back("The history takes unit \"" + unit.name + "\" for another one from now on: it was " +
                             TextOfMarks(units_[former]) + " and is " + TextOfMarks(unit));
    }
    if (known != nullptr) {
      unit.last_asked = known->last_asked;
      unit.last_answered = known->last_answered;
      if (SaysTheSame(*known, unit)) continue;
    }
    Put(unit);
    changed.push_back(std::move(unit));
  }
  keys_ = std::move(keys);
  for (auto& [key, unit] : units_) {
    if (unit.position == 0 || there.contains(key)) continue;
    unit.position = 0;
    changed.push_back(unit);
  }
  if (!changed.empty()) IndexAddresses();
  return changed;
}

std::int64_t UnitCatalogue::KeyOf(std::int64_t al_Position) const {
  const auto index = static_cast<std::size_t>(al_Position - 1);
  return al_Position < 1 || index >= keys_.size() ? 0 : keys_[index];
}

UnitRecord* UnitCatalogue::Find(std::int64_t al_Key) {
  const auto found = units_.find(al_Key);
  return found == units_.end() ? nullptr : &found->second;
}

std::vector<std::int64_t> UnitCatalogue::EntriesOf(std::int64_t al_Key) const {
  std::vector<std::int64_t> entries = {al_Key};
  const auto found = units_.find(al_Key);
  if (found == units_.end()) return entries;
  const auto same = by_address_.find({found->second.unit_id, found->second.relay_id});
  if (same == by_address_.end()) return entries;
  std::copy_if(same->second.begin(), same->second.end(), std::back_inserter(entries),
               [al_Key](std::int64_t key) { return key != al_Key; });
  return entries;
}

void UnitCatalogue::IndexAddresses() {
  by_address_.clear();
  for (const auto& [key, unit] : units_) {
    if (unit.position > 0) by_address_[{unit.unit_id, unit.relay_id}].push_back(key);
  }
}

std::vector<UnitRecord> UnitCatalogue::All() const {
  std::vector<UnitRecord> all;
  for (const auto& [key, unit] : units_) all.push_back(unit);
  return all;
}

UnitCatalogue::Marks UnitCatalogue::MarksOf(const UnitRecord& av_Unit) {
  return {av_Unit.client_id, av_Unit.unit_id, av_Unit.file};
}

const UnitRecord* UnitCatalogue::FindSame(const UnitRecord& av_Unit) const {
  const auto found = by_marks_.find(MarksOf(av_Unit));
  return found == by_marks_.end() ? nullptr : &units_.at(found->second);
}

void UnitCatalogue::Put(const UnitRecord& av_Unit) {
  units_[av_Unit.key] = av_Unit;
  by_marks_[MarksOf(av_Unit)] = av_Unit.key;
}

}  // namespace corvane
