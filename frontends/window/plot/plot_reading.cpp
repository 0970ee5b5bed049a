#include "window/plot/plot_reading.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QStringList>

#include "base/files.h"
#include "base/numbers.h"
#include "data/sensor_names.h"

namespace corvane::window {
namespace {

// No unit has more; channels that it lacks cost nothing.
constexpr std::int32_t kMostSensors = 32;

struct Kind {
  const char* name;
  int decimals;  ///< as in calibrated files
  bool of_sensor;
};

const Kind& KindOf(Quantity quantity) {
  static constexpr std::array<Kind, 6> kKinds = {{{"Moisture", 2, true},
                                                  {"Salinity", 3, true},
                                                  {"Temperature (\xC2\xB0"
                                                   "C)",
                                                   2, true},
                                                  {"Battery (V)", 3, false},
                                                  {"Ambient temperature (\xC2\xB0"
                                                   "C)",
                                                   2, false},
                                                  {"Raw item", 0, false}}};
  return kKinds[static_cast<std::size_t>(quantity)];
}

/// The channels of a wish, those of the left axis first; `left` is how many these are.
std::vector<SeriesChannel> ChannelsOf(const PlotWish& wish, std::size_t& left) {
  std::vector<SeriesChannel> channels;
  const auto add = [&](Quantity quantity) {
    if (!KindOf(quantity).of_sensor) return channels.push_back({quantity, wish.item});
    for (std::int32_t sensor = 1; sensor <= kMostSensors; ++sensor) {
      const auto& hidden = wish.hidden_sensors;
      if (std::find(hidden.begin(), hidden.end(), sensor) == hidden.end()) channels.push_back({quantity, sensor});
    }
  };
  add(wish.left);
  left = channels.size();
  if (wish.right) add(*wish.right);
  return channels;
}

QString LineName(const PlotWish& wish, const PlotUnit& unit, const SeriesChannel& channel) {
  QStringList parts;
  if (wish.units.size() > 1) parts << QString::fromStdString(unit.name);
  const bool of_sensor = KindOf(channel.quantity).of_sensor;
  if (of_sensor) parts << QString::fromStdString(SensorName(unit.depths, channel.number));
  if (channel.quantity == Quantity::Item) {
    parts << "raw item " + QString::number(channel.number);
  } else if (wish.right || !of_sensor) {
    parts << NameOf(channel.quantity).section(" (", 0, 0).toLower();
  }
  return parts.join(", ");
}

}  // namespace

QString NameOf(Quantity quantity) {
  return QString::fromUtf8(KindOf(quantity).name);
}

std::string StateOf(const PlotWish& wish) {
  std::string state;
  for (const PlotUnit& unit : wish.units) {
    const SeriesRequest& request = unit.request;
    state += unit.name + ";" + unit.depths + ";" + request.date_format + (request.factors.kelvin ? ";K;" : ";;");
    state += ShortestText(request.factors.moisture) + ";" + ShortestText(request.factors.salinity) + ";";
    for (const std::string& file : {request.raw_file, request.calibrated_file, request.tables.moisture,
                                    request.tables.salinity, request.tables.correction}) {
      const auto info = ExamineFile(file);
      state += file;
      if (info) state += "/" + std::to_string(info->size) + "/" + std::to_string(info->modified.seconds());
      state += ";";
    }
  }
  return state;
}

PlotReading ReadPlot(const PlotWish& wish, const std::function<bool()>& cancelled) {
  PlotReading reading;
  PlotContents& contents = reading.contents;
  std::size_t left = 0;
  const std::vector<SeriesChannel> channels = ChannelsOf(wish, left);
  contents.axis_titles[0] = NameOf(wish.left);
  contents.decimals[0] = KindOf(wish.left).decimals;
  if (wish.right) contents.axis_titles[1] = NameOf(*wish.right);
  if (wish.right) contents.decimals[1] = KindOf(*wish.right).decimals;
  QStringList problems;
  std::size_t left_out = 0;
  reading.units = wish.units.size();
  for (const PlotUnit& unit : wish.units) {
    reading.depths = unit.depths == wish.units.front().depths ? unit.depths : "";
    if (reading.depths.empty()) break;
  }
  for (const PlotUnit& unit : wish.units) {
    SeriesRequest request = unit.request;
    request.channels = channels;
    const auto series =
        std::make_shared<const ReadingSeries>(ReadSeries(request, [&cancelled] { return !cancelled(); }));
    if (series->cancelled) return reading;
    reading.sensors = std::max(reading.sensors, series->sensors);
    reading.items = std::max(reading.items, series->items);
    const QString name = QString::fromStdString(unit.name);
    if (!series->problem.empty()) problems << name + ": " + QString::fromStdString(series->problem) + ".";
    if (series->problem.empty() && series->source == ReadingSeries::Source::Calibrated) {
      problems << name + ": there is no raw file; shown is what its calibrated file holds.";
    }
    for (std::size_t column = 0; column < channels.size(); ++column) {
      if (series->columns[column].empty()) continue;
      if (contents.lines.size() >= kMostLines) {
        ++left_out;
        continue;
      }
      contents.lines.emplace_back(series, column, LineName(wish, unit, channels[column]), column < left ? 0 : 1);
    }
  }
  if (left_out > 0) {
    problems
        << QString("%1 lines are shown, %2 more are not: choose fewer units or sensors.").arg(kMostLines).arg(left_out);
  }
  contents.problem = problems.join(" ");
  return reading;
}

}  // namespace corvane::window
