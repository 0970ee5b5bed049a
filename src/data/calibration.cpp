#include "data/calibration.h"

#include <algorithm>

#include "base/numbers.h"
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

void AppendField(std::string& as_Out, double ad_Value, int ai_Decimals) {
  as_Out += ", ";
  AppendFixed(as_Out, ad_Value, ai_Decimals);
}

}  // namespace

Calibration::Calibration(const CalibrationSettings& av_Settings, Lookups& av_Lookups)
    : settings_(av_Settings), date_pattern_(av_Settings.DateFormat), lookups_(av_Lookups) {}

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
  samples_ = 0;
}

void Calibration::AddReading(const std::vector<std::string_view>& av_Fields) {
  if (!settings_.Average) return;
  for (std::size_t i = kBattery; i < expected_; ++i) values_[i] += LeadingNumber(av_Fields[i]);
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

void Calibration::AppendRow(std::string& as_Out, DateTime av_When, const std::vector<std::string_view>& av_Fields) {
  TakeValues(av_Fields);
  date_pattern_.AppendTo(as_Out, av_When);
  AppendField(as_Out, values_[kBattery] / 1000, 3);
  AppendField(as_Out, Temperature(values_[kAmbient]), 2);
  AppendField(as_Out, values_[kCount], 0);
  for (std::size_t i = kFirstExtra; i < fixed_; ++i) AppendField(as_Out, values_[i] / 1000, 3);
  for (std::size_t s = 0; s < sensors_; ++s) AppendSensor(as_Out, fixed_ + kFieldsPerSensor * s);
  as_Out += kLineBreak;
  if (settings_.Average) std::fill(values_.begin(), values_.end(), 0);
  samples_ = 0;
}

void Calibration::TakeValues(const std::vector<std::string_view>& av_Fields) {
  const bool averaged = samples_ > 1;
  const auto samples = static_cast<double>(samples_);
  for (std::size_t i = kBattery; i < expected_; ++i) {
    values_[i] = averaged ? values_[i] / samples : LeadingNumber(av_Fields[i]);
  }
}

void Calibration::AppendSensor(std::string& as_Out, std::size_t al_Field) {
  const double raw_temperature = values_[al_Field + 2];
  const double from_reference = raw_temperature - kRawReference;
  const double moisture_raw = values_[al_Field] - settings_.MoistureCorrection * from_reference / 100;
  const double salinity_raw = values_[al_Field + 1] - settings_.SalinityCorrection * from_reference / 100;
  const double uncorrected = lookups_.Moisture.Lookup(moisture_raw);
  const double salinity = lookups_.Salinity.Lookup(salinity_raw);
  if (settings_.Uncorrected) AppendField(as_Out, uncorrected, 2);
  AppendField(as_Out, uncorrected + lookups_.Correction.Lookup(salinity), 2);
  AppendField(as_Out, salinity, 3);
  AppendField(as_Out, Temperature(raw_temperature), 2);
}

double Calibration::Temperature(double ad_Raw) const {
  return ad_Raw / 100 - (settings_.Kelvin ? kKelvinOffset : kOtherOffset);
}

}  // namespace corvane
