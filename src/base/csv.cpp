#include "base/csv.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kSeparators = ",;\t";
constexpr std::string_view kSaysSeparator = "sep=";

/// Where the line that begins at `start` ends, line breaks between quotes left out.
std::size_t EndOfLine(std::string_view text) {
  bool quoted = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '"') quoted = !quoted;
    if (!quoted && (text[at] == '\n' || text[at] == '\r')) return at;
  }
  return text.size();
}

char SeparatorOf(std::string_view line) {
  std::size_t most = 0;
  char found = kSeparators.front();
  for (const char separator : kSeparators) {
    std::size_t count = 0;
    bool quoted = false;
    for (const char c : line) {
      if (c == '"') quoted = !quoted;
      if (c == separator && !quoted) ++count;
    }
    if (count > most) {
      most = count;
      found = separator;
    }
  }
  return found;
}

/// Reads the rows of a text one by one.
class Reader {
 public:
  Reader(std::string_view text, char separator) : text_(text), separator_(separator) {}

  /// Takes the next row; false at the end.
  bool Next(CsvRow& row, std::vector<CsvFault>& faults) {
    if (at_ >= text_.size()) return false;
    row.line = line_;
    row.cells.assign(1, {});
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (c == '"' && row.cells.back().empty() && !closed_) {
        TakeQuoted(row, faults);
        continue;
      }
      ++at_;
      if (c == separator_) {
        row.cells.emplace_back();
        closed_ = false;
      } else if (IsLineEnd(c)) {
        break;
      } else {
        NoticeBehindQuote(c, row, faults);
        row.cells.back() += c;
      }
    }
    closed_ = false;
    return true;
  }

 private:
  /// True for the end of a line, which is passed as a whole.
  bool IsLineEnd(char c) {
    if (c != '\n' && c != '\r') return false;
    if (c == '\r' && at_ < text_.size() && text_[at_] == '\n') ++at_;
    ++line_;
    return true;
  }

  void TakeQuoted(CsvRow& row, std::vector<CsvFault>& faults) {
    const std::int64_t begun = line_;
    const std::size_t from = ++at_;
    while (at_ < text_.size()) {
      const char c = text_[at_++];
      if (c == '"' && (at_ >= text_.size() || text_[at_] != '"')) {
        closed_ = true;
        return;
      }
      if (c == '"') ++at_;
      row.cells.back() += IsLineEnd(c) ? '\n' : c;
    }
    // The rows below are rows still.
    faults.push_back({begun, CsvProblem::OpenQuote});
    at_ = std::min(text_.find_first_of("\r\n", from), text_.size());
    line_ = begun;
    row.cells.back() = text_.substr(from, at_ - from);
    closed_ = true;
  }

  void NoticeBehindQuote(char c, const CsvRow& row, std::vector<CsvFault>& faults) {
    if (!closed_ || c == ' ') return;
    closed_ = false;
    faults.push_back({row.line, CsvProblem::BehindQuote});
  }

  std::string_view text_;
  char separator_;
  std::size_t at_ = 0;
  std::int64_t line_ = 1;
  bool closed_ = false;  ///< the quotes of the present cell have ended
};

bool IsEmpty(const CsvRow& row) {
  return std::ranges::all_of(row.cells, [](const std::string& cell) { return Trim(cell).empty(); });
}

}  // namespace

CsvContents ParseCsv(std::string_view text) {
  CsvContents contents;
  const std::string_view first = text.substr(0, EndOfLine(text));
  const bool said = first.size() == kSaysSeparator.size() + 1 && StartsWithNoCase(first, kSaysSeparator);
  contents.separator = said ? first.back() : SeparatorOf(first);
  Reader reader(text, contents.separator);
  CsvRow row;
  if (said) (void)reader.Next(row, contents.faults);
  while (reader.Next(row, contents.faults)) {
    if (!IsEmpty(row)) contents.rows.push_back(std::move(row));
    row = {};
  }
  return contents;
}

void AppendCsvRow(std::string& out, const std::vector<std::string>& cells) {
  for (std::size_t cell = 0; cell < cells.size(); ++cell) {
    if (cell > 0) out += ',';
    const std::string& text = cells[cell];
    const bool blank_at_end = text != Trim(text);
    if (!blank_at_end && text.find_first_of(",;\t\"\r\n") == std::string::npos) {
      out += text;
      continue;
    }
    out += '"';
    for (const char c : text) out += c == '"' ? "\"\"" : std::string(1, c);
    out += '"';
  }
  out += kLineBreak;
}

}  // namespace corvane
