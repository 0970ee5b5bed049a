#pragma once

#include <cstdint>
#include <string_view>

#include "base/dates.h"
#include "platform/internet_client.h"

namespace corvane {

/// What servers answer a request for a folder's entries with.
enum class ListingForm : std::uint8_t {
  Facts,  ///< MLSD (RFC 3659): "facts; name"; times are UTC
  List,   ///< LIST: lines as of `ls -l` or of DIR, told apart line by line; times are the server's own
};

enum class ListingLine : std::uint8_t {
  Entry,
  Nothing,  ///< belongs to a listing but names no entry: the folder itself, a sum, an empty line
  Unknown,
};

struct ListingEntry {
  FindRecord record;
  bool is_link = false;  ///< whether to a file or a folder is not known; `record` says file
};

/// Reads one line of a listing, without its line end. `now` gives the year to times without one.
[[nodiscard]] ListingLine ParseListingLine(ListingForm form, std::string_view line, DateTime now, ListingEntry& entry);

/// The local time of "YYYYMMDDHHMMSS", with or without a fraction, in UTC; none when the text is no time.
[[nodiscard]] DateTime LocalTimeOf(std::string_view text);

}  // namespace corvane
