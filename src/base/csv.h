// Tables as text, as spreadsheets write and read them (RFC 4180, with other separators too).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// One row of a table, and the line of the file that it begins in, from 1.
struct CsvRow {
  std::int64_t line = 1;
  std::vector<std::string> cells;  ///< line breaks in them are "\n"
};

/// What is wrong with quotes: they have no end, so that the cell ends with its line; or text stands behind their end.
enum class CsvProblem : std::uint8_t { OpenQuote, BehindQuote };

/// What is wrong with a row; the rest of the file was read.
struct CsvFault {
  std::int64_t line = 1;
  CsvProblem problem = CsvProblem::OpenQuote;
};

struct CsvContents {
  std::vector<CsvRow> rows;  ///< without those that are all empty
  std::vector<CsvFault> faults;
  char separator = ',';
};

/// Takes UTF-8 text apart. The separator is what the first line holds most of: comma, semicolon or tab; a first line
/// "sep=;" says it and is no row. Lines end with LF, CR LF or CR.
[[nodiscard]] CsvContents ParseCsv(std::string_view text);
/// Appends one row with commas and a CR LF; cells are quoted where they have to be.
void AppendCsvRow(std::string& out, const std::vector<std::string>& cells);

}  // namespace corvane
