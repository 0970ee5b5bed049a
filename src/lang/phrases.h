// The sentences that the program makes up, in the language of the language file.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane {

/// A text with its ID in language files. "%1" to "%9" stand for values; one and many are two phrases.
struct Phrase {
  std::int32_t id = 0;
  std::string_view english;
};

/// All that a table holds: an array of phrases, or a struct that has nothing but phrases as members.
template <class Table>
[[nodiscard]] std::vector<Phrase> PhrasesIn(const Table& av_Table) {
  static_assert(sizeof(Table) % sizeof(Phrase) == 0);
  const auto all = std::bit_cast<std::array<Phrase, sizeof(Table) / sizeof(Phrase)>>(av_Table);
  return {all.begin(), all.end()};
}

/// Whether `as_Text` can stand for the phrase: it holds the same placeholders and is not empty.
[[nodiscard]] bool CanStandFor(const Phrase& av_Phrase, std::string_view as_Text);

/// The texts of phrases in one language, English where that has none. Small to copy; a copy can be handed to a thread.
class Phrases {
 public:
  using Texts = std::map<std::int32_t, std::string>;

  /// English.
  Phrases() = default;
  /// `av_Texts` by ID, each of which can stand for its phrase.
  explicit Phrases(Texts av_Texts) : texts_(std::make_shared<const Texts>(std::move(av_Texts))) {}

  /// The phrase with its values put in; what a value holds is never taken for a placeholder.
  [[nodiscard]] std::string Text(const Phrase& av_Phrase, std::initializer_list<std::string_view> av_Values = {}) const;

 private:
  std::shared_ptr<const Texts> texts_;
};

}  // namespace corvane
