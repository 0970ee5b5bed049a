#include "curl/listing_reader.h"

#include <algorithm>
#include <utility>

namespace corvane {

ListingReader::ListingReader(ListingForm form, DateTime now, std::function<bool(std::string_view name)> wanted)
    : form_(form), now_(now), wanted_(std::move(wanted)) {}

bool ListingReader::Take(std::string_view bytes) {
  length_ += bytes.size();
  if (length_ > kLongestListing) return false;
  while (!bytes.empty()) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    const std::size_t room = kLongestLine - line_.size();
    cut_ = cut_ || end > room;
    line_.append(bytes.substr(0, std::min(end, room)));
    if (end == bytes.size()) return true;
    bytes.remove_prefix(end + 1);
    End();
  }
  return true;
}

void ListingReader::End() {
  while (!line_.empty() && line_.back() == '\r') line_.pop_back();
  TakeLine(line_);
  line_.clear();
  cut_ = false;
}

void ListingReader::TakeLine(std::string_view line) {
  constexpr std::size_t kLongestLogged = 200;
  ListingEntry entry;
  const ListingLine kind = cut_ ? ListingLine::Unknown : ParseListingLine(form_, line, now_, entry);
  if (kind == ListingLine::Unknown && skipped_.size() < kMostSkipped) {
    skipped_.emplace_back(line.substr(0, kLongestLogged));
  }
  if (kind != ListingLine::Entry || !wanted_(entry.record.name)) return;
  if (entry.is_link) links_.push_back(records_.size());
  records_.push_back(std::move(entry.record));
}

}  // namespace corvane
