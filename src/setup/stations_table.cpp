#include "setup/stations_table.h"

#include <algorithm>
#include <utility>

#include "base/csv.h"
#include "base/encoding.h"
#include "base/numbers.h"
#include "base/outside_text.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kLongestQuote = 60;  ///< characters of a cell that a message shows

enum KindBits : unsigned { kOfRelay = 1, kOfClient = 2, kOfUnit = 4, kOfAll = 7 };

struct ColumnRow {
  std::string_view heading;
  unsigned kinds;
};

constexpr std::array<ColumnRow, kStationColumns> kColumns = {{
    {"Kind", kOfAll},
    {"Name", kOfAll},
    {"ID", kOfAll},
    {"Active", kOfUnit},
    {"Relay", kOfUnit},
    {"Client", kOfUnit},
    {"Get readings by", kOfUnit},
    {"Send files to", kOfUnit},
    {"Moisture correction", kOfUnit},
    {"Salinity correction", kOfUnit},
    {"Sensor depths (cm)", kOfUnit},
    {"Password style", kOfRelay},
    {"Folder", kOfClient},
    {"User ID", kOfClient},
}};

/// What people call columns besides: as the tables of the window are headed, in English and in German.
constexpr std::array<std::pair<std::string_view, StationColumn>, 7> kOtherHeadings = {{
    {"Depths", StationColumn::Depths},
    {"Tiefen", StationColumn::Depths},
    {"Sensortiefen", StationColumn::Depths},
    {"Relais", StationColumn::Relay},
    {"Kunde", StationColumn::Client},
    {"Ordner", StationColumn::Folder},
    {"Aktiv", StationColumn::Active},
}};

constexpr std::array<std::string_view, 3> kKindWords = {"relay", "client", "unit"};

/// A heading without blanks, letter case and what is between parentheses.
std::string PlainHeading(std::string_view text) {
  std::string plain = ToLower(text.substr(0, text.find('(')));
  std::erase_if(plain, [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
  return plain;
}

std::optional<StationColumn> ColumnOf(std::string_view heading) {
  const std::string plain = PlainHeading(heading);
  for (std::size_t column = 0; column < kStationColumns; ++column) {
    if (plain == PlainHeading(kColumns[column].heading)) return static_cast<StationColumn>(column);
  }
  for (const auto& [other, column] : kOtherHeadings) {
    if (plain == PlainHeading(other)) return column;
  }
  return std::nullopt;
}

std::optional<StationKind> KindOf(std::string_view word) {
  for (std::size_t kind = 0; kind < kKindWords.size(); ++kind) {
    if (EqualsNoCase(word, kKindWords[kind])) return static_cast<StationKind>(kind);
  }
  return std::nullopt;
}

std::string Shown(std::string_view text) {
  return "\"" + std::string(CutCharacters(text, kLongestQuote)) + "\"";
}

/// True when a spreadsheet would run what stands behind the "'" that the text may begin with.
bool IsRun(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of('\''), text.size()));
  return SpreadsheetField(text).starts_with('\'');
}

std::string Harmless(std::string_view text) {
  return (IsRun(text) ? "'" : "") + std::string(text);
}

std::string_view WithoutMark(std::string_view text) {
  if (text.starts_with('\'') && IsRun(text)) text.remove_prefix(1);
  return text;
}

/// Reads the rows of one file.
class TableReader {
 public:
  explicit TableReader(StationTable& table) : table_(table), faults_(table.faults) {}

  void TakeHeadings(const CsvRow& row) {
    for (const std::string& cell : row.cells) {
      const std::string_view heading = Trim(cell);
      const auto column = ColumnOf(heading);
      const bool again = column && std::ranges::count(columns_, column) > 0;
      if (again) faults_.push_back({row.line, std::string(heading), "there are two columns of this name"});
      if (!column && !heading.empty()) table_.unused.emplace_back(heading);
      columns_.push_back(column);
    }
    if (std::ranges::count(columns_, std::optional(StationColumn::Name)) > 0) return;
    faults_.push_back({row.line, "",
                       "this is no table of stations: no column has the heading Name. The first line holds the "
                       "headings, with commas, semicolons or tabs between them"});
    columns_.clear();
  }

  [[nodiscard]] bool has_headings() const { return !columns_.empty(); }

  void TakeRow(const CsvRow& csv) {
    StationRow row;
    row.line = csv.line;
    for (std::size_t place = 0; place < csv.cells.size(); ++place) {
      const std::string_view text = Trim(csv.cells[place]);
      if (place >= columns_.size() && !text.empty()) {
        faults_.push_back({csv.line, "", "there are more cells than headings, the first of them " + Shown(text)});
        break;
      }
      if (place < columns_.size() && columns_[place]) row[*columns_[place]] = Trim(WithoutMark(text));
    }
    if (!TakeKind(row)) return;
    LeaveOutStrange(row);
    table_.rows.push_back(std::move(row));
  }

 private:
  bool TakeKind(StationRow& row) {
    const auto& word = row[StationColumn::Kind];
    if (std::ranges::count(columns_, std::optional(StationColumn::Kind)) == 0) return true;
    const auto kind = KindOf(word.value_or(""));
    if (kind) row.kind = *kind;
    if (!kind) {
      faults_.push_back({row.line, std::string(HeadingOf(StationColumn::Kind)),
                         Shown(word.value_or("")) + " is none of Unit, Relay and Client"});
    }
    return kind.has_value();
  }

  /// Cells of columns that the kind does not have must be empty.
  void LeaveOutStrange(StationRow& row) {
    for (std::size_t place = 0; place < kStationColumns; ++place) {
      const auto column = static_cast<StationColumn>(place);
      auto& cell = row.cells[place];
      if (!cell || HasColumn(row.kind, column)) continue;
      if (!cell->empty()) {
        faults_.push_back({row.line, std::string(HeadingOf(column)),
                           "a " + std::string(WordOf(row.kind)) + " has nothing in this column; empty the cell"});
      }
      cell.reset();
    }
  }

  StationTable& table_;
  std::vector<StationFault>& faults_;
  std::vector<std::optional<StationColumn>> columns_;
};

}  // namespace

std::string_view HeadingOf(StationColumn ae_Column) {
  return kColumns[static_cast<std::size_t>(ae_Column)].heading;
}

std::string_view WordOf(StationKind ae_Kind) {
  return kKindWords[static_cast<std::size_t>(ae_Kind)];
}

bool HasColumn(StationKind ae_Kind, StationColumn ae_Column) {
  return (kColumns[static_cast<std::size_t>(ae_Column)].kinds & 1U << static_cast<unsigned>(ae_Kind)) != 0;
}

std::string StationFault::Sentence() const {
  std::string where = line > 0 ? "line " + std::to_string(line) : std::string();
  if (!column.empty()) where += (where.empty() ? "" : ", ") + column;
  return where.empty() ? text : where + ": " + text;
}

StationTable ReadStations(std::string as_Bytes) {
  StationTable table;
  if (as_Bytes.find('\0') != std::string::npos) {
    table.faults.push_back({0, "", "this is no text in UTF-8 or Windows-1252; save the table as CSV in UTF-8"});
    return table;
  }
  CsvContents contents = ParseCsv(DecodeText(std::move(as_Bytes)));
  for (CsvFault& fault : contents.faults) table.faults.push_back({fault.line, "", std::move(fault.text)});
  if (contents.rows.empty()) {
    table.faults.push_back({0, "", "the file is empty; its first line holds the headings, Name among them"});
    return table;
  }
  TableReader reader(table);
  reader.TakeHeadings(contents.rows.front());
  if (!reader.has_headings()) return table;
  for (std::size_t row = 1; row < contents.rows.size(); ++row) reader.TakeRow(contents.rows[row]);
  return table;
}

std::string StationsFile(const StationTable& av_Table) {
  std::string file(kByteOrderMark);
  std::vector<std::string> cells;
  for (const ColumnRow& column : kColumns) cells.emplace_back(column.heading);
  AppendCsvRow(file, cells);
  for (const StationRow& row : av_Table.rows) {
    for (std::size_t column = 0; column < kStationColumns; ++column) {
      cells[column] = Harmless(row.cells[column].value_or(""));
    }
    AppendCsvRow(file, cells);
  }
  return file;
}

}  // namespace corvane
