#include "base/encoding.h"

#include <array>

namespace corvane {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The code points of the bytes 0x80 to 0x9F.
constexpr std::array<unsigned, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

/// First bytes of one length: how many bytes follow and what the first of them may be.
struct Lead {
  unsigned char first;
  unsigned char last;
  std::size_t following;
  unsigned char lowest;
  unsigned char highest;
};
constexpr std::array<Lead, 9> kLeads = {{
    {0x00, 0x7F, 0, 0, 0},
    {0xC2, 0xDF, 1, 0x80, 0xBF},
    {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF},
    {0xED, 0xED, 2, 0x80, 0x9F},
    {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF},
    {0xF1, 0xF3, 3, 0x80, 0xBF},
    {0xF4, 0xF4, 3, 0x80, 0x8F},
}};

bool IsBetween(unsigned char byte, unsigned char lowest, unsigned char highest) {
  return byte >= lowest && byte <= highest;
}

void AppendUtf8(std::string& out, unsigned code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

}  // namespace

std::size_t CharacterLength(std::string_view bytes) {
  const auto byte = [bytes](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  for (const Lead& lead : kLeads) {
    if (!IsBetween(byte(0), lead.first, lead.last)) continue;
    if (bytes.size() <= lead.following) return 0;
    for (std::size_t at = 1; at <= lead.following; ++at) {
      if (!IsBetween(byte(at), at == 1 ? lead.lowest : 0x80, at == 1 ? lead.highest : 0xBF)) return 0;
    }
    return lead.following + 1;
  }
  return 0;
}

bool IsUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = CharacterLength(bytes);
    if (length == 0) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

std::string Utf8FromWindows1252(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    AppendUtf8(text, byte >= 0x80 && byte <= 0x9F ? kWindows1252[byte - 0x80U] : byte);
  }
  return text;
}

std::string DecodeText(std::string bytes) {
  if (!IsUtf8(bytes)) return Utf8FromWindows1252(bytes);
  if (bytes.starts_with(kByteOrderMark)) bytes.erase(0, kByteOrderMark.size());
  return bytes;
}

std::string PercentEncoded(std::string_view path) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  static constexpr std::string_view kPlain = "-._~/";
  std::string encoded;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
                       kPlain.find(c) != std::string_view::npos;
    if (plain) {
      encoded += c;
    } else {
      encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return encoded;
}

}  // namespace corvane
