#include "data/calibrated_series.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/format.h"
#include "base/number_fields.h"
#include "base/text.h"
#include "data/line_blocks.h"
#include "data/series_collector.h"
#include "data/series_phrases.h"

namespace corvane {
namespace {

/// Reads a calibrated file, whose header names its columns.
class CalibratedReading {
 public:
  CalibratedReading(const SeriesRequest& av_Request, ReadingSeries& av_Series)
      : request_(av_Request), series_(av_Series), collector_(av_Request, av_Series), dates_(av_Request.date_format) {}

  void Read(const InputFile& av_File, const std::function<bool()>& av_Poll) {
    if (!dates_.TellsMinute()) {
      series_.problem = request_.phrases.Text(kSeriesSays.no_minute, {request_.date_format, request_.calibrated_file});
      return;
    }
    LineBlocks blocks(av_File, 0);
    std::string_view line;
    bool first = true;
    while (blocks.Read()) {
      for (; blocks.Next(line); first = false) {
        if (first) {
          TakeHeader(line);
          collector_.Expect(av_File.identity().size, line.size());
        } else {
          TakeLine(line);
        }
      }
      series_.cancelled = av_Poll && !av_Poll();
      if (series_.cancelled) return;
    }
    collector_.Finish();
    if (!series_.times.empty() || others_ == 0 || series_.columns.empty()) return;
    series_.problem = request_.phrases.Text(kSeriesSays.other_format, {request_.calibrated_file, request_.date_format});
  }

 private:
  /// The name of a channel's column; empty when there is none.
  [[nodiscard]] static std::string NameOf(const SeriesChannel& av_Channel) {
    const std::string number = std::to_string(av_Channel.number);
    switch (av_Channel.quantity) {
      case Quantity::Moisture:
        return "M" + number;
      case Quantity::Salinity:
        return "Sal" + number;
      case Quantity::Temperature:
        return "Temp" + number;
      case Quantity::Battery:
        return "Battery";
      case Quantity::Ambient:
        return "Ambient";
      case Quantity::Item:
        break;
    }
    return {};
  }

  void TakeHeader(std::string_view as_Line) {
    const std::size_t factors = as_Line.find(" [");
    std::vector<std::string_view> names = Split(as_Line.substr(0, factors), ',');
    for (std::string_view& name : names) name = Trim(name);
    fields_ = names.size();
    for (const std::string_view name : names) series_.sensors += name.starts_with("Sal") ? 1 : 0;
    std::vector<bool> wanted;
    for (const SeriesChannel& channel : request_.channels) {
      if (channel.quantity == Quantity::Item) {
        series_.problem = request_.phrases.Text(kSeriesSays.no_items, {request_.calibrated_file});
      }
      const auto found = std::find(names.begin(), names.end(), NameOf(channel));
      wanted.push_back(found != names.end());
      const std::size_t field = wanted.back() ? static_cast<std::size_t>(found - names.begin()) : 0;
      columns_.push_back(field);
      last_field_ = std::max(last_field_, field);
    }
    values_.assign(last_field_ + 1, 0);
    collector_.Want(std::move(wanted));
  }

  void TakeLine(std::string_view as_Line) {
    std::string_view rest = as_Line;
    const std::optional<DateTime> when = dates_.TakeFrom(rest);
    const char* at = rest.data();
    const char* const end = at + rest.size();
    if (!when || static_cast<std::size_t>(std::count(at, end, ',')) + 1 != fields_ || *at != ',') {
      ++others_;
      return;
    }
    if (!collector_.Take(*when)) return;
    for (std::size_t field = 1; field <= last_field_; ++field) values_[field] = TakeNumber(++at, end, ',');
    for (std::size_t column = 0; column < columns_.size(); ++column) {
      if (collector_.Wanted(column)) collector_.Put(column, values_[columns_[column]]);
    }
  }

  const SeriesRequest& request_;
  ReadingSeries& series_;
  SeriesCollector collector_;
  DatePattern dates_;
  std::size_t fields_ = 0;
  std::size_t last_field_ = 0;
  std::vector<std::size_t> columns_;  ///< the field of each channel, 0 none
  std::vector<double> values_;        ///< by field of the present line
  std::int64_t others_ = 0;           ///< lines that are no rows
};

}  // namespace

void ReadCalibratedSeries(const SeriesRequest& av_Request, const InputFile& av_File, ReadingSeries& av_Series,
                          const std::function<bool()>& av_Poll) {
  av_Series.source = ReadingSeries::Source::Calibrated;
  CalibratedReading(av_Request, av_Series).Read(av_File, av_Poll);
}

}  // namespace corvane
