#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "lang/phrases.h"

namespace corvane {

/// A text of the settings as a table has it: one line of UTF-8 without blanks at its ends.
[[nodiscard]] std::string TableText(std::string_view as_Text);
/// A name without what people overlook: letter case, and all but one of the blanks that stand together.
[[nodiscard]] std::string PlainName(std::string_view as_Name);

/// What is said of the names of one kind.
struct NameWords {
  std::string_view none;                     ///< stands for 0
  std::array<std::string_view, 4> none_too;  ///< what people write for it besides, where no record is called so
  Phrase several;
  Phrase missing;
};

/// The relays or clients that the cells of units may name.
class RecordNames {
 public:
  explicit RecordNames(const NameWords& av_Words, Phrases av_Phrases = {})
      : words_(av_Words), say_(std::move(av_Phrases)) {}
  void Add(std::string_view as_Name, std::int32_t al_ID);
  /// Lets nothing be wrong with a name: what is wrong is told where a row gives it to a record.
  void Excuse(std::string_view as_Name) { excused_.insert(PlainName(as_Name)); }
  [[nodiscard]] bool IsExcused(std::string_view as_Name) const { return excused_.contains(PlainName(as_Name)); }

  /// The ID of a name, or of "ID 17"; without one `as_Problem` says why. `al_Present` is what the unit has now: it may
  /// stay, whatever it is.
  [[nodiscard]] std::optional<std::int32_t> Find(const std::string& as_Text, std::int32_t al_Present,
                                                 std::string& as_Problem) const;
  /// What `Find` reads back as this ID; empty where nothing is.
  [[nodiscard]] std::string TextFor(std::int32_t al_ID) const;
  [[nodiscard]] bool IsNone(std::string_view as_Name) const { return PlainName(as_Name) == PlainName(words_.none); }
  /// True where one or several bear that name.
  [[nodiscard]] bool Knows(const std::string& as_Name) const { return Bearers(as_Name) != nullptr; }
  /// True for a text that is the ID of a record, whether there is one or not.
  [[nodiscard]] static bool IsID(std::string_view as_Text);

 private:
  using IDs = std::set<std::int32_t>;
  [[nodiscard]] const IDs* Bearers(const std::string& as_Text) const;

  NameWords words_;
  Phrases say_;
  std::set<std::string, std::less<>> excused_;
  std::map<std::string, IDs, std::less<>> by_name_;
  std::map<std::string, IDs, std::less<>> by_plain_name_;
  std::map<std::int32_t, std::string> names_;  ///< the first of each ID
};

}  // namespace corvane
