#include "base/outside_text.h"

#include "base/encoding.h"
#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kRunBySpreadsheets = "=+-@\t";

std::string Code(unsigned code) {
  return "[" + std::to_string(code) + "]";
}

/// U+202A to U+202E and U+2066 to U+2069: what follows is written in another direction.
bool TurnsDirection(std::string_view character) {
  return (character >= "\xE2\x80\xAA" && character <= "\xE2\x80\xAE") ||
         (character >= "\xE2\x81\xA6" && character <= "\xE2\x81\xA9");
}

std::string PrintableCharacter(std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  if (first < 32 || first == 127) return Code(first);
  // The two bytes of U+0080 to U+009F.
  if (first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0)
    return Code(static_cast<unsigned char>(character[1]));
  return TurnsDirection(character) ? "?" : std::string(character);
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    out += length == 0 ? "?" : PrintableCharacter(text.substr(0, length));
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return out;
}

std::string SpreadsheetField(std::string_view text) {
  // Some readers take quotes off, also behind a blank.
  const std::size_t first = text.find_first_not_of(" \"");
  const bool begins_so =
      first != std::string_view::npos && kRunBySpreadsheets.find(text[first]) != std::string_view::npos;
  return (begins_so && !ParseNumber(text) ? "'" : "") + Printable(text);
}

}  // namespace corvane
