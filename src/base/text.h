#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

inline constexpr std::string_view kLineBreak = "\r\n";

/// `text` with the ASCII letters in lower case; other bytes stay.
[[nodiscard]] std::string ToLower(std::string_view text);
/// `text` with the ASCII letters in upper case; other bytes stay.
[[nodiscard]] std::string ToUpper(std::string_view text);
/// Compares without regard to the case of ASCII letters.
[[nodiscard]] bool EqualsNoCase(std::string_view a, std::string_view b);
/// True when `text` begins with `start`, without regard to the case of ASCII letters.
[[nodiscard]] bool StartsWithNoCase(std::string_view text, std::string_view start);
/// Orders as a case-insensitive text comparison of ASCII letters does: below, at or above zero.
[[nodiscard]] int CompareNoCase(std::string_view a, std::string_view b);

/// For containers of names that are looked up without regard to the case of ASCII letters, and without a copy.
struct NoCaseHash {
  using is_transparent = void;
  [[nodiscard]] std::size_t operator()(std::string_view text) const;
};
struct NoCaseEqual {
  using is_transparent = void;
  [[nodiscard]] bool operator()(std::string_view a, std::string_view b) const { return EqualsNoCase(a, b); }
};

/// `text` without blanks and tabs at both ends.
[[nodiscard]] std::string_view Trim(std::string_view text);
/// The fields of `text` between separators, empty ones included; the views point into `text`. Empty text: one field.
[[nodiscard]] std::vector<std::string_view> Split(std::string_view text, char separator);
/// Splits into `fields`, reusing its memory.
void SplitInto(std::string_view text, char separator, std::vector<std::string_view>& fields);

/// `text` with every character whose code is below 32 or above 128 written as "[" + decimal code + "]".
///
/// Characters of UTF-8 sequences above 128 are written byte by byte.
[[nodiscard]] std::string Visible(std::string_view text);
/// Appends `Visible(text)` to `out`.
void AppendVisible(std::string& out, std::string_view text);

/// True when `text` holds a character below the blank, or the one of code 127.
[[nodiscard]] bool HasControlCharacter(std::string_view text);

/// `number` in decimal, at least `width` digits, with leading zeros; a minus sign comes before the digits.
[[nodiscard]] std::string ZeroPadded(long long number, int width);

/// `text` cut to at most `characters` UTF-8 characters, never inside a character.
[[nodiscard]] std::string_view CutCharacters(std::string_view text, std::size_t characters);

/// "True" or "False".
[[nodiscard]] std::string_view TrueFalse(bool value);

}  // namespace corvane
