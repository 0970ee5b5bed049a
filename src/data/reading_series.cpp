#include "data/reading_series.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string_view>
#include <utility>

#include "base/files.h"
#include "base/number_fields.h"
#include "base/text.h"
#include "data/calibrated_series.h"
#include "data/line_blocks.h"
#include "data/lookup.h"
#include "data/raw_items.h"
#include "data/reading_date.h"
#include "data/series_collector.h"
#include "data/series_phrases.h"

namespace corvane {
namespace {

constexpr std::int64_t kStretch = 128 * 1024;             ///< bytes
constexpr std::int64_t kBeforeSpan = 4 * kSecondsPerDay;  ///< for the log period to be known at its begin

struct Tables {
  LookupTable Moisture;
  LookupTable Salinity;
  LookupTable Correction;
};

bool IsOfSensor(Quantity av_Quantity) {
  return av_Quantity == Quantity::Moisture || av_Quantity == Quantity::Salinity || av_Quantity == Quantity::Temperature;
}

/// Reads a raw file by the rules of the conversion.
class RawReading {
 public:
  RawReading(const SeriesRequest& av_Request, ReadingSeries& av_Series)
      : request_(av_Request), series_(av_Series), collector_(av_Request, av_Series) {}

  void Read(const InputFile& av_File, const std::function<bool()>& av_Poll) {
    LoadTables();
    std::optional<LineBlocks> blocks(std::in_place, av_File, 0);
    std::string_view line;
    bool first = true;
    while (blocks->Read()) {
      while (blocks->Next(line)) {
        if (!std::exchange(first, false)) {
          TakeLine(line);
          continue;
        }
        TakeFirst(line);
        const std::int64_t begin = BeginOfNewest(av_File);
        collector_.Expect(av_File.identity().size - begin, line.size());
        if (begin <= blocks->offset()) continue;
        blocks.emplace(av_File, begin);
        break;
      }
      series_.cancelled = av_Poll && !av_Poll();
      if (series_.cancelled) return;
    }
    collector_.Finish();
  }

 private:
  /// Where the last stretch that begins days before the span begins; 0 where all is to be read.
  [[nodiscard]] std::int64_t BeginOfNewest(const InputFile& av_File) {
    if (!request_.newest_only) return 0;
    for (std::int64_t at = av_File.identity().size - kStretch; at > 0; at -= kStretch) {
      LineBlocks blocks(av_File, at);
      std::string_view line;
      // The first one is cut.
      if (!blocks.Read() || !blocks.Next(line)) continue;
      const std::int64_t begin = blocks.offset();
      std::optional<DateTime> when;
      for (const char* rest = nullptr; !when && blocks.Next(line);) {
        when = dates_.Read(line.data(), line.data() + line.size(), rest);
      }
      if (when && *when < request_.from - kBeforeSpan) return begin;
    }
    return 0;
  }

  struct Part {
    std::size_t column;
    std::size_t item;  ///< of the sensor the first of its three
    Quantity quantity;
    Tables tables;  ///< its own, whose searches begin near its last value
  };

  void LoadTables() {
    const auto wants = [this](Quantity quantity) {
      return std::any_of(request_.channels.begin(), request_.channels.end(),
                         [quantity](const SeriesChannel& each) { return each.quantity == quantity; });
    };
    const bool salinity = wants(Quantity::Salinity) || wants(Quantity::Moisture);
    has_salinity_ = !salinity || Load(tables_.Salinity, request_.tables.salinity);
    has_moisture_ = !wants(Quantity::Moisture) || (has_salinity_ && Load(tables_.Moisture, request_.tables.moisture) &&
                                                   Load(tables_.Correction, request_.tables.correction));
  }
  [[nodiscard]] bool Load(LookupTable& av_Table, const std::string& as_File) {
    std::string why = request_.phrases.Text(kSeriesSays.no_points);
    try {
      av_Table.Read(as_File);
      if (av_Table.Count() > 0) return true;
    } catch (const RunTimeError& error) {
      why = error.what();
    }
    series_.problem = request_.phrases.Text(kSeriesSays.table_unusable, {as_File, why});
    series_.no_table = true;
    return false;
  }

  void TakeFirst(std::string_view as_Line) {
    const char* items = nullptr;
    const char* const end = as_Line.data() + as_Line.size();
    const bool is_reading = dates_.Read(as_Line.data(), end, items).has_value();
    if (!is_reading) layout_ = ReadingLayout::FromHeader(Split(as_Line, ','));
    if (layout_.expected < reading_item::kFewest) {
      layout_ = {};
      if (series_.problem.empty()) {
        series_.problem = request_.phrases.Text(kSeriesSays.no_header, {request_.raw_file});
      }
    }
    if (layout_.expected > 0) Prepare();
    if (is_reading) TakeLine(as_Line);
  }

  /// Decides which items are needed.
  void Prepare() {
    series_.sensors = static_cast<std::int32_t>(layout_.sensors);
    series_.items = static_cast<std::int32_t>(layout_.expected - 1);
    std::vector<bool> wanted;
    for (std::size_t column = 0; column < request_.channels.size(); ++column) {
      const SeriesChannel& channel = request_.channels[column];
      const std::size_t item = ItemOf(channel);
      wanted.push_back(item > 0);
      if (item == 0) continue;
      parts_.push_back({column, item, channel.quantity, tables_});
      last_item_ = std::max(last_item_, item + (IsOfSensor(channel.quantity) ? 2 : 0));
    }
    values_.assign(last_item_ + 1, 0);
    collector_.Want(std::move(wanted));
  }
  /// The first item that a channel needs; 0 when the unit has none, or a table is missing.
  [[nodiscard]] std::size_t ItemOf(const SeriesChannel& av_Channel) const {
    const auto number = static_cast<std::size_t>(std::max(av_Channel.number, 0));
    if (av_Channel.quantity == Quantity::Battery) return reading_item::kBattery;
    if (av_Channel.quantity == Quantity::Ambient) return reading_item::kAmbient;
    if (av_Channel.quantity == Quantity::Item) return number < layout_.expected ? number : 0;
    const bool has_tables = av_Channel.quantity == Quantity::Temperature ||
                            (av_Channel.quantity == Quantity::Moisture ? has_moisture_ : has_salinity_);
    return has_tables && number >= 1 && number <= layout_.sensors ? layout_.ItemOf(number) : 0;
  }

  void TakeLine(std::string_view as_Line) {
    const char* const end = as_Line.data() + as_Line.size();
    const char* at = nullptr;
    const std::optional<DateTime> when = dates_.Read(as_Line.data(), end, at);
    if (!when) return;
    if (layout_.expected == 0) {
      const auto items = static_cast<std::size_t>(std::count(at, end, ',')) + 2;
      if (items < reading_item::kFewest) return;
      layout_.fixed = layout_.expected = items;
      Prepare();
    }
    if (TakeItems(at, end) != layout_.expected || !collector_.Take(*when)) return;
    for (Part& part : parts_) collector_.Put(part.column, ValueOf(part));
  }
  /// Takes the numbers of the items that are needed; returns how many the line has, the date included.
  [[nodiscard]] std::size_t TakeItems(const char* as_At, const char* as_End) {
    for (std::size_t item = 1; item <= last_item_; ++item) {
      values_[item] = TakeNumber(as_At, as_End, ',');
      if (as_At == as_End) return item + 1;
      ++as_At;
    }
    return last_item_ + 2 + static_cast<std::size_t>(std::count(as_At, as_End, ','));
  }
  [[nodiscard]] double ValueOf(Part& av_Part) const {
    const double* const item = &values_[av_Part.item];
    switch (av_Part.quantity) {
      case Quantity::Battery:
        return VoltsOf(*item);
      case Quantity::Ambient:
        return TemperatureOf(*item, request_.factors.kelvin);
      case Quantity::Item:
        return *item;
      case Quantity::Temperature:
        return TemperatureOf(item[2], request_.factors.kelvin);
      case Quantity::Moisture:
        return ValuesOfSensor(item, request_.factors, av_Part.tables).moisture;
      case Quantity::Salinity:
        return ValuesOfSensor(item, request_.factors, av_Part.tables).salinity;
    }
    return 0;
  }

  const SeriesRequest& request_;
  ReadingSeries& series_;
  SeriesCollector collector_;
  Tables tables_;
  bool has_salinity_ = false;
  bool has_moisture_ = false;
  ReadingLayout layout_;
  ReadingDateReader dates_;
  std::vector<Part> parts_;
  std::size_t last_item_ = 0;
  std::vector<double> values_;  ///< by item of the present line
};

}  // namespace

SeriesRequest RequestOf(const Form& av_Form, const Registry& av_Registry, const FileNames& av_Names,
                        std::int32_t al_Index) {
  SeriesRequest request;
  request.raw_file = av_Names.DataFileName(al_Index, false);
  request.calibrated_file = av_Names.DataFileName(al_Index, true);
  request.date_format = av_Form.Txt_DateFormat.text();
  request.factors.kelvin = av_Form.Chk_Kelvin.ticked();
  request.tables = {av_Names.SettingsFile(0), av_Names.SettingsFile(1), av_Names.SettingsFile(2)};
  if (!av_Registry.Units.Has(al_Index)) return request;
  request.factors.moisture = CalibrationFactors::Held(av_Registry.Units[al_Index].MoistureCorrection);
  request.factors.salinity = CalibrationFactors::Held(av_Registry.Units[al_Index].SalinityCorrection);
  return request;
}

ReadingSeries ReadSeries(const SeriesRequest& av_Request, const std::function<bool()>& av_Poll) {
  ReadingSeries series;
  try {
    InputFile file;
    const Status raw = file.Open(av_Request.raw_file);
    if (raw.ok()) {
      series.source = ReadingSeries::Source::Raw;
      RawReading(av_Request, series).Read(file, av_Poll);
    } else if (raw.code() != ENOENT) {
      series.problem = raw.text();
    } else if (InputFile calibrated; calibrated.Open(av_Request.calibrated_file).ok()) {
      ReadCalibratedSeries(av_Request, calibrated, series, av_Poll);
    } else {
      series.problem = av_Request.phrases.Text(kSeriesSays.no_readings, {av_Request.raw_file});
    }
  } catch (const RunTimeError& error) {
    series.problem = error.what();
  }
  series.columns.resize(av_Request.channels.size());
  return series;
}

}  // namespace corvane
