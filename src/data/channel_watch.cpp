#include "data/channel_watch.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/numbers.h"
#include "base/text.h"
#include "data/calibration_rules.h"
#include "data/raw_items.h"

namespace corvane {
namespace {

constexpr double kMillivolts = 1000;
constexpr std::size_t kShortItem = 7;

std::string_view TextOf(const std::uint64_t& al_Word) {
  const char* const begin = reinterpret_cast<const char*>(&al_Word);
  return {begin, std::find(begin, begin + sizeof al_Word, '\0')};
}

/// The bytes of `al_Word` that are no decimal digits have their highest bit set; right up to the first such byte.
constexpr std::uint64_t NotDigits(std::uint64_t al_Word) {
  const std::uint64_t digits = al_Word ^ 0x3030303030303030U;
  return ((digits + 0x7676767676767676U) | digits) & 0x8080808080808080U;
}

/// The number of one to seven digits, the first in the lowest byte: pairs, then fours, then all at once.
std::uint64_t DigitsOf(std::uint64_t al_Word, int ai_Digits) {
  std::uint64_t digits = al_Word << (64 - 8 * ai_Digits) & 0x0F0F0F0F0F0F0F0FU;
  digits = (digits * 10 + (digits >> 8U)) & 0x00FF00FF00FF00FFU;
  digits = (digits * 100 + (digits >> 16U)) & 0x0000FFFF0000FFFFU;
  return (digits * 10000 + (digits >> 32U)) & 0xFFFFFFFFU;
}

inline double NumberOf(std::uint64_t al_Word) {
  const int digits = std::countr_zero(NotDigits(al_Word)) / 8;
  if (digits > 0 && digits <= static_cast<int>(kShortItem) && al_Word >> (8 * digits) == 0) {
    return static_cast<double>(DigitsOf(al_Word, digits));
  }
  return al_Word >> 56U != 0 ? std::bit_cast<double>(al_Word) : LeadingNumber(TextOf(al_Word));
}

/// An item of one to seven digits, the first no 0, as a number that orders such items by their values; else 0.
inline std::uint64_t OrderOf(std::uint64_t al_Word) {
  const int digits = std::countr_zero(NotDigits(al_Word)) / 8;
  if (digits == 0 || digits > static_cast<int>(kShortItem) || al_Word >> (8 * digits) != 0) return 0;
  if ((al_Word & 0xFFU) == '0' && digits > 1) return 0;
  return __builtin_bswap64(al_Word) >> (64 - 8 * digits);
}

/// The same of a number that is 0 to 9999999; of others 0.
std::uint64_t OrderOf(double ad_Value) {
  constexpr double kMost = 9999999;
  if (!(ad_Value >= 0 && ad_Value <= kMost)) return 0;
  const std::string text = std::to_string(static_cast<std::int64_t>(ad_Value));
  std::uint64_t word = 0;
  std::memcpy(&word, text.data(), text.size());
  return OrderOf(word);
}

}  // namespace

ChannelWatch::Inside::Inside(const std::optional<TableRange>& av_Range) {
  if (!av_Range) return;
  least = OrderOf(std::ceil(std::max(av_Range->least, 0.0)));
  most = least == 0 ? 0 : OrderOf(std::floor(av_Range->most));
}

bool ChannelWatch::TakeHeader(std::string_view as_Line) {
  const std::vector<std::string_view> fields = corvane::Split(as_Line, ',');
  if (fields.size() <= header_item::kSensors) return false;
  const std::int64_t fixed = LeadingInteger(fields[header_item::kFixed]);
  const std::int64_t sensor_items = LeadingInteger(fields[header_item::kSensors]);
  if (fixed < 2 || sensor_items < 0 || fixed + sensor_items > ReadingLayout::kMostFields) return false;
  fixed_ = static_cast<std::size_t>(fixed);
  items_ = static_cast<std::size_t>(fixed + sensor_items);
  return true;
}

std::uint64_t ChannelWatch::WordOf(std::string_view as_Item) {
  if (as_Item.size() > kShortItem) return std::bit_cast<std::uint64_t>(LeadingNumber(as_Item));
  std::uint64_t word = 0;
  std::memcpy(&word, as_Item.data(), as_Item.size());
  return word;
}

std::optional<double> ChannelWatch::VoltsOf(std::uint64_t al_Battery) {
  if (al_Battery >> 56U == 0 && !ParseNumber(TextOf(al_Battery))) return std::nullopt;
  return NumberOf(al_Battery) / kMillivolts;
}

std::size_t ChannelWatch::First() const {
  return fixed_ == 0 ? reading_item::kFirstExtra
                     : std::clamp(fixed_, reading_item::kAmbient, reading_item::kFirstExtra);
}

void ChannelWatch::Watch(std::size_t al_Items, DateTime av_When, DayCount& av_Day) {
  if (items_ == 0) items_ = al_Items;
  if (al_Items != items_) return;
  last_ = av_When;
  if (channels_.empty()) {
    start_ = av_When;
    channels_.resize(std::min(items_, kMostItems));
    for (std::size_t i = 0; i < channels_.size(); ++i) channels_[i] = {words_[i], av_When};
  }
  const std::uint64_t* word = words_.data() + First();
  for (auto channel = channels_.begin() + static_cast<std::ptrdiff_t>(std::min(First(), channels_.size()));
       channel != channels_.end(); ++channel, ++word) {
    channel->since = channel->word == *word ? channel->since : av_When;
    channel->word = *word;
  }
  if (fixed_ != 0 && (hints_.moisture || hints_.salinity)) CheckTables(av_Day);
}

void ChannelWatch::CheckTables(DayCount& av_Day) const {
  CheckTable(hints_.moisture, moisture_, fixed_, av_Day);
  CheckTable(hints_.salinity, salinity_, fixed_ + 1, av_Day);
}

void ChannelWatch::CheckTable(const std::optional<TableRange>& av_Range, Inside av_Inside, std::size_t al_First,
                              DayCount& av_Day) const {
  if (!av_Range) return;
  for (std::size_t i = al_First; i < channels_.size(); i += kItemsPerSensor) {
    const std::uint64_t order = OrderOf(words_[i]);
    if (order != 0 && order >= av_Inside.least && order <= av_Inside.most) continue;
    const double number = NumberOf(words_[i]);
    if (number >= av_Range->least && number <= av_Range->most) continue;
    if (av_Day.outside.size() <= i) av_Day.outside.resize(i + 1);
    ++av_Day.outside[i];
  }
}

std::size_t ChannelWatch::Still(DateTime& av_Since) const {
  std::size_t still = 0;
  av_Since = last_;
  for (std::size_t i = First(); i < channels_.size(); ++i) {
    const bool counts = (fixed_ != 0 && i >= fixed_) || channels_[i].since != start_;
    if (!counts || channels_[i].since >= av_Since) continue;
    still = i;
    av_Since = channels_[i].since;
  }
  if (still == 0) av_Since = DateTime();
  return still;
}

void ChannelWatch::Save(ScanStateWriter& av_State) const {
  av_State.Put(static_cast<std::int64_t>(fixed_));
  av_State.Put(static_cast<std::int64_t>(items_));
  av_State.Put(static_cast<std::int64_t>(channels_.size()));
  av_State.PutDate(start_);
  av_State.PutDate(last_);
  for (std::size_t i = First(); i < channels_.size(); ++i) {
    av_State.Put(std::bit_cast<std::int64_t>(channels_[i].word));
    av_State.PutDate(channels_[i].since);
  }
}

bool ChannelWatch::Restore(ScanStateReader& av_State) {
  fixed_ = static_cast<std::size_t>(av_State.Take(0, ReadingLayout::kMostFields));
  items_ = static_cast<std::size_t>(av_State.Take(0));
  channels_.resize(static_cast<std::size_t>(av_State.Take(0, kMostItems)));
  start_ = av_State.TakeDate();
  last_ = av_State.TakeDate();
  for (std::size_t i = First(); i < channels_.size(); ++i) {
    channels_[i].word = std::bit_cast<std::uint64_t>(av_State.Take());
    channels_[i].since = av_State.TakeDate();
  }
  return av_State.good();
}

}  // namespace corvane
