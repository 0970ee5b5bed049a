#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "base/numbers.h"
#include "base/paths.h"
#include "registry/record_editor.h"
#include "setup/stations_fields.h"
#include "setup/stations_match.h"
#include "setup/stations_phrases.h"
#include "setup/stations_table.h"

namespace corvane {

/// One kind's records on their way from what they are to what a table makes of them.
template <class Record>
class StationList {
 public:
  struct Entry {
    Record record;
    std::int64_t former = 0;  ///< its position before, from 1; 0: it is new
    std::int64_t line = 0;    ///< of its row, 0 without one
    std::vector<std::string> changes;
  };

  /// `av_Table`, whose rows these are, and the other two must outlive the list.
  StationList(StationKind ae_Kind, const RecordArray<Record>& av_Former, const StationTable& av_Table,
              const Phrases& av_Phrases)
      : kind_(ae_Kind), former_(av_Former), table_(av_Table), say_(av_Phrases) {
    for (const Record& record : av_Former) {
      entries_.push_back({record, static_cast<std::int64_t>(entries_.size()) + 1, 0, {}});
    }
  }

  [[nodiscard]] StationKind kind() const { return kind_; }
  [[nodiscard]] const StationTable& table() const { return table_; }
  [[nodiscard]] const Phrases& say() const { return say_; }
  [[nodiscard]] std::vector<Entry>& entries() { return entries_; }
  [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }
  [[nodiscard]] const RecordArray<Record>& former() const { return former_; }
  [[nodiscard]] bool has_rows() const { return !rows_.empty(); }
  /// What was deleted, as it was.
  [[nodiscard]] const std::vector<Entry>& deleted() const { return deleted_; }

  void AddRow(const StationRow& av_Row) { rows_.push_back(&av_Row); }
  [[nodiscard]] const std::vector<const StationRow*>& rows() const { return rows_; }

  /// Finds each row's record, or appends a new one for it, which is `av_Fresh`.
  void Match(const std::vector<StationMarks>& av_Rows, const std::vector<StationMarks>& av_Records,
             const Record& av_Fresh) {
    const std::vector<std::int64_t> found = MatchStations(av_Rows, av_Records);
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      if (found[row] == 0) entries_.push_back({av_Fresh, 0, 0, {}});
      const std::size_t place = found[row] == 0 ? entries_.size() - 1 : static_cast<std::size_t>(found[row] - 1);
      entries_[place].line = rows_[row]->line;
      places_.push_back(place);
    }
  }
  /// The record of a row.
  [[nodiscard]] Entry& EntryOf(std::size_t as_Row) { return entries_[places_[as_Row]]; }

  /// Takes a row's cells; `av_Skip` is a column that is left out.
  void Apply(std::size_t as_Row, const std::vector<StationField<Record>>& av_Fields,
             std::vector<StationFault>& av_Faults, StationColumn ae_Skip = StationColumn::Kind) {
    const StationRow& row = *rows_[as_Row];
    Entry& entry = EntryOf(as_Row);
    for (const StationField<Record>& field : av_Fields) {
      const auto& cell = row[field.column];
      if (!cell || field.column == ae_Skip) continue;
      const std::string before = field.text(entry.record);
      if (*cell == before && (entry.former != 0 || !cell->empty())) continue;
      if (cell->empty() && !field.empty_is_text) continue;
      const std::string problem = field.set(entry.record, *cell);
      if (!problem.empty()) av_Faults.push_back({row.line, table_.Heading(field.column), problem});
      const std::string after = field.text(entry.record);
      if (after == before) continue;
      entry.changes.push_back(
          say_.Text(kStationsSays.becomes, {table_.Heading(field.column), Shown(before), Shown(after)}));
    }
  }

  /// Appends a record that no row is of, but one of another kind on that line asks for.
  void Append(const Record& av_Record, std::int64_t al_Line) { entries_.push_back({av_Record, 0, al_Line, {}}); }

  /// Takes away what has no row and `av_MayGo` allows.
  template <class MayGo>
  void DeleteOthers(MayGo av_MayGo) {
    const auto goes = [&](const Entry& entry) { return entry.line == 0 && av_MayGo(entry.record); };
    std::ranges::copy_if(entries_, std::back_inserter(deleted_), goes);
    std::erase_if(entries_, goes);
  }

  [[nodiscard]] std::vector<Placed<Record>> Take() {
    std::vector<Placed<Record>> placed;
    placed.reserve(entries_.size());
    for (Entry& entry : entries_) placed.push_back({std::move(entry.record), entry.former});
    return placed;
  }

  /// "the unit on line 4", or by name where the table has none of it.
  [[nodiscard]] std::string Who(const Entry& av_Entry) const {
    if (av_Entry.line > 0) return say_.Text(Of(kStationsSays.on_line, kind_), {std::to_string(av_Entry.line)});
    return say_.Text(Of(kStationsSays.without_row, kind_), {Quote(TableText(av_Entry.record.Name))});
  }

  /// "unit "Hill" (17)", as it was before where it was there.
  [[nodiscard]] std::string NameOf(const Entry& av_Entry) const {
    const Record& record = av_Entry.former == 0 ? av_Entry.record : former_[av_Entry.former];
    return say_.Text(Of(kStationsSays.named, kind_), {Quote(TableText(record.Name)), std::to_string(record.ID)});
  }

 private:
  [[nodiscard]] std::string Shown(const std::string& as_Text) const {
    if (as_Text.empty()) return say_.Text(kStationsSays.nothing);
    return ParseNumber(as_Text) ? as_Text : Quote(as_Text);
  }

  StationKind kind_;
  const RecordArray<Record>& former_;
  const StationTable& table_;
  const Phrases& say_;
  std::vector<Entry> entries_;
  std::vector<Entry> deleted_;
  std::vector<const StationRow*> rows_;
  std::vector<std::size_t> places_;  ///< of each row's record in `entries_`
};

}  // namespace corvane
