// The texts of scenarios: separators, escapes, and "<*>", which stands for anything.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/serial_port.h"

namespace corvane::test {

inline std::pair<std::string, std::string> Cut(const std::string& text, const std::string& separator) {
  const std::size_t at = text.find(separator);
  if (at == std::string::npos) return {text, ""};
  return {text.substr(0, at), text.substr(at + separator.size())};
}

inline std::vector<std::string> Pieces(std::string text, const std::string& separator) {
  std::vector<std::string> pieces;
  while (!text.empty()) {
    auto [piece, rest] = Cut(text, separator);
    pieces.push_back(piece);
    text = rest;
  }
  return pieces;
}

inline std::string Joined(const std::vector<std::string>& texts) {
  std::string all;
  for (const std::string& text : texts) all += (&text == texts.data() ? "" : " | ") + text;
  return all;
}

/// True when `wanted`, in which "<*>" stands for anything, describes all of `found`.
inline bool Matches(std::string_view found, const std::string& wanted) {
  const std::size_t any = wanted.find("<*>");
  if (any == std::string::npos) return found == wanted;
  if (found.substr(0, any) != wanted.substr(0, any)) return false;
  const std::string rest = wanted.substr(any + 3);
  if (rest.empty()) return true;
  const std::string next = rest.substr(0, rest.find("<*>"));
  for (std::size_t at = found.find(next, any); at != std::string_view::npos; at = found.find(next, at + 1)) {
    if (Matches(found.substr(at), rest)) return true;
  }
  return false;
}

inline const std::map<char, char>& Escapes() {
  static const std::map<char, char> escapes = {{'r', '\r'}, {'n', '\n'}, {'t', '\t'}, {'e', '\x1b'}, {'0', '\0'}};
  return escapes;
}

/// Control characters as scenarios write them.
inline std::string Escaped(const std::string& text) {
  std::string shown = text;
  for (const auto& [letter, character] : Escapes()) {
    for (std::size_t at = 0; (at = shown.find(character, at)) != std::string::npos;) {
      shown.replace(at, 1, std::string("\\") + letter);
    }
  }
  return shown;
}

/// `text` with its escapes (\r \n \t \e \0 \xHH, else the character itself), "<HOME>" and "<COUNT*TEXT>" filled in.
inline std::string Expanded(std::string text, const std::string& home) {
  std::string out;
  while (!text.empty()) {
    const std::size_t number = text.find_first_not_of("0123456789", 1);
    std::size_t taken = 1;
    if (text[0] == '\\' && text.size() > 1) {
      const auto found = Escapes().find(text[1]);
      const bool is_hex = text[1] == 'x';
      out += is_hex                     ? static_cast<char>(std::stoi(text.substr(2, 2), nullptr, 16))
             : found == Escapes().end() ? text[1]
                                        : found->second;
      taken = is_hex ? 4 : 2;
    } else if (text.starts_with("<HOME>")) {
      out += home;
      taken = 6;
    } else if (text[0] == '<' && number > 1 && number != std::string::npos && text[number] == '*') {
      const std::size_t end = text.find('>');
      if (end == std::string::npos) throw std::invalid_argument("a \">\" is missing: " + text);
      const std::string part = Expanded(text.substr(number + 1, end - number - 1), home);
      for (int count = std::stoi(text.substr(1)); count > 0; --count) out += part;
      taken = end + 1;
    } else {
      out += text[0];
    }
    text.erase(0, taken);
  }
  return out;
}

inline const std::map<std::string, int>& PortEvents() {
  static const std::map<std::string, int> events = {{"framing", kPortFraming},    {"parity", kPortParity},
                                                    {"overrun", kPortOverrun},    {"break", kPortBreak},
                                                    {"hang-up", kPortEndOfInput}, {"cts", kPortCtsChanged}};
  return events;
}

}  // namespace corvane::test
