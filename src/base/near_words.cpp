#include "base/near_words.h"

#include <algorithm>
#include <cstddef>

#include "base/text.h"

namespace corvane {
namespace {

constexpr std::size_t kLongestWord = 64;   // bytes; a longer one is no slip of the pen
constexpr std::size_t kLettersAFault = 3;  // so many letters allow one fault more
constexpr std::size_t kShortestStart = 3;

/// How many letters have to be changed, left out, put in or exchanged with their neighbour.
std::size_t Faults(std::string_view a, std::string_view b) {
  std::vector<std::size_t> before;
  std::vector<std::size_t> last(b.size() + 1);
  for (std::size_t column = 0; column <= b.size(); ++column) last[column] = column;
  for (std::size_t row = 1; row <= a.size(); ++row) {
    std::vector<std::size_t> next(b.size() + 1, row);
    for (std::size_t column = 1; column <= b.size(); ++column) {
      const bool same = a[row - 1] == b[column - 1];
      next[column] = std::min({last[column] + 1, next[column - 1] + 1, last[column - 1] + (same ? 0 : 1)});
      const bool exchanged = row > 1 && column > 1 && a[row - 1] == b[column - 2] && a[row - 2] == b[column - 1];
      if (exchanged) next[column] = std::min(next[column], before[column - 2] + 1);
    }
    before = std::move(last);
    last = std::move(next);
  }
  return last.back();
}

}  // namespace

std::string NearestWord(std::string_view word, const std::vector<std::string>& words) {
  if (word.empty() || word.size() > kLongestWord) return {};
  const std::string typed = ToLower(word);
  std::string nearest;
  std::size_t fewest = 1 + std::max<std::size_t>(1, typed.size() / kLettersAFault);
  for (const std::string& candidate : words) {
    const std::string whole = ToLower(candidate.substr(0, kLongestWord));
    // A beginning counts as one fault: an abbreviation is as likely as a slip.
    const bool begun = typed.size() >= kShortestStart && whole.starts_with(typed);
    const std::size_t faults = begun ? std::min<std::size_t>(1, whole.size() - typed.size()) : Faults(typed, whole);
    if (faults >= fewest) continue;
    fewest = faults;
    nearest = candidate;
  }
  return nearest;
}

std::string DidYouMean(std::string_view word, const std::vector<std::string>& words) {
  const std::string nearest = NearestWord(word, words);
  return nearest.empty() ? std::string() : "; did you mean " + nearest + "?";
}

}  // namespace corvane
