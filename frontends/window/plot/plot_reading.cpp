#include "window/plot/plot_reading.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QStringList>

#include "base/files.h"
#include "base/numbers.h"
#include "data/sensor_names.h"
#include "window/plot/plot_phrases.h"

namespace corvane::window {
namespace {

// No unit has more; channels that it lacks cost nothing.
constexpr std::int32_t kMostSensors = 32;

struct Kind {
  Phrase axis;   ///< with the unit
  Phrase line;   ///< in the legend
  int decimals;  ///< as in calibrated files
  bool of_sensor;
};

const Kind& KindOf(Quantity quantity) {
  static constexpr std::array<Kind, 6> kKinds = {{{kPlotSays.moisture_axis, kPlotSays.moisture, 2, true},
                                                  {kPlotSays.salinity_axis, kPlotSays.salinity, 3, true},
                                                  {kPlotSays.temperature_axis, kPlotSays.temperature, 2, true},
                                                  {kPlotSays.battery_axis, kPlotSays.battery, 3, false},
                                                  {kPlotSays.ambient_axis, kPlotSays.ambient, 2, false},
                                                  {kPlotSays.item_axis, kPlotSays.item, 0, false}}};
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
  const Kind& kind = KindOf(channel.quantity);
  if (kind.of_sensor) parts << QString::fromStdString(SensorName(unit.depths, channel.number, wish.phrases));
  if (wish.right || !kind.of_sensor) {
    parts << QString::fromStdString(wish.phrases.Text(kind.line, {std::to_string(channel.number)}));
  }
  return parts.join(", ");
}

}  // namespace

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
  contents.phrases = wish.phrases;
  const auto title = [&](std::size_t axis, const Kind& kind) {
    contents.axis_titles[axis] = QString::fromStdString(wish.phrases.Text(kind.axis));
    contents.decimals[axis] = kind.decimals;
  };
  title(0, KindOf(wish.left));
  if (wish.right) title(1, KindOf(*wish.right));
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
    request.phrases = wish.phrases;
    const auto series =
        std::make_shared<const ReadingSeries>(ReadSeries(request, [&cancelled] { return !cancelled(); }));
    if (series->cancelled) return reading;
    reading.sensors = std::max(reading.sensors, series->sensors);
    reading.items = std::max(reading.items, series->items);
    reading.no_table = reading.no_table || series->no_table;
    const QString name = QString::fromStdString(unit.name);
    if (!series->problem.empty()) problems << name + ": " + QString::fromStdString(series->problem) + ".";
    if (series->problem.empty() && series->source == ReadingSeries::Source::Calibrated) {
      problems << QString::fromStdString(wish.phrases.Text(kPlotSays.from_calibrated, {unit.name}));
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
    problems << QString::fromStdString(
        wish.phrases.Text(kPlotSays.too_many, {std::to_string(kMostLines), std::to_string(left_out)}));
  }
  contents.problem = problems.join(" ");
  return reading;
}

}  // namespace corvane::window
