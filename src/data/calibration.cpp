#include "data/calibration.h"

#include <algorithm>

#include "base/number_fields.h"
#include "base/text.h"
#include "data/raw_items.h"

namespace corvane {
namespace {

constexpr std::size_t kLongestField = kLongestFixed + 2;
constexpr std::size_t kColumnsPerSensor = 4;

char* PutField(char* as_Out, double ad_Value, int ai_Decimals) {
  *as_Out++ = ',';
  *as_Out++ = ' ';
  return PutFixed(as_Out, ad_Value, ai_Decimals);
}

}  // namespace

Calibration::Calibration(const CalibrationSettings& av_Settings, Lookups& av_Lookups)
    : settings_(av_Settings), date_writer_(av_Settings.DateFormat), lookups_(av_Lookups) {}

void Calibration::TakeHeader(const std::vector<std::string_view>& av_Fields) {
  layout_ = ReadingLayout::FromHeader(av_Fields);
  values_.assign(std::max(layout_.expected, reading_item::kFirstExtra), 0);
  sums_ = values_;
  samples_ = 0;
  const std::size_t columns = std::max(layout_.fixed, reading_item::kFirstExtra) + kColumnsPerSensor * layout_.sensors;
  row_ = std::make_unique_for_overwrite<char[]>(columns * kLongestField);
}

std::size_t Calibration::TakeLine(std::string_view as_Line) {
  const char* const end = as_Line.data() + as_Line.size();
  const char* at = std::find(as_Line.data(), end, ',');
  date_text_ = {as_Line.data(), at};
  std::size_t fields = 1;
  for (; at != end && fields < layout_.expected; ++fields) values_[fields] = TakeNumber(++at, end, ',');
  return fields + static_cast<std::size_t>(std::count(at, end, ','));
}

void Calibration::AddReading() {
  if (!settings_.Average) return;
  for (std::size_t i = reading_item::kBattery; i < layout_.expected; ++i) sums_[i] += values_[i];
  ++samples_;
}

void Calibration::AppendHeader(std::string& as_Out) const {
  as_Out += "Date, Battery, Ambient, Count";
  for (std::size_t i = reading_item::kFirstExtra; i < layout_.fixed; ++i)
    as_Out += ", AN_" + std::to_string(i - reading_item::kFirstExtra);
  for (std::size_t s = 1; s <= layout_.sensors; ++s) {
    const std::string number = std::to_string(s);
    if (settings_.Uncorrected) as_Out += ", UM" + number;
    as_Out += ", M" + number + ", Sal" + number + ", Temp" + number;
  }
  as_Out += " [Mois_Correc=" + ShortestText(settings_.Factors.moisture) +
            " Sal_Correc=" + ShortestText(settings_.Factors.salinity) + "]";
  as_Out += kLineBreak;
}

void Calibration::AppendRow(std::string& as_Out, DateTime av_When) {
  Average();
  date_writer_.AppendTo(as_Out, av_When);
  char* out = row_.get();
  out = PutField(out, VoltsOf(values_[reading_item::kBattery]), 3);
  out = PutField(out, TemperatureOf(values_[reading_item::kAmbient], settings_.Factors.kelvin), 2);
  out = PutField(out, values_[reading_item::kCount], 0);
  for (std::size_t i = reading_item::kFirstExtra; i < layout_.fixed; ++i) out = PutField(out, VoltsOf(values_[i]), 3);
  for (std::size_t s = 1; s <= layout_.sensors; ++s) out = PutSensor(out, &values_[layout_.ItemOf(s)]);
  as_Out.append(row_.get(), out);
  as_Out += kLineBreak;
}

void Calibration::Average() {
  if (samples_ > 1) {
    const auto samples = static_cast<double>(samples_);
    for (std::size_t i = reading_item::kBattery; i < layout_.expected; ++i) values_[i] = sums_[i] / samples;
  }
  if (samples_ > 0) std::fill(sums_.begin(), sums_.end(), 0);
  samples_ = 0;
}

char* Calibration::PutSensor(char* as_Out, const double* av_Values) {
  const SensorValues values = ValuesOfSensor(av_Values, settings_.Factors, lookups_);
  if (settings_.Uncorrected) as_Out = PutField(as_Out, values.uncorrected, 2);
  as_Out = PutField(as_Out, values.moisture, 2);
  as_Out = PutField(as_Out, values.salinity, 3);
  return PutField(as_Out, values.temperature, 2);
}

}  // namespace corvane
