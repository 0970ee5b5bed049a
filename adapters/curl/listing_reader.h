#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "curl/listing_parser.h"

namespace corvane {

/// Takes a listing as it comes, in pieces of any size, and keeps the entries that are wanted.
class ListingReader {
 public:
  static constexpr std::size_t kLongestLine = 8192;  ///< the rest of a longer one is dropped, and so is the line
  static constexpr std::size_t kLongestListing = 10 << 20;
  static constexpr std::size_t kMostSkipped = 100;

  ListingReader(ListingForm form, DateTime now, std::function<bool(std::string_view name)> wanted);

  /// False when the listing is too long to go on.
  [[nodiscard]] bool Take(std::string_view bytes);
  /// The listing is complete.
  void End();

  std::vector<FindRecord>& records() { return records_; }
  /// The places of links among the records.
  [[nodiscard]] const std::vector<std::size_t>& links() const { return links_; }
  /// The first lines that could not be read, cut to a length fit for a log.
  [[nodiscard]] const std::vector<std::string>& skipped() const { return skipped_; }

 private:
  void TakeLine(std::string_view line);

  ListingForm form_;
  DateTime now_;
  std::function<bool(std::string_view name)> wanted_;
  std::size_t length_ = 0;
  std::string line_;
  bool cut_ = false;  ///< the line was too long
  std::vector<FindRecord> records_;
  std::vector<std::size_t> links_;
  std::vector<std::string> skipped_;
};

}  // namespace corvane
