// What is said of a series of readings and its sensors.
#pragma once

#include "lang/phrases.h"

namespace corvane {

struct SeriesPhrases {
  Phrase table_unusable{1420, "The lookup table %1 cannot be used: %2"};
  Phrase no_points{1421, "it holds no points"};
  Phrase no_header{1422, "The first line of %1 is no header: the sensors are not known"};
  Phrase no_readings{1423, "There are no readings yet: %1 is not there"};
  Phrase no_minute{1424,
                   "There is no raw file, and the date format \"%1\" does not tell day and minute, so that %2 cannot "
                   "be shown"};
  Phrase other_format{1425, "There is no raw file, and %1 was written with another date format than \"%2\""};
  Phrase no_items{1426, "There is no raw file, and %1 holds no raw items"};
  Phrase sensor{1427, "sensor %1"};
  Phrase sensor_at{1428, "sensor %1, %2 cm"};
};
inline constexpr SeriesPhrases kSeriesSays;

}  // namespace corvane
