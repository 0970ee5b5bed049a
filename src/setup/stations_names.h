#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace corvane {

/// A text of the settings as a table has it: one line of UTF-8 without blanks at its ends.
[[nodiscard]] std::string TableText(std::string_view as_Text);
/// A name without what people overlook: letter case, and all but one of the blanks that stand together.
[[nodiscard]] std::string PlainName(std::string_view as_Name);

/// The relays or clients that the cells of units may name.
class RecordNames {
 public:
  /// `as_None` stands for 0; `as_Kind` is what messages call a record.
  RecordNames(std::string_view as_Kind, std::string_view as_None) : kind_(as_Kind), none_(as_None) {}
  void Add(std::string_view as_Name, std::int32_t al_ID);

  /// The ID of a name, or of "ID 17"; without one `as_Problem` says why. `al_Present` is what the unit has now: it may
  /// stay, whatever it is.
  [[nodiscard]] std::optional<std::int32_t> Find(const std::string& as_Text, std::int32_t al_Present,
                                                 std::string& as_Problem) const;
  /// What `Find` reads back as this ID; empty where nothing is.
  [[nodiscard]] std::string TextFor(std::int32_t al_ID) const;
  [[nodiscard]] bool IsNone(std::string_view as_Name) const { return PlainName(as_Name) == PlainName(none_); }

 private:
  using IDs = std::set<std::int32_t>;
  [[nodiscard]] const IDs* Bearers(const std::string& as_Text) const;

  std::string kind_;
  std::string none_;
  std::map<std::string, IDs, std::less<>> by_name_;
  std::map<std::string, IDs, std::less<>> by_plain_name_;
  std::map<std::int32_t, std::string> names_;  ///< the first of each ID
};

}  // namespace corvane
