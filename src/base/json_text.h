#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/dates.h"

namespace corvane {

/// Appends `text` to `out` as a JSON string, quotes included: control characters escaped, each byte that is no UTF-8 as
/// U+FFFD. A line of it stays one line everywhere.
void AppendJsonString(std::string& out, std::string_view text);

/// Writes one JSON value from its begin to its end, two blanks a level, or in one line.
///
/// Nothing keeps a caller from leaving a list open; whoever writes a document closes what it opened.
class JsonWriter {
 public:
  explicit JsonWriter(bool one_line = false) : one_line_(one_line) {}

  /// What follows until `End` are the members of an object, or the values of a list; `name` empty inside lists.
  void BeginObject(std::string_view name = {}) { Begin(name, '{', '}'); }
  void BeginList(std::string_view name = {}) { Begin(name, '[', ']'); }
  void End();

  void Text(std::string_view name, std::string_view value);
  void Bool(std::string_view name, bool value);
  void Integer(std::string_view name, std::int64_t value);
  /// With at most `decimals` decimals; null where there is none, or a value that JSON cannot hold.
  void Number(std::string_view name, std::optional<double> value, int decimals);
  void Integer(std::string_view name, std::optional<std::int64_t> value);
  void Null(std::string_view name);
  /// "2026-11-22T06:00:00Z", null for none.
  void Utc(std::string_view name, Moment value);
  /// "2026-11-22T06:00:00", of a clock that knows no zone; null for none.
  void Local(std::string_view name, DateTime value);

  /// The document, with a line end. To be called once, behind the last `End`.
  [[nodiscard]] std::string Take();

 private:
  void Begin(std::string_view name, char opens, char closes);
  /// Everything before a value: comma, line, name.
  void Lead(std::string_view name);
  void Line();

  bool one_line_;
  std::string out_;
  std::vector<char> closes_;
  bool empty_ = true;  ///< nothing stands in the innermost object or list yet
};

}  // namespace corvane
