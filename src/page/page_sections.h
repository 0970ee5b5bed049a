// The parts of the page that tell of single units.
#pragma once

#include "page/html.h"
#include "page/page_contents.h"

namespace corvane {

/// The table of all units, the worst first.
void AppendTable(Html& av_Html, const PageContents& av_Contents);
/// A row a unit, a cell a day.
void AppendDayMap(Html& av_Html, const PageContents& av_Contents);
/// What is known of each unit, in sentences and charts.
void AppendUnits(Html& av_Html, const PageContents& av_Contents);
/// The sign of a state and its name.
void AppendState(Html& av_Html, UnitState ae_State);

}  // namespace corvane
