#include "data/calibration.h"

#include <algorithm>

#include "base/number_fields.h"
#include "base/text.h"

namespace corvane {
namespace {

// Fields of the header line.
constexpr std::size_t kHeaderFixed = 2;
constexpr std::size_t kHeaderSensorFields = 3;
// Fields of a data line; those between the count and the first sensor are extra analogue channels.
constexpr std::size_t kBattery = 1;
constexpr std::size_t kAmbient = 2;
constexpr std::size_t kCount = 3;
constexpr std::size_t kFirstExtra = 4;
constexpr std::size_t kFieldsPerSensor = 3;

constexpr double kRawReference = 29300;  // 20 degrees in hundredths of a kelvin
// Intended: 273 and not 273.15, and 20 without Kelvin; so the units report their temperatures.
constexpr double kKelvinOffset = 273;
constexpr double kOtherOffset = 20;

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
  const auto number = [&av_Fields](std::size_t field) {
    return field < av_Fields.size() ? std::int64_t{LeadingInteger(av_Fields[field])} : 0;
  };
  const std::int64_t fixed = number(kHeaderFixed);
  const std::int64_t sensor_fields = number(kHeaderSensorFields);
  const bool possible = fixed >= 0 && sensor_fields >= 0 && fixed + sensor_fields <= kMostFields;
  fixed_ = possible ? static_cast<std::size_t>(fixed) : 0;
  expected_ = possible ? static_cast<std::size_t>(fixed + sensor_fields) : 0;
  sensors_ = (expected_ - fixed_) / kFieldsPerSensor;
  values_.assign(std::max(expected_, kFirstExtra), 0);
  sums_ = values_;
  samples_ = 0;
  const std::size_t columns = std::max(fixed_, kFirstExtra) + kColumnsPerSensor * sensors_;
  row_ = std::make_unique_for_overwrite<char[]>(columns * kLongestField);
}

std::size_t Calibration::TakeLine(std::string_view as_Line) {
  const char* const end = as_Line.data() + as_Line.size();
  const char* at = std::find(as_Line.data(), end, ',');
  date_text_ = {as_Line.data(), at};
  std::size_t fields = 1;
  for (; at != end && fields < expected_; ++fields) values_[fields] = TakeNumber(++at, end, ',');
  return fields + static_cast<std::size_t>(std::count(at, end, ','));
}

void Calibration::AddReading() {
  if (!settings_.Average) return;
  for (std::size_t i = kBattery; i < expected_; ++i) sums_[i] += values_[i];
  ++samples_;
}

void Calibration::AppendHeader(std::string& as_Out) const {
  as_Out += "Date, Battery, Ambient, Count";
  for (std::size_t i = kFirstExtra; i < fixed_; ++i) as_Out += ", AN_" + std::to_string(i - kFirstExtra);
  for (std::size_t s = 1; s <= sensors_; ++s) {
    const std::string number = std::to_string(s);
    if (settings_.Uncorrected) as_Out += ", UM" + number;
    as_Out += ", M" + number + ", Sal" + number + ", Temp" + number;
  }
  as_Out += " [Mois_Correc=" + ShortestText(settings_.MoistureCorrection) +
            " Sal_Correc=" + ShortestText(settings_.SalinityCorrection) + "]";
  as_Out += kLineBreak;
}

void Calibration::AppendRow(std::string& as_Out, DateTime av_When) {
  Average();
  date_writer_.AppendTo(as_Out, av_When);
  char* out = row_.get();
  out = PutField(out, values_[kBattery] / 1000, 3);
  out = PutField(out, Temperature(values_[kAmbient]), 2);
  out = PutField(out, values_[kCount], 0);
  for (std::size_t i = kFirstExtra; i < fixed_; ++i) out = PutField(out, values_[i] / 1000, 3);
  for (std::size_t s = 0; s < sensors_; ++s) out = PutSensor(out, &values_[fixed_ + kFieldsPerSensor * s]);
  as_Out.append(row_.get(), out);
  as_Out += kLineBreak;
}

void Calibration::Average() {
  if (samples_ > 1) {
    const auto samples = static_cast<double>(samples_);
    for (std::size_t i = kBattery; i < expected_; ++i) values_[i] = sums_[i] / samples;
  }
  if (samples_ > 0) std::fill(sums_.begin(), sums_.end(), 0);
  samples_ = 0;
}

char* Calibration::PutSensor(char* as_Out, const double* av_Values) {
  const double raw_temperature = av_Values[2];
  const double from_reference = raw_temperature - kRawReference;
  const double moisture_raw = av_Values[0] - settings_.MoistureCorrection * from_reference / 100;
  const double salinity_raw = av_Values[1] - settings_.SalinityCorrection * from_reference / 100;
  const double uncorrected = lookups_.Moisture.Lookup(moisture_raw);
  const double salinity = lookups_.Salinity.Lookup(salinity_raw);
  if (settings_.Uncorrected) as_Out = PutField(as_Out, uncorrected, 2);
  as_Out = PutField(as_Out, uncorrected + lookups_.Correction.Lookup(salinity), 2);
  as_Out = PutField(as_Out, salinity, 3);
  return PutField(as_Out, Temperature(raw_temperature), 2);
}

double Calibration::Temperature(double ad_Raw) const {
  return ad_Raw / 100 - (settings_.Kelvin ? kKelvinOffset : kOtherOffset);
}

}  // namespace corvane
