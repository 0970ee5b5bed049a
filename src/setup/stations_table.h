// Units, relays and clients as rows of one table, as a spreadsheet reads and writes it. Format:
// docs/formats/stations-file.md.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lang/phrases.h"

namespace corvane {

/// What a row is about.
enum class StationKind : std::uint8_t { Relay, Client, Unit };

/// The columns, in the order in which they are written.
enum class StationColumn : std::uint8_t {
  Kind,
  Name,
  ID,
  Active,
  Relay,
  Client,
  GetFrom,
  SendTo,
  MoistureCorrection,
  SalinityCorrection,
  Depths,
  PasswordStyle,
  Folder,
  UserID,
};
inline constexpr std::size_t kStationColumns = 14;

/// The heading of a column.
[[nodiscard]] std::string_view HeadingOf(StationColumn ae_Column);
/// "unit", "relay" or "client", as the column Kind has it.
[[nodiscard]] std::string_view WordOf(StationKind ae_Kind);
/// True when a record of that kind has something in that column.
[[nodiscard]] bool HasColumn(StationKind ae_Kind, StationColumn ae_Column);

/// One row: a record by the texts of its cells.
struct StationRow {
  StationKind kind = StationKind::Unit;
  std::int64_t line = 0;  ///< of the file, from 1; 0 for a row that comes from no file
  /// Texts without blanks at their ends, by `StationColumn`; none where the table has no such column: then the record
  /// keeps what it has, and a new one gets what the command New gives.
  std::array<std::optional<std::string>, kStationColumns> cells;

  [[nodiscard]] std::optional<std::string>& operator[](StationColumn ae_Column) {
    return cells[static_cast<std::size_t>(ae_Column)];
  }
  [[nodiscard]] const std::optional<std::string>& operator[](StationColumn ae_Column) const {
    return cells[static_cast<std::size_t>(ae_Column)];
  }
};

/// What is wrong in a table, and where.
struct StationFault {
  std::int64_t line = 0;  ///< from 1; 0 where it is in no line
  std::string column;     ///< its heading; empty where it is the whole line
  std::string text;

  /// "line 4, Relay: there is no ...".
  [[nodiscard]] std::string Sentence(const Phrases& av_Phrases = {}) const;
};

struct StationTable {
  std::vector<StationRow> rows;
  std::vector<std::string> unused;   ///< headings of columns that are none of these
  std::vector<StationFault> faults;  ///< what is wrong with the file itself
  std::int64_t heading_line = 0;     ///< of the file; 0 without one
  bool has_ids = true;               ///< there is a column ID
  /// What the file calls its columns, by `StationColumn`; empty where that is the heading itself.
  std::array<std::string, kStationColumns> own_headings;
  std::vector<std::string> names_left_out;  ///< of rows whose kind cannot be told

  /// What messages call a column: as the file does.
  [[nodiscard]] std::string Heading(StationColumn ae_Column) const;
};

/// The largest file that is read, in bytes.
inline constexpr std::int64_t kLargestStationsFile = 64LL * 1024 * 1024;

/// Reads the bytes of a file: UTF-8 or Windows-1252, with commas, semicolons or tabs. Without a column "Kind" every row
/// is a unit. What the cells say is looked at by `PlanStations`.
[[nodiscard]] StationTable ReadStations(std::string as_Bytes, const Phrases& av_Phrases = {});
/// The file of a table: UTF-8 with a byte order mark, commas, lines that end with CR LF. What a spreadsheet would run
/// is kept from it by "'", which `ReadStations` takes away again.
[[nodiscard]] std::string StationsFile(const StationTable& av_Table);

/// The words in which a table's faults, changes and notes are told.
[[nodiscard]] std::vector<Phrase> StationsPhraseList();

}  // namespace corvane
