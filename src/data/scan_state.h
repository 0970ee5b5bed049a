#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "base/dates.h"

namespace corvane {

/// Writes what a scan has to remember as whole numbers, each behind a blank.
class ScanStateWriter {
 public:
  void Put(std::int64_t al_Number) {
    text_ += std::to_string(al_Number);
    text_ += ' ';
  }
  /// Dates are written as the distance to the one before, which keeps them short.
  void PutDate(DateTime av_Date) {
    Put(av_Date - before_);
    before_ = av_Date;
  }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_;
  DateTime before_;
};

/// Reads what `ScanStateWriter` has written; anything else makes it `good()` no more, and numbers are 0 from there on.
class ScanStateReader {
 public:
  explicit ScanStateReader(std::string_view as_Text) : rest_(as_Text) {}

  [[nodiscard]] std::int64_t Take(std::int64_t al_Least = std::numeric_limits<std::int64_t>::min(),
                                  std::int64_t al_Most = std::numeric_limits<std::int64_t>::max());
  [[nodiscard]] DateTime TakeDate();
  [[nodiscard]] bool good() const { return good_; }
  [[nodiscard]] bool AtEnd() const { return good_ && rest_.empty(); }

 private:
  std::string_view rest_;
  DateTime before_;
  bool good_ = true;
};

}  // namespace corvane
