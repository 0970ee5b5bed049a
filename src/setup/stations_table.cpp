#include "setup/stations_table.h"

#include <algorithm>
#include <utility>

#include "base/csv.h"
#include "base/encoding.h"
#include "base/numbers.h"
#include "base/outside_text.h"
#include "base/text.h"
#include "setup/stations_phrases.h"

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

/// What people call columns besides, in English and in German, also as the window does; of several columns that could
/// be one the first of this list is it.
constexpr auto kOtherHeadings = std::to_array<std::pair<std::string_view, StationColumn>>({
    {"Type", StationColumn::Kind},
    {"Art", StationColumn::Kind},
    {"Typ", StationColumn::Kind},
    {"Station", StationColumn::Name},
    {"Station name", StationColumn::Name},
    {"Stationsname", StationColumn::Name},
    {"Unit", StationColumn::Name},
    {"Unit name", StationColumn::Name},
    {"Messstelle", StationColumn::Name},
    {"Site", StationColumn::Name},
    {"Bezeichnung", StationColumn::Name},
    {"Radio ID", StationColumn::ID},
    {"Funk-ID", StationColumn::ID},
    {"Funkadresse", StationColumn::ID},
    {"Unit ID", StationColumn::ID},
    {"Station ID", StationColumn::ID},
    {"Stations-ID", StationColumn::ID},
    {"Stationsnummer", StationColumn::ID},
    {"Number", StationColumn::ID},
    {"Nummer", StationColumn::ID},
    {"Nr.", StationColumn::ID},
    {"Aktiv", StationColumn::Active},
    {"Relais", StationColumn::Relay},
    {"Kunde", StationColumn::Client},
    {"Customer", StationColumn::Client},
    {"Messwerte \u00FCber", StationColumn::GetFrom},
    {"Dateien senden an", StationColumn::SendTo},
    {"Feuchtekorrektur", StationColumn::MoistureCorrection},
    {"Salzkorrektur", StationColumn::SalinityCorrection},
    {"Depths", StationColumn::Depths},
    {"Sensortiefen", StationColumn::Depths},
    {"Tiefen", StationColumn::Depths},
    {"Passwortart", StationColumn::PasswordStyle},
    {"Ordner", StationColumn::Folder},
    {"Benutzer-ID", StationColumn::UserID},
});

constexpr std::array<std::string_view, 3> kKindWords = {"relay", "client", "unit"};
/// What people write for them besides.
constexpr auto kOtherKinds = std::to_array<std::pair<std::string_view, StationKind>>({
    {"Station", StationKind::Unit},
    {"Relais", StationKind::Relay},
    {"Kunde", StationKind::Client},
    {"Customer", StationKind::Client},
});

/// A heading without blanks, letter case, marks and what is between parentheses.
std::string PlainHeading(std::string_view text) {
  std::string plain = ToLower(text.substr(0, text.find('(')));
  std::erase_if(plain, [](char c) { return std::string_view(" \t\n.-_:").find(c) != std::string_view::npos; });
  return plain;
}

/// The column that a heading may be of.
struct Guess {
  StationColumn column;
  std::size_t rank;  ///< 0: it is the heading itself; else the lower the surer
};

std::optional<Guess> ColumnOf(std::string_view heading) {
  const std::string plain = PlainHeading(heading);
  for (std::size_t column = 0; column < kStationColumns; ++column) {
    if (plain == PlainHeading(kColumns[column].heading)) return Guess{static_cast<StationColumn>(column), 0};
  }
  for (std::size_t other = 0; other < kOtherHeadings.size(); ++other) {
    if (plain == PlainHeading(kOtherHeadings[other].first)) return Guess{kOtherHeadings[other].second, other + 1};
  }
  return std::nullopt;
}

std::optional<StationKind> KindOf(std::string_view word) {
  for (std::size_t kind = 0; kind < kKindWords.size(); ++kind) {
    if (EqualsNoCase(word, kKindWords[kind])) return static_cast<StationKind>(kind);
  }
  for (const auto& [other, kind] : kOtherKinds) {
    if (EqualsNoCase(word, other)) return kind;
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
  TableReader(StationTable& table, const Phrases& say) : table_(table), faults_(table.faults), say_(say) {}

  void TakeHeadings(const CsvRow& row) {
    table_.heading_line = row.line;
    std::vector<std::optional<Guess>> guesses;
    for (const std::string& cell : row.cells) guesses.push_back(ColumnOf(Trim(cell)));
    for (std::size_t place = 0; place < guesses.size(); ++place) {
      const std::string heading(Trim(row.cells[place]));
      const auto& guess = guesses[place];
      const bool surer = guess && std::ranges::any_of(guesses, [&](const auto& other) {
                           return other && other->column == guess->column && other->rank < guess->rank;
                         });
      const bool again = guess && !surer && Has(guess->column);
      if (again) faults_.push_back({row.line, heading, say_.Text(kStationsSays.two_columns)});
      const bool is_used = guess && !surer && !again;
      if (!is_used && !again && !heading.empty()) table_.unused.push_back(heading);
      columns_.push_back(is_used ? std::optional(guess->column) : std::nullopt);
      if (is_used && guess->rank > 0) table_.own_headings[static_cast<std::size_t>(guess->column)] = heading;
    }
    table_.has_ids = Has(StationColumn::ID);
    if (Has(StationColumn::Name)) return;
    faults_.push_back({row.line, "", say_.Text(kStationsSays.no_name_column)});
    columns_.clear();
  }

  [[nodiscard]] bool has_headings() const { return !columns_.empty(); }

  void TakeRow(const CsvRow& csv) {
    StationRow row;
    row.line = csv.line;
    for (std::size_t place = 0; place < csv.cells.size(); ++place) {
      const std::string_view text = Trim(csv.cells[place]);
      if (place >= columns_.size() && !text.empty()) {
        faults_.push_back({csv.line, "", say_.Text(kStationsSays.more_cells, {Shown(text)})});
        break;
      }
      if (place < columns_.size() && columns_[place]) row[*columns_[place]] = Trim(WithoutMark(text));
    }
    if (!TakeKind(row)) return;
    LeaveOutStrange(row);
    table_.rows.push_back(std::move(row));
  }

 private:
  [[nodiscard]] bool Has(StationColumn column) const { return std::ranges::count(columns_, std::optional(column)) > 0; }

  bool TakeKind(StationRow& row) {
    const auto& word = row[StationColumn::Kind];
    if (!Has(StationColumn::Kind)) return true;
    const auto kind = KindOf(word.value_or(""));
    if (kind) row.kind = *kind;
    if (!kind) {
      faults_.push_back({row.line, table_.Heading(StationColumn::Kind),
                         say_.Text(kStationsSays.no_kind, {Shown(word.value_or(""))})});
      table_.names_left_out.push_back(row[StationColumn::Name].value_or(""));
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
        faults_.push_back({row.line, table_.Heading(column),
                           say_.Text(kStationsSays.not_of_kind, {say_.Text(Of(kStationsSays.word, row.kind))})});
      }
      cell.reset();
    }
  }

  StationTable& table_;
  std::vector<StationFault>& faults_;
  const Phrases& say_;
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

std::string StationFault::Sentence(const Phrases& av_Phrases) const {
  std::string where = column;
  const std::string number = std::to_string(line);
  if (line > 0 && column.empty()) where = av_Phrases.Text(kStationsSays.line, {number});
  if (line > 0 && !column.empty()) where = av_Phrases.Text(kStationsSays.line_and_column, {number, column});
  return where.empty() ? text : where + ": " + text;
}

std::string StationTable::Heading(StationColumn ae_Column) const {
  const std::string& own = own_headings[static_cast<std::size_t>(ae_Column)];
  return own.empty() ? std::string(HeadingOf(ae_Column)) : own;
}

StationTable ReadStations(std::string as_Bytes, const Phrases& av_Phrases) {
  StationTable table;
  if (as_Bytes.find('\0') != std::string::npos) {
    table.faults.push_back({0, "", av_Phrases.Text(kStationsSays.no_text)});
    return table;
  }
  const CsvContents contents = ParseCsv(DecodeText(std::move(as_Bytes)));
  for (const CsvFault& fault : contents.faults) {
    const bool is_open = fault.problem == CsvProblem::OpenQuote;
    table.faults.push_back(
        {fault.line, "", av_Phrases.Text(is_open ? kStationsSays.open_quote : kStationsSays.behind_quote)});
  }
  if (contents.rows.empty()) {
    table.faults.push_back({0, "", av_Phrases.Text(kStationsSays.empty_file)});
    return table;
  }
  TableReader reader(table, av_Phrases);
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

std::vector<Phrase> StationsPhraseList() {
  return PhrasesIn(kStationsSays);
}

}  // namespace corvane
