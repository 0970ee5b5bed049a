#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane {

/// The length in bytes of the UTF-8 character that `bytes` (not empty) begin with, 0 when it is malformed.
[[nodiscard]] std::size_t CharacterLength(std::string_view bytes);
/// True when `bytes` are well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates, nothing above U+10FFFF).
[[nodiscard]] bool IsUtf8(std::string_view bytes);
/// Windows-1252 text in UTF-8; its five unassigned bytes become the control characters of the same code.
[[nodiscard]] std::string Utf8FromWindows1252(std::string_view bytes);
/// The text of a file in UTF-8: a byte order mark is dropped; bytes that are no UTF-8 are read as Windows-1252.
[[nodiscard]] std::string DecodeText(std::string bytes);
/// A path as it stands in an address: unreserved characters and "/" stay, other bytes become "%" and two digits
/// (RFC 3986).
[[nodiscard]] std::string PercentEncoded(std::string_view path);

}  // namespace corvane
