#include "page/page_sections.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"
#include "history/status_texts.h"
#include "history/unit_texts.h"
#include "page/chart_path.h"

namespace corvane {
namespace {

constexpr std::size_t kDaysTold = 3;
constexpr std::array<Markup, 6> kSigns = {"○", "✦", "■", "◆", "▲", "●"};

/// Cells and items need no end.
void Cell(Html& av_Html, const std::string& as_Text, const std::string& as_Small = "") {
  av_Html << "<td>";
  av_Html.Text(as_Text);
  if (!as_Small.empty()) (av_Html << "<small>").Text(as_Small) << "</small>";
}

std::string AgeText(const UnitStatus& av_Unit) {
  if (!av_Unit.reading_age) return "";
  return SpanText(*av_Unit.reading_age) + (*av_Unit.reading_age < 0 ? " in the future" : " old");
}

std::string SlopeText(const UnitStatus& av_Unit) {
  std::string text;
  if (av_Unit.battery_slope) {
    text = (*av_Unit.battery_slope > 0 ? "+" : "") + FixedText(*av_Unit.battery_slope, 3) + " V a day";
  }
  if (av_Unit.battery_days) {
    text += ", " + CountText(static_cast<std::int64_t>(*av_Unit.battery_days), "day", "days") + " left";
  }
  return text;
}

/// Rounded down: 100 % is said of nothing that lacks a reading.
std::string Percent(double ad_Share) {
  return FixedText(std::floor(ad_Share * 1000) / 10, 1) + " %";
}

std::string MissingText(const UnitStatus& av_Unit) {
  return av_Unit.lost == 0 ? "" : std::to_string(av_Unit.lost) + " of them lost for ever";
}

/// The rounds that ended so, as lines that the style cuts into strokes.
void AppendStrokes(Html& av_Html, const std::vector<bool>& av_Answers, bool ab_Answered) {
  for (std::size_t place = 0; place < av_Answers.size();) {
    std::size_t end = place;
    while (end < av_Answers.size() && av_Answers[end] == ab_Answered) ++end;
    if (end > place) {
      (av_Html << "M").Number(static_cast<std::int64_t>(place) * 2) << (ab_Answered ? Markup(" 5h") : Markup(" 9h"));
      av_Html.Number(static_cast<std::int64_t>(end - place) * 2);
    }
    place = end + 1;
  }
}

/// One stroke a round: a high one for an answer, a low one for none.
void AppendAnswers(Html& av_Html, const UnitStatus& av_Unit) {
  av_Html << "<td>";
  if (av_Unit.answers.empty()) return;
  av_Html << "<svg class=bars aria-hidden=true viewBox=\"0 0 40 10\" preserveAspectRatio=none><path d=\"";
  AppendStrokes(av_Html, av_Unit.answers, true);
  av_Html << "\"/><path class=x d=\"";
  AppendStrokes(av_Html, av_Unit.answers, false);
  av_Html << "\"/></svg><small>";
  av_Html.Number(av_Unit.answered) << " of ";
  av_Html.Number(av_Unit.asked) << "</small>";
}

void AppendDelivered(Html& av_Html, const UnitStatus& av_Unit) {
  const std::string when = av_Unit.delivered.IsNone() ? "" : WhenText(av_Unit.delivered);
  if (av_Unit.delivery_problem.empty()) return Cell(av_Html, when);
  Cell(av_Html, "failed", when.empty() ? "" : "the last on " + when);
}

void AppendRow(Html& av_Html, const UnitStatus& av_Unit, Moment av_Now) {
  (av_Html << "<tr class=s").Number(static_cast<int>(av_Unit.state)) << "><td>";
  AppendState(av_Html, av_Unit.state);
  (av_Html << "<th scope=row><a href=\"#u").Number(av_Unit.key) << "\">";
  av_Html.Text(av_Unit.name) << "</a>" << (av_Unit.note.empty() ? Markup("") : Markup("<small>with a note</small>"))
                             << "</th>";
  Cell(av_Html, av_Unit.client);
  Cell(av_Html, av_Unit.last_reading.IsNone() ? "" : ByItsClock(av_Unit, WhenText(av_Unit.last_reading)),
       AgeText(av_Unit));
  Cell(av_Html, av_Unit.last_contact.IsNone() ? "" : WhenText(av_Unit.last_contact), av_Unit.contact);
  AppendAnswers(av_Html, av_Unit);
  Cell(av_Html, av_Unit.battery ? FixedText(*av_Unit.battery, 2) + " V" : "", SlopeText(av_Unit));
  Cell(av_Html, av_Unit.complete ? Percent(*av_Unit.complete) : "", KnownToText(av_Unit, av_Now));
  Cell(av_Html,
       av_Unit.missing == 0 ? "" : std::to_string(av_Unit.missing) + " in " + CountText(av_Unit.gaps, "gap", "gaps"),
       MissingText(av_Unit));
  AppendDelivered(av_Html, av_Unit);
  av_Html << "</tr>\n";
}

/// The days of one grade, as a path of squares three high.
void AppendGrade(Html& av_Html, const DayRow& av_Row, DayGrade ae_Grade) {
  std::int64_t pen = 0;
  bool open = false;
  for (std::size_t place = 0; place < av_Row.cells.size();) {
    std::size_t end = place;
    while (end < av_Row.cells.size() && GradeOf(av_Row.cells[end]) == ae_Grade) ++end;
    if (end > place) {
      if (!std::exchange(open, true)) (av_Html << "<path class=d").Number(static_cast<int>(ae_Grade)) << " d=\"";
      (av_Html << "m").Number(static_cast<std::int64_t>(place) - pen) << " 0v3h";
      av_Html.Number(static_cast<std::int64_t>(end - place)) << "v-3";
      pen = static_cast<std::int64_t>(end);
    }
    place = end + 1;
  }
  if (open) av_Html << "\"/>";
}

/// How the 90 days are, for those who do not see them.
std::string RowText(const DayRow& av_Row) {
  std::array<std::int64_t, 6> days{};
  for (const DayCell& cell : av_Row.cells) ++days[static_cast<std::size_t>(GradeOf(cell))];
  const std::int64_t lack = days[2] + days[3] + days[4];
  std::string text;
  const auto add = [&text](std::int64_t count, const char* one, const char* many) {
    if (count > 0) text += (text.empty() ? "" : ", ") + CountText(count, one, many);
  };
  add(days[1], "day whole", "days whole");
  add(lack, "day lacks readings", "days lack readings");
  add(days[5], "day not heard of", "days not heard of");
  add(days[0], "day without any due", "days without any due");
  return text;
}

/// The newest days that lack readings.
void AppendDays(Html& av_Html, const DayMap& av_Map, const DayRow& av_Row) {
  std::size_t told = 0;
  std::int64_t more = 0;
  std::int64_t missing = 0;
  for (std::size_t place = av_Row.cells.size(); place-- > 0;) {
    const DayCell& cell = av_Row.cells[place];
    if (cell.missing() == 0) continue;
    if (told++ < kDaysTold) {
      (av_Html << "<li>").Text(DayText(av_Map.DayOf(place), cell));
    } else {
      ++more;
      missing += cell.missing();
    }
  }
  if (more == 0) return;
  (av_Html << "<li>and ")
      .Text(CountText(more, "more day", "more days") + " before, " + CountText(missing, "reading", "readings") +
            " missing");
}

void Item(Html& av_Html, const std::string& as_Text) {
  if (!as_Text.empty()) (av_Html << "<li>").Text(as_Text);
}

void AppendSentences(Html& av_Html, const UnitStatus& av_Unit) {
  const bool told = !av_Unit.troubles.empty() && av_Unit.why == av_Unit.troubles.front().text;
  if (!told) Item(av_Html, av_Unit.why);
  for (const Trouble& trouble : av_Unit.troubles) Item(av_Html, trouble.text);
  if (!av_Unit.delivery_problem.empty()) {
    Item(av_Html, "Its file has not got to the server: " + av_Unit.delivery_problem);
  }
  if (!av_Unit.note.empty()) Item(av_Html, "Note: " + av_Unit.note);
}

void AppendCharts(Html& av_Html, const std::vector<PageChart>& av_Charts) {
  av_Html << "<div class=charts>";
  for (const PageChart& chart : av_Charts) {
    (av_Html << "<figure><figcaption>").Text(chart.title);
    av_Html << "</figcaption><svg aria-hidden=true viewBox=\"-2 -2 304 44\" preserveAspectRatio=none><path d=\"";
    av_Html.Text(chart.path) << "\"/></svg></figure>";
  }
  av_Html << "</div>";
}

void AppendUnit(Html& av_Html, const UnitStatus& av_Unit, const PageContents& av_Contents) {
  (av_Html << "<section class=unit id=u").Number(av_Unit.key) << "><h3>";
  av_Html.Text(av_Unit.name) << "</h3><p class=s";
  av_Html.Number(static_cast<int>(av_Unit.state)) << ">";
  AppendState(av_Html, av_Unit.state);
  av_Html << " <span class=soft>";
  av_Html.Text("ID " + std::to_string(av_Unit.id) + (av_Unit.client.empty() ? "" : ", " + av_Unit.client) +
               (av_Unit.relay.empty() ? "" : ", behind " + av_Unit.relay));
  av_Html << "</span></p><ul>";
  AppendSentences(av_Html, av_Unit);
  if (const DayRow* const row = av_Contents.days.Find(av_Unit.key)) AppendDays(av_Html, av_Contents.days, *row);
  av_Html << "</ul>";
  if (const auto charts = av_Contents.charts.find(av_Unit.key); charts != av_Contents.charts.end()) {
    AppendCharts(av_Html, charts->second);
  }
  av_Html << "</section>\n";
}

}  // namespace

void AppendState(Html& av_Html, UnitState ae_State) {
  av_Html << "<b aria-hidden=true>" << kSigns[static_cast<std::size_t>(ae_State)] << "</b> ";
  av_Html.Text(NameOf(ae_State));
}

void AppendTable(Html& av_Html, const PageContents& av_Contents) {
  av_Html << "<h2>Units, the worst first</h2>\n<table class=units><thead><tr><th scope=col>State</th><th "
             "scope=col>Unit</th>"
             "<th scope=col>Client</th><th scope=col>Last reading</th><th scope=col>Last contact</th>"
             "<th scope=col>Answered of the last rounds</th><th scope=col>Battery</th>"
             "<th scope=col>Complete, 30 days</th><th scope=col>Missing</th><th scope=col>Delivered</th></tr></thead>"
             "<tbody>\n";
  for (const UnitStatus& unit : av_Contents.status.units) AppendRow(av_Html, unit, av_Contents.status.now);
  av_Html << "</tbody></table>\n";
}

void AppendDayMap(Html& av_Html, const PageContents& av_Contents) {
  const DayMap& map = av_Contents.days;
  av_Html << "<h2>How much of each day is there</h2>\n<p class=soft>A cell a day, in each unit's own time: ";
  av_Html.Text(FormatDate(map.first, "d mmmm yyyy") + " to " +
               FormatDate(av_Contents.status.now.Local(), "d mmmm yyyy"));
  av_Html << "</p><ul class=key>";
  constexpr std::array<Markup, 6> kKey = {"not due", "whole", "90 % and more", "less", "nothing", "not heard of"};
  for (std::size_t grade = 1; grade <= kKey.size(); ++grade) {
    const auto each = static_cast<std::int64_t>(grade % kKey.size());
    (av_Html << "<li><svg viewBox=\"0 0 6 3\" aria-hidden=true><path class=d").Number(each);
    av_Html << (each == 0 ? Markup(" fill=none") : Markup("")) << " d=\"M0 0h6v3h-6\"/></svg> "
            << kKey[static_cast<std::size_t>(each)];
  }
  av_Html << "</ul>\n<table class=gaps><thead><tr><th scope=col>Unit</th><th scope=col>Days</th></tr></thead><tbody>\n";
  for (const UnitStatus& unit : av_Contents.status.units) {
    const DayRow* const row = map.Find(unit.key);
    if (row == nullptr) continue;
    (av_Html << "<tr><th scope=row>").Text(unit.name) << "</th><td><svg class=map aria-hidden=true viewBox=\"0 0 ";
    av_Html.Number(std::ssize(row->cells)) << " 3\">";
    for (const DayGrade grade :
         {DayGrade::Whole, DayGrade::Most, DayGrade::Part, DayGrade::Nothing, DayGrade::Unheard}) {
      AppendGrade(av_Html, *row, grade);
    }
    (av_Html << "</svg><small>").Text(RowText(*row)) << "</small></td></tr>\n";
  }
  av_Html << "</tbody></table>\n";
}

void AppendUnits(Html& av_Html, const PageContents& av_Contents) {
  av_Html << "<h2>Each unit</h2>\n<p class=soft>Charts: the last 30 days.</p>\n";
  for (const UnitStatus& unit : av_Contents.status.units) AppendUnit(av_Html, unit, av_Contents);
}

}  // namespace corvane
