// The words of the page "Plot", besides those of a series.
#pragma once

#include "lang/phrases.h"

namespace corvane::window {

struct PlotPhrases {
  Phrase moisture_axis{1430, "Moisture"};
  Phrase salinity_axis{1431, "Salinity"};
  Phrase temperature_axis{1432,
                          "Temperature (\xC2\xB0"
                          "C)"};
  Phrase battery_axis{1433, "Battery (V)"};
  Phrase ambient_axis{1434,
                      "Ambient temperature (\xC2\xB0"
                      "C)"};
  Phrase item_axis{1435, "Raw item"};
  Phrase moisture{1436, "moisture"};
  Phrase salinity{1437, "salinity"};
  Phrase temperature{1438, "temperature"};
  Phrase battery{1439, "battery"};
  Phrase ambient{1440, "ambient temperature"};
  Phrase item{1441, "raw item %1"};
  Phrase from_calibrated{1442, "%1: there is no raw file; shown is what its calibrated file holds."};
  Phrase too_many{1443, "%1 lines are shown, %2 more are not: choose fewer units or sensors."};
  Phrase not_read{1444, "Not read: %1"};
  Phrase not_saved{1445, "Not saved: %1"};
  Phrase saved{1446, "Saved: %1"};
  Phrase reading{1447, "Reading ..."};
  Phrase tick_a_unit{1448, "Tick a unit to see its readings."};
  Phrase no_readings{1449, "No readings to show."};
  Phrase none_of_day{1450, "There are no readings of %1; the nearest are shown."};
  Phrase from_before_to{1451, "\"From\" has to lie before \"To\": %1 does not lie before %2."};
  Phrase readings_from_to{1452, "There are readings from %1 to %2."};
  Phrase copied{1453, "The picture is in the clipboard."};
  Phrase save_as{1454, "Save the plot as"};
  Phrase picture{1455, "Picture"};
  Phrase drawing{1456, "Drawing"};
  Phrase document{1457, "Document"};
  Phrase table{1458, "Table of the readings"};
  Phrase no_date{1459, "\"%1\" is no date: write it like %2."};
  Phrase plot{1460, "Plot"};
  Phrase date{1461, "Date"};
  Phrase needs_tables{1889, "This needs the lookup tables. Raw items can be shown without them."};
};
inline constexpr PlotPhrases kPlotSays;

}  // namespace corvane::window
