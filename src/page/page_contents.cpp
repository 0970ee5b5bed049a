#include "page/page_contents.h"

#include <cstddef>
#include <utility>

#include "base/numbers.h"
#include "history/unit_status.h"
#include "page/chart_path.h"

namespace corvane {
namespace {

constexpr std::int64_t kChartDays = 30;
constexpr std::int64_t kRounds = 8;
constexpr double kVoltsAtLeast = 0.5;
constexpr double kPercentAtLeast = 2;

DateTime ChartFrom(Moment av_Now) {
  return av_Now.Local() - kChartDays * kSecondsPerDay;
}

void Add(PageContents& av_Contents, std::int64_t al_Unit, const std::string& as_What, const ChartData& av_Data,
         const std::string& as_Unit) {
  ChartPath chart = DrawChart(av_Data);
  if (chart.path.empty()) return;
  const std::string least = FixedText(chart.least, 1);
  const std::string most = FixedText(chart.most, 1);
  const std::string values = least == most ? least : least + " to " + most;
  av_Contents.charts[al_Unit].push_back({as_What + ": " + values + " " + as_Unit, std::move(chart.path)});
}

/// The battery at the end of each day; a day without is left open.
void AddBattery(PageContents& av_Contents, const UnitHistory& av_History) {
  std::vector<std::int64_t> times;
  std::vector<double> values;
  std::vector<std::size_t> breaks;
  for (const DayRecord& day : av_History.days) {
    if (!day.battery) continue;
    const std::int64_t time = day.day.seconds() + kSecondsPerDay / 2;
    if (!times.empty() && time - times.back() > kSecondsPerDay) breaks.push_back(times.size());
    times.push_back(time);
    values.push_back(*day.battery);
  }
  const Moment now = av_Contents.status.now;
  Add(av_Contents, av_History.unit->key, "Battery", {times, values, breaks, ChartFrom(now), now.Local(), kVoltsAtLeast},
      "V");
}

}  // namespace

HistoryQuery PageQuery(const NetworkStatus& av_Status) {
  HistoryQuery query = DayMapQuery(av_Status.now);
  if (!av_Status.last.began.IsNone()) query.contacts_since = av_Status.last.began;
  query.rounds = kRounds;
  return query;
}

PageContents ContentsOf(const NetworkStatus& av_Status, const HistoryContents& av_History) {
  PageContents contents;
  contents.status = av_Status;
  contents.days = MakeDayMap(av_History, av_Status.now);
  contents.last_round = TextsOf(av_Status.last, av_History);
  contents.rounds = av_History.rounds;
  std::erase_if(contents.rounds, [&](const RoundRecord& round) { return round.key == av_Status.last.key; });
  for (const UnitRecord& unit : av_History.units) {
    if (unit.position > 0) AddBattery(contents, HistoryOf(av_History, unit));
  }
  return contents;
}

std::vector<PageSeries> SeriesOf(const NetworkStatus& av_Status, const Form& av_Form, const Registry& av_Registry,
                                 const FileNames& av_Names) {
  std::vector<PageSeries> series;
  for (const UnitStatus& unit : av_Status.units) {
    // The list may have changed since the history followed it.
    if (!av_Registry.Units.Has(unit.position) || av_Registry.Units[unit.position].ID != unit.id) continue;
    SeriesRequest request = RequestOf(av_Form, av_Registry, av_Names, unit.position);
    request.channels = {{Quantity::Moisture, 1}};
    request.from = ChartFrom(av_Status.now);
    request.to = av_Status.now.Local();
    request.newest_only = true;
    series.push_back({unit.key, std::move(request)});
  }
  return series;
}

void AddCharts(PageContents& av_Contents, const std::vector<PageSeries>& av_Series) {
  for (const PageSeries& each : av_Series) {
    const ReadingSeries read = ReadSeries(each.request);
    if (read.columns.empty() || read.columns[0].size() != read.times.size()) continue;
    Add(av_Contents, each.unit, "Moisture, sensor 1",
        {read.times, read.columns[0], read.breaks, each.request.from, each.request.to, kPercentAtLeast}, "%");
  }
}

}  // namespace corvane
