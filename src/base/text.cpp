#include "base/text.h"

#include <algorithm>
#include <cstdint>

namespace corvane {
namespace {

constexpr char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

std::string ToLower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), Lower);
  return result;
}

std::string ToUpper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), Upper);
  return result;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

std::size_t NoCaseHash::operator()(std::string_view text) const {
  // FNV-1a. The bit by which the cases differ is set in all characters: those that meet then are told apart when they
  // are compared.
  constexpr unsigned kCaseBit = 0x20;
  std::uint64_t hash = 14695981039346656037U;
  for (const char c : text) hash = (hash ^ (static_cast<unsigned char>(c) | kCaseBit)) * 1099511628211U;
  return static_cast<std::size_t>(hash);
}

bool StartsWithNoCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && EqualsNoCase(text.substr(0, start.size()), start);
}

int CompareNoCase(std::string_view a, std::string_view b) {
  const std::size_t length = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < length; ++i) {
    const int order = static_cast<unsigned char>(Lower(a[i])) - static_cast<unsigned char>(Lower(b[i]));
    if (order != 0) return order;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> fields;
  fields.reserve(8);
  SplitInto(text, separator, fields);
  return fields;
}

void SplitInto(std::string_view text, char separator, std::vector<std::string_view>& fields) {
  fields.clear();
  const char* start = text.data();
  const char* const end = start + text.size();
  // Fields are short: a plain loop is faster than a search call for each.
  for (const char* at = start; at != end; ++at) {
    if (*at != separator) continue;
    fields.emplace_back(start, static_cast<std::size_t>(at - start));
    start = at + 1;
  }
  fields.emplace_back(start, static_cast<std::size_t>(end - start));
}

std::string Visible(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  AppendVisible(result, text);
  return result;
}

void AppendVisible(std::string& out, std::string_view text) {
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= 32 && code <= 128) {
      out += c;
    } else {
      out += '[';
      out += std::to_string(code);
      out += ']';
    }
  }
}

bool HasControlCharacter(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < 32 || c == 127; });
}

std::string ZeroPadded(long long number, int width) {
  std::string digits = std::to_string(number);
  const std::size_t sign = number < 0 ? 1 : 0;
  const std::size_t wanted = static_cast<std::size_t>(width) + sign;
  if (digits.size() < wanted) digits.insert(sign, wanted - digits.size(), '0');
  return digits;
}

std::string_view CutCharacters(std::string_view text, std::size_t characters) {
  std::size_t end = 0;
  for (; end < text.size(); ++end) {
    const bool continuation = (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80;
    if (continuation) continue;
    if (characters == 0) break;
    --characters;
  }
  return text.substr(0, end);
}

std::string_view TrueFalse(bool value) {
  return value ? "True" : "False";
}

}  // namespace corvane
