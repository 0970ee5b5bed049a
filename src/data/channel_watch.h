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
  static constexpr std::size_t kSlack = 8;        ///< `Split` may read so many bytes behind the end of a line

  explicit ChannelWatch(const ScanHints& av_Hints) : hints_(av_Hints) {}

  /// Takes the number of fixed items and of sensor items from the first line of a file; false when it holds none.
  bool TakeHeader(std::string_view as_Line);
  /// Splits the items behind the date and returns how many the line has, the date included. At `as_End` stands no
  /// digit.
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
  void CheckTables(DayCount& av_Day) const;
  /// The first item that is a channel: battery, ambient temperature and count are none.
  [[nodiscard]] std::size_t First() const;
  [[nodiscard]] static std::uint64_t WordOf(std::string_view as_Item);

  const ScanHints& hints_;
  std::size_t fixed_ = 0;  ///< items before those of the sensors, 0 when there is no header
  std::size_t items_ = 0;  ///< of a reading, 0 when it is not known
  DateTime start_;         ///< the first reading that was watched
  DateTime last_;
  std::array<std::uint64_t, kMostItems> words_{};
  std::vector<Channel> channels_;  ///< by item from 0, those watched being behind `First()`
};

/// The bytes of `al_Word` that are no decimal digits have their highest bit set; right up to the first such byte.
constexpr std::uint64_t NotDigits(std::uint64_t al_Word) {
  const std::uint64_t digits = al_Word ^ 0x3030303030303030U;
  return ((digits + 0x7676767676767676U) | digits) & 0x8080808080808080U;
}

inline std::size_t ChannelWatch::Split(const char* as_Items, const char* as_End) {
  static_assert(std::endian::native == std::endian::little);
  std::size_t item = 1;
  for (const char* at = as_Items; item < kMostItems; ++item) {
    std::uint64_t word = 0;
    std::memcpy(&word, at, sizeof word);
    const std::uint64_t others = NotDigits(word);
    const char* end = at + std::countr_zero(others) / 8;
    if (others != 0 && (*end == ',' || end == as_End)) {
      words_[item] = word & (((others & (~others + 1)) >> 7U) - 1);
    } else {
      end = std::find(at, as_End, ',');
      words_[item] = WordOf({at, end});
    }
    if (end == as_End) return item + 1;
    at = end + 1;
    if (item + 1 == kMostItems) item += static_cast<std::size_t>(std::count(at, as_End, ','));
  }
  return item + 1;
}

}  // namespace corvane
