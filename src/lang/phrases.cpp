#include "lang/phrases.h"

#include <cstddef>
#include <set>

namespace corvane {
namespace {

/// Whether a placeholder begins there.
bool IsPlaceholder(std::string_view as_Text, std::size_t al_At) {
  return as_Text[al_At] == '%' && al_At + 1 < as_Text.size() && as_Text[al_At + 1] >= '1' && as_Text[al_At + 1] <= '9';
}

std::set<char> PlaceholdersIn(std::string_view as_Text) {
  std::set<char> found;
  for (std::size_t i = 0; i < as_Text.size(); ++i) {
    if (IsPlaceholder(as_Text, i)) found.insert(as_Text[i + 1]);
  }
  return found;
}

}  // namespace

bool CanStandFor(const Phrase& av_Phrase, std::string_view as_Text) {
  return !as_Text.empty() && PlaceholdersIn(as_Text) == PlaceholdersIn(av_Phrase.english);
}

std::string Phrases::Text(const Phrase& av_Phrase, std::initializer_list<std::string_view> av_Values) const {
  std::string_view pattern = av_Phrase.english;
  if (texts_ != nullptr) {
    if (const auto found = texts_->find(av_Phrase.id); found != texts_->end()) pattern = found->second;
  }
  std::string text;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const std::size_t value = IsPlaceholder(pattern, i) ? static_cast<std::size_t>(pattern[i + 1] - '1') : 9;
    if (value < av_Values.size()) {
      text += av_Values.begin()[value];
      ++i;
    } else {
      text += pattern[i];
    }
  }
  return text;
}

}  // namespace corvane
