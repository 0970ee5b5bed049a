#include "page/page_html.h"

#include <cstdlib>

#include "base/files.h"
#include "base/format.h"
#include "base/paths.h"
#include "base/replacement_file.h"
#include "history/status_texts.h"
#include "page/html.h"
#include "page/page_sections.h"
#include "page/page_style.h"

namespace corvane {
namespace {

/// "UTC+02:00".
std::string ZoneText(Moment av_Moment) {
  return std::string("UTC") + (av_Moment.ahead < 0 ? "-" : "+") + DurationText(av_Moment.ahead, false);
}

std::string Capitalised(std::string text) {
  if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') text[0] = static_cast<char>(text[0] - 'a' + 'A');
  return text;
}

void AppendHead(Html& av_Html) {
  av_Html << "<!DOCTYPE html>\n<html lang=en><head><meta charset=utf-8>\n"
             "<meta http-equiv=Content-Security-Policy content=\"default-src 'none'; style-src 'unsafe-inline'\">\n"
             "<meta name=viewport content=\"width=device-width,initial-scale=1\">\n"
             "<meta name=robots content=noindex><meta name=referrer content=no-referrer>\n"
             "<title>How the network stands</title>\n"
          << kPageStyle
          << "</head><body>\n<svg width=0 height=0 style=\"position:absolute\" aria-hidden=true>"
             "<pattern id=p2 width=1 height=1 patternUnits=userSpaceOnUse><rect width=1 height=1 "
             "style=\"fill:var(--most)\"/>"
             "<path d=\"M.35 .5h.3\"/></pattern>"
             "<pattern id=p3 width=1 height=1 patternUnits=userSpaceOnUse><rect width=1 height=1 "
             "style=\"fill:var(--part)\"/>"
             "<path d=\"M0 1 1 0\"/></pattern>"
             "<pattern id=p4 width=1 height=1 patternUnits=userSpaceOnUse><rect width=1 height=1 "
             "style=\"fill:var(--none)\"/>"
             "<path d=\"M0 1 1 0M0 0l1 1\"/></pattern></svg>\n";
}

void AppendTop(Html& av_Html, const NetworkStatus& av_Status) {
  av_Html << "<header><h1>How the network stands</h1>\n<p class=\"how n";
  av_Html.Number(static_cast<int>(av_Status.letter)) << "\">";
  av_Html.Text(av_Status.sentence) << "</p>\n<p class=soft>Made on ";
  av_Html.Text(WhenText(av_Status.now) + " (" + ZoneText(av_Status.now) + ")");
  av_Html << ". All times are those of the computer that collects; readings bear the time of their unit's own clock.";
  if (!av_Status.next_round.IsNone()) {
    (av_Html << " The next round is at ").Text(WhenText(av_Status.next_round));
    av_Html << ": when that is long over and this page is still the same, nobody collects.";
  }
  av_Html << "</p><ul class=counts>";
  for (const UnitState state :
       {UnitState::Silent, UnitState::Late, UnitState::Trouble, UnitState::New, UnitState::Fine, UnitState::Off}) {
    const auto place = static_cast<std::size_t>(state);
    if (place >= av_Status.counts.size() || av_Status.counts[place] == 0) continue;
    (av_Html << "<li class=s").Number(static_cast<int>(state)) << ">";
    AppendState(av_Html, state);
    (av_Html << " ").Number(av_Status.counts[place]) << "</li>";
  }
  av_Html << "</ul></header>\n<main>\n";
}

/// The last round unit by unit, as far as something went wrong.
void AppendLastRound(Html& av_Html, const RoundTexts& av_Texts) {
  if (av_Texts.round.key == 0) return;
  (av_Html << "<h2>The last round</h2>\n<p>").Text(Capitalised(av_Texts.head)) << "</p>\n<ul>";
  std::int64_t well = 0;
  for (const RoundLine& line : av_Texts.lines) {
    if (line.sign == RoundSign::Well) {
      ++well;
    } else {
      (av_Html << "<li>").Text(line.name + ": " + line.text) << "</li>\n";
    }
  }
  if (well > 0) (av_Html << "<li>").Text(CountText(well, "unit", "units") + " without a problem") << "</li>\n";
  av_Html << "</ul>\n";
}

void AppendRounds(Html& av_Html, const PageContents& av_Contents) {
  const std::vector<RoundRecord>& rounds = av_Contents.rounds;
  if (rounds.empty()) return;
  av_Html << "<h2>Rounds before</h2>\n<ul>";
  for (auto round = rounds.rbegin(); round != rounds.rend(); ++round) {
    const LeftOut left_out = av_Contents.status.LeftOutOf(round->key);
    (av_Html << "<li>").Text(Capitalised(RoundText(*round, left_out))) << "</li>\n";
  }
  av_Html << "</ul>\n";
}

}  // namespace

std::string PageHtml(const PageContents& av_Contents) {
  Html html;
  AppendHead(html);
  AppendTop(html, av_Contents.status);
  if (!av_Contents.status.units.empty()) {
    AppendTable(html, av_Contents);
    AppendDayMap(html, av_Contents);
    AppendLastRound(html, av_Contents.last_round);
    AppendRounds(html, av_Contents);
    AppendUnits(html, av_Contents);
  }
  html << "</main></body></html>\n";
  return html.Take();
}

Status WritePage(const std::string& as_Folder, const std::string& as_Html) {
  const auto found = ExamineFile(as_Folder);
  if (!found || !found->is_folder) return {1, "there is no folder " + as_Folder};
  return WriteFileAtomically(AddBackslash(as_Folder) + std::string(kPageName), as_Html);
}

}  // namespace corvane
