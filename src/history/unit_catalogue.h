#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/history_records.h"
#include "state/file_names.h"
#include "state/records.h"

namespace corvane {

/// The units of the registry as the history knows them, in their order and without keys.
[[nodiscard]] std::vector<UnitRecord> PresentUnits(const Registry& av_Registry, const FileNames& av_Names);

/// Which unit of the history stands where in the list of units. A unit is its client, its ID and its raw file.
class UnitCatalogue {
 public:
  /// Takes over what a history holds; what was known before keeps its record, under the key that the history has for
  /// it, or under a new one where another unit has its key there.
  ///
  /// Returns the keys that changed: former and new.
  std::map<std::int64_t, std::int64_t> Adopt(const std::vector<UnitRecord>& av_Stored);
  /// Whether the lists or the names of files may have changed since this was asked last, or what is held was adopted.
  [[nodiscard]] bool MayBeBehind(const Registry& av_Registry, const FileNames& av_Names);
  /// Follows the list of units: new ones get a key, those that are gone the position 0.
  ///
  /// Returns the records that changed; of a unit that has become another one `av_Sentences` tells.
  std::vector<UnitRecord> Follow(std::vector<UnitRecord> av_Present, Moment av_Now,
                                 std::vector<std::string>& av_Sentences);
  /// The key of the unit at `al_Position` (from 1) of the list, 0 where none stands.
  [[nodiscard]] std::int64_t KeyOf(std::int64_t al_Position) const;
  /// The record of a key; nullptr when there is none. Valid until the next `Adopt` or `Follow`.
  [[nodiscard]] UnitRecord* Find(std::int64_t al_Key);
  /// The keys of all entries of the list that stand for the same station, by its radio address; that one among them.
  [[nodiscard]] std::vector<std::int64_t> EntriesOf(std::int64_t al_Key) const;
  /// All that were ever in the list, by key.
  [[nodiscard]] std::vector<UnitRecord> All() const;

 private:
  struct Lists {
    std::uint64_t edits;
    std::string example;  ///< name of a file
    bool operator==(const Lists&) const = default;
  };
  /// What tells units apart: client, ID, raw file.
  using Marks = std::tuple<std::int32_t, std::int32_t, std::string>;
  [[nodiscard]] static Marks MarksOf(const UnitRecord& av_Unit);
  [[nodiscard]] const UnitRecord* FindSame(const UnitRecord& av_Unit) const;
  /// How a station is called on the radio: ID, relay.
  using Address = std::pair<std::int32_t, std::int32_t>;
  void Put(const UnitRecord& av_Unit);
  void IndexAddresses();
  [[nodiscard]] std::int64_t NewKey() const { return units_.empty() ? 1 : units_.rbegin()->first + 1; }

  std::map<std::int64_t, UnitRecord> units_;  ///< by key
  std::map<Marks, std::int64_t> by_marks_;
  std::map<Address, std::vector<std::int64_t>> by_address_;  ///< of the units that are in the list
  std::optional<Lists> seen_;
  std::vector<std::int64_t> keys_;  ///< by position, the first at 0
  std::set<std::int64_t> shared_;   ///< keys that were said to be those of several units
};

}  // namespace corvane
