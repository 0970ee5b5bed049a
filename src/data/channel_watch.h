#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "base/dates.h"
#include "data/completeness.h"
#include "data/day_book.h"
#include "data/scan_state.h"

namespace corvane {

/// Watches the items of readings for channels that stand still or leave their table. An item is numbered as in
/// docs/formats/raw-file.md, the date being 0.
///
/// An item is held in eight bytes: its characters when there are at most seven, else its number; that one's highest
/// byte is never 0, but for 0 itself.
class ChannelWatch {
 public:
  static constexpr std::size_t kMostItems = 128;  ///< what stands behind them is not watched
  static constexpr std::ptrdiff_t kPart = 64;     ///< `Split` may read so many bytes behind the end of a line

  explicit ChannelWatch(const ScanHints& av_Hints)
      : hints_(av_Hints), moisture_(av_Hints.moisture), salinity_(av_Hints.salinity) {}

  /// Takes the number of fixed items and of sensor items from the first line of a file; false when it holds none.
  bool TakeHeader(std::string_view as_Line);
  /// Splits the items behind the date and returns how many the line has, the date included.
  [[nodiscard]] std::size_t Split(const char* as_Items, const char* as_End);
  /// Watches the reading that was split last, when it has as many items as the header says or the first reading had.
  void Watch(std::size_t al_Items, DateTime av_When, DayCount& av_Day);
  /// The battery item of the reading that was split last.
  [[nodiscard]] std::uint64_t battery() const { return words_[1]; }
  /// Volts; none when the item is no number.
  [[nodiscard]] static std::optional<double> VoltsOf(std::uint64_t al_Battery);

  /// The item that has not changed for longest, 0 when all have changed with the last reading; since when.
  ///
  /// An extra analogue channel counts when it has ever changed: to many of them nothing is connected.
  [[nodiscard]] std::size_t Still(DateTime& av_Since) const;

  void Save(ScanStateWriter& av_State) const;
  [[nodiscard]] bool Restore(ScanStateReader& av_State);

 private:
  struct Channel {
    std::uint64_t word = 0;  ///< of the reading before
    DateTime since;          ///< the first reading that had this
  };
  /// Between which items plain numbers are inside a table for certain; none when `most` is 0.
  struct Inside {
    explicit Inside(const std::optional<TableRange>& av_Range);
    std::uint64_t least = 0;
    std::uint64_t most = 0;
  };
  void CheckTables(DayCount& av_Day) const;
  void CheckTable(const std::optional<TableRange>& av_Range, Inside av_Inside, std::size_t al_First,
                  DayCount& av_Day) const;
  /// The first item that is a channel: battery, ambient temperature and count are none.
  [[nodiscard]] std::size_t First() const;
  [[nodiscard]] static std::uint64_t WordOf(std::string_view as_Item);
  [[nodiscard]] static std::uint64_t WordAt(const char* as_At);

  const ScanHints& hints_;
  Inside moisture_;
  Inside salinity_;
  std::size_t fixed_ = 0;  ///< items before those of the sensors, 0 when there is no header
  std::size_t items_ = 0;  ///< of a reading, 0 when it is not known
  DateTime start_;         ///< the first reading that was watched
  DateTime last_;
  std::array<std::uint64_t, kMostItems> words_{};
  std::vector<Channel> channels_;  ///< by item from 0, those watched being behind `First()`
};

/// One bit for each byte of eight that is a comma, the first in the lowest.
constexpr std::uint64_t CommasIn(std::uint64_t al_Word) {
  constexpr std::uint64_t kLow = 0x7F7F7F7F7F7F7F7FU;
  const std::uint64_t others = al_Word ^ 0x2C2C2C2C2C2C2C2CU;
  const std::uint64_t commas = ~(((others & kLow) + kLow) | others | kLow);
  return (commas >> 7U) * 0x0102040810204080U >> 56U;
}

inline std::uint64_t ChannelWatch::WordAt(const char* as_At) {
  static_assert(std::endian::native == std::endian::little);
  std::uint64_t word = 0;
  std::memcpy(&word, as_At, sizeof word);
  return word;
}

// The commas of 64 bytes are found first, so that no item waits for the end of the one before.
inline std::size_t ChannelWatch::Split(const char* as_Items, const char* as_End) {
  std::size_t item = 1;
  const char* begin = as_Items;
  for (const char* part = as_Items;; part += kPart) {
    std::uint64_t ends = 0;
    for (unsigned i = 0; i < kPart; i += 8) ends |= CommasIn(WordAt(part + i)) << i;
    const std::ptrdiff_t left = as_End - part;
    if (left < kPart) ends = (ends & ((std::uint64_t{1} << left) - 1)) | std::uint64_t{1} << left;
    for (; ends != 0; ends &= ends - 1, ++item) {
      const char* const end = part + std::countr_zero(ends);
      const std::ptrdiff_t length = end - begin;
      if (item < kMostItems) {
        words_[item] = length < 8 ? WordAt(begin) & ((std::uint64_t{1} << 8 * length) - 1) : WordOf({begin, end});
      }
      begin = end + 1;
    }
    if (left < kPart) return item;
  }
}

}  // namespace corvane
