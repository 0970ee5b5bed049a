#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "base/dates.h"

namespace corvane {

/// The lines of one unit that are kept beside its raw file, because no download gets past them or because their date
/// would silence the unit. Format: docs/formats/bad-lines.md.
class BadLines {
 public:
  static constexpr std::string_view kFutureDate = "date in the future";
  static constexpr std::int64_t kMostBytes = 1024 * 1024;
  static constexpr std::int64_t kMostInDownload = 20;

  /// A download into `as_RawFile` begins; its last good line so far is `as_LastGood`. `al_Round` tells rounds apart.
  void BeginDownload(const std::string& as_RawFile, std::string_view as_LastGood, std::int64_t al_Round);
  /// The full name of the file that keeps the lines.
  [[nodiscard]] const std::string& file() const { return file_; }
  /// True when the line is kept already.
  [[nodiscard]] bool Hold(std::string_view as_Line) const;
  /// Another good line has arrived.
  void TakeGood(std::string_view as_Line) { last_good_ = as_Line; }
  /// Notes that a line would stop the download; true when it has come so often in the same place that the line is the
  /// cause and not the link: in two tries with a right checksum, else in three, one of them in a later round.
  [[nodiscard]] bool IsTheCause(std::string_view as_Line, bool ab_ChecksumGood);
  /// Keeps a line and waits until it is on the disk. Throws `RunTimeError` when that fails or the file would become
  /// larger than `kMostBytes`.
  void Add(DateTime av_Now, std::string_view as_Reason, std::string_view as_Line);
  /// The download has come to its end: what stopped earlier ones did so by chance.
  void EndWell() { suspects_.erase(file_); }

 private:
  /// A line that has stopped downloads.
  struct Suspect {
    std::string behind;  ///< the last good line before it
    int tries = 0;
    std::int64_t first_round = 0;
  };

  std::string file_;
  std::string last_good_;
  std::int64_t round_ = 0;
  std::set<std::string, std::less<>> lines_;
  std::map<std::string, std::map<std::string, Suspect, std::less<>>> suspects_;  ///< by file, then by line
};

}  // namespace corvane
