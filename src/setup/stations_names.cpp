#include "setup/stations_names.h"

#include <algorithm>
#include <functional>
#include <limits>

#include "base/encoding.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kBeforeID = "id ";

std::optional<std::int32_t> NumberIn(std::string_view as_Text) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (StartsWithNoCase(as_Text, kBeforeID)) as_Text.remove_prefix(kBeforeID.size());
  const auto number = ParseInteger(as_Text, Limits::min(), Limits::max());
  return number ? std::optional(static_cast<std::int32_t>(*number)) : std::nullopt;
}

}  // namespace

std::string TableText(std::string_view as_Text) {
  // Bytes that are no UTF-8 were written into the settings by an editor of old.
  std::string text = IsUtf8(as_Text) ? std::string(as_Text) : Utf8FromWindows1252(as_Text);
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < 32; }, ' ');
  return std::string(Trim(text));
}

std::string PlainName(std::string_view as_Name) {
  std::string plain;
  for (const std::string_view word : Split(as_Name, ' ')) {
    if (word.empty()) continue;
    if (!plain.empty()) plain += ' ';
    plain += ToLower(word);
  }
  return plain;
}

void RecordNames::Add(std::string_view as_Name, std::int32_t al_ID) {
  const std::string name = TableText(as_Name);
  by_name_[name].insert(al_ID);
  by_plain_name_[PlainName(name)].insert(al_ID);
  names_.emplace(al_ID, name);
}

const RecordNames::IDs* RecordNames::Bearers(const std::string& as_Text) const {
  const auto exact = by_name_.find(as_Text);
  if (exact != by_name_.end()) return &exact->second;
  const auto plain = by_plain_name_.find(PlainName(as_Text));
  return plain == by_plain_name_.end() ? nullptr : &plain->second;
}

std::optional<std::int32_t> RecordNames::Find(const std::string& as_Text, std::int32_t al_Present,
                                              std::string& as_Problem) const {
  if (IsNone(as_Text)) return 0;
  if (const IDs* bearers = Bearers(as_Text); bearers != nullptr) {
    if (bearers->size() == 1) return *bearers->begin();
    if (bearers->contains(al_Present) || IsExcused(as_Text)) return al_Present;
    as_Problem = say_.Text(words_.several, {Quote(as_Text), std::to_string(*bearers->begin())});
    return std::nullopt;
  }
  const auto number = NumberIn(as_Text);
  if (number && (*number == 0 || *number == al_Present || names_.contains(*number))) return number;
  if (std::ranges::count(words_.none_too, PlainName(as_Text)) > 0) return 0;
  if (IsExcused(as_Text)) return al_Present;
  as_Problem = say_.Text(words_.missing, {Quote(as_Text)});
  return std::nullopt;
}

bool RecordNames::IsID(std::string_view as_Text) {
  return NumberIn(as_Text).has_value();
}

std::string RecordNames::TextFor(std::int32_t al_ID) const {
  if (al_ID == 0) return std::string(words_.none);
  std::string problem;
  const auto named = names_.find(al_ID);
  if (named != names_.end() && !named->second.empty() && Find(named->second, 0, problem) == al_ID) return named->second;
  std::string text = "ID " + std::to_string(al_ID);
  return Find(text, al_ID, problem) == al_ID ? text : std::string();
}

}  // namespace corvane
