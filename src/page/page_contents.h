// What the page for a browser shows, as plain data.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/dates.h"
#include "data/reading_series.h"
#include "form/form.h"
#include "history/day_map.h"
#include "history/network_status.h"
#include "history/round_texts.h"
#include "platform/history_records.h"
#include "platform/history_store.h"
#include "state/file_names.h"
#include "state/records.h"

namespace corvane {

/// A small chart of the last 30 days.
struct PageChart {
  std::string title;  ///< what it shows, from where to where
  std::string path;   ///< see `ChartPath`
};

struct PageContents {
  NetworkStatus status;
  DayMap days;
  RoundTexts last_round;                                  ///< key 0 of the round: there was none
  std::vector<RoundRecord> rounds;                        ///< the oldest first, the last one left out
  std::map<std::int64_t, std::vector<PageChart>> charts;  ///< by the key of the unit
};

/// Readings to be drawn; made in the loop's thread, read in any.
struct PageSeries {
  std::int64_t unit = 0;  ///< key
  SeriesRequest request;
};

/// What the page reads of the history behind the status.
[[nodiscard]] HistoryQuery PageQuery(const NetworkStatus& av_Status);
/// The page of a network that stands as `av_Status`; `av_History` is what that query has read.
[[nodiscard]] PageContents ContentsOf(const NetworkStatus& av_Status, const HistoryContents& av_History);
/// The moisture at the first sensor of each unit, for the chart beside that of the battery.
[[nodiscard]] std::vector<PageSeries> SeriesOf(const NetworkStatus& av_Status, const Form& av_Form,
                                               const Registry& av_Registry, const FileNames& av_Names);
/// Reads them and adds their charts; what cannot be read, or holds no such values, is left out. Touches nothing but the
/// files.
void AddCharts(PageContents& av_Contents, const std::vector<PageSeries>& av_Series);

}  // namespace corvane
