// What a power cut or a disturbed line has left in a raw file. Format: docs/formats/raw-file.md.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/dates.h"
#include "base/status.h"

namespace corvane {

/// A file under the name of a raw file that may be something else: it stays as it is and its unit is not asked.
class NoRawFile : public RunTimeError {
 public:
  using RunTimeError::RunTimeError;
};

/// Cuts an unterminated or NUL-filled tail off a raw file, so that the file ends with a whole line.
///
/// Returns the text that was cut off, without its NULs; none when the file is whole or missing. Throws `NoRawFile` when
/// more than `kLongestTail` bytes of text stand behind the last line end: nothing is cut that is not returned. Throws
/// `RunTimeError` when the file cannot be read or cut.
[[nodiscard]] std::optional<std::string> RepairTornTail(const std::string& as_File);
inline constexpr std::size_t kLongestTail = 1024;

/// NUL bytes inside raw files: pages that a power cut kept from the disk.
class RawHoles {
 public:
  struct Hole {
    std::int64_t line = 0;  ///< of its first NUL, from 1
    std::string kept_as;    ///< where the file's end from that line on stands now; empty when it was not cut
  };
  /// Looks for the first NUL of a raw file and cuts the file from that NUL's line on, when it lies in the last 64 KiB.
  ///
  /// What is cut off is on the disk as "<name>.cut-<time>" before the file becomes shorter. `av_Poll` runs after each
  /// block; it may yield and ends the search by returning false. What was found whole is not read again until the
  /// program ends. Throws `RunTimeError` when a file cannot be read, written or cut.
  [[nodiscard]] std::optional<Hole> Mend(const std::string& as_File, DateTime av_Now,
                                         const std::function<bool()>& av_Poll);

 private:
  /// How far a file is known to be whole.
  struct Whole {
    std::int64_t bytes = 0;
    std::int64_t line_begin = 0;  ///< where the line begins that holds this position
    std::int64_t lines = 0;       ///< line ends before it
  };
  std::map<std::string, Whole> whole_;
};

/// Cuts the last line off a raw file when it is `as_Line`; false when another stands there.
[[nodiscard]] bool CutLastLine(const std::string& as_File, const std::string& as_Line);

/// The first line of a raw file without its line end, at most 64 KiB of it; empty when it is missing.
[[nodiscard]] std::string FirstLineOf(const std::string& as_File);
/// True for a framed header line with a right checksum, which is what stands on line 1 of a raw file.
[[nodiscard]] bool IsRightHeader(std::string_view as_Line);
/// The SiteID that a right header tells; none for any other line.
[[nodiscard]] std::optional<std::string> SiteIDOf(std::string_view as_Line);
/// True for two texts of one SiteID: the same text, or the same number.
[[nodiscard]] bool IsSameSiteID(std::string_view as_One, std::string_view as_Other);
/// Puts `as_Header` in the place of line 1: the whole file is written anew, brought to the disk and renamed.
///
/// `av_Poll` runs after each block; it may yield, and by returning false lets all stay as it is (the result is then
/// false too). The file must be closed. Throws `RunTimeError`.
[[nodiscard]] bool ReplaceFirstLine(const std::string& as_File, std::string_view as_Header,
                                    const std::function<bool()>& av_Poll);

}  // namespace corvane
