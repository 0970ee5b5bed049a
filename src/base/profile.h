#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/text.h"

namespace corvane {

/// A private-profile (INI) file held as its raw lines, so that what the program does not know survives a save.
///
/// Sections and keys compare without regard to case; the first of doubles wins. Comments, unknown lines, order and the
/// file's line ends stay (a mixture becomes what its first line has); a new key goes to the end of its section, a new
/// section to the end of the file. Finding a key takes constant time. Format: docs/formats/settings-file.md.
class ProfileFile {
 public:
  static constexpr long long kLargestFile = 64LL * 1024 * 1024;

  /// Takes the text of a whole file in place of what is held. NUL bytes are read as blanks.
  void Parse(std::string contents);
  /// The text of the file as it is to be written.
  [[nodiscard]] std::string Text() const;

  /// True when `section` holds `key`.
  [[nodiscard]] bool Has(std::string_view section, std::string_view key) const;
  /// The value with blanks trimmed and one pair of quotes around it removed; `missing` when there is no such key.
  [[nodiscard]] std::string Get(std::string_view section, std::string_view key, std::string_view missing) const;
  /// Replaces the value, or adds key and section. CR, LF, tabs and NUL in `value` become blanks.
  void Set(std::string_view section, std::string_view key, std::string_view value);
  /// Keys of a section in file order.
  [[nodiscard]] std::vector<std::string> Keys(std::string_view section) const;
  /// True when a line was found that is neither section, key, comment nor blank.
  [[nodiscard]] bool has_broken_lines() const { return has_broken_lines_; }
  /// True when two sections have the same name, of which only the first is used.
  [[nodiscard]] bool has_doubled_sections() const { return has_doubled_sections_; }

 private:
  struct Line {
    std::string text;             ///< without its line end
    std::size_t value_start = 0;  ///< 0 in a line that is no key
    /// Whether it is "KEY=VALUE", without a blank before the sign; in any case of letters.
    [[nodiscard]] bool Bears(std::string_view key) const {
      return value_start > key.size() && text[key.size()] == '=' && StartsWithNoCase(text, key);
    }
  };
  using Index = std::unordered_map<std::string, std::size_t, NoCaseHash, NoCaseEqual>;
  struct Section {
    std::string name;
    std::string heading;  ///< the line as it stands; empty for lines before the first section
    std::vector<Line> lines;
    Index keys;  ///< key to its line
    bool has_doubled_keys = false;
    mutable std::size_t last = 0;  ///< the line that was found last
  };
  Section& AddSection(std::string_view name, std::string_view heading);
  void ParseLine(std::string_view text);
  /// The line of a key; none when the section does not hold it.
  [[nodiscard]] static std::optional<std::size_t> FindLine(const Section& section, std::string_view key);
  Section* FindSection(std::string_view name);
  const Section* FindSection(std::string_view name) const;

  std::vector<Section> sections_;
  Index section_index_;
  std::string start_;  ///< a byte-order mark the file begins with
  std::string line_end_ = "\n";
  bool has_broken_lines_ = false;
  bool has_doubled_sections_ = false;
};

}  // namespace corvane
