// The words of what is told before somebody drives out to a unit.
#pragma once

#include "history/status_texts.h"
#include "lang/phrases.h"

namespace corvane {

/// What a sentence is about.
struct HealthSubjects {
  Phrase state{1800, "State"};
  Phrase note{1801, "Note"};
  Phrase answers{1802, "Answers"};
  Phrase relay{1803, "Relay"};
  Phrase readings{1804, "Readings"};
  Phrase missing{1805, "Missing"};
  Phrase battery{1806, "Battery"};
  Phrase clock{1807, "Clock"};
  Phrase sensors{1808, "Sensors"};
  Phrase lines{1809, "Lines"};
  Phrase delivered{1810, "Delivered"};
};
inline constexpr HealthSubjects kHealthSubjects;

struct HealthPhrases {
  Phrase by_radio{1811, "by radio"};
  Phrase from_nowhere{1812, "from nowhere"};
  Phrase by_hand{1813, "by hand"};
  Phrase by_ftp{1814, "by FTP"};
  Phrase as_web_data{1815, "as web data"};
  Phrase from_elsewhere{1816, "from elsewhere"};
  Phrase not_asked{1817, "It was not asked lately; its readings come %1"};
  CountPhrase answered{{1818, "It answered %2 of the last %1 time that it was asked"},
                       {1819, "It answered %2 of the last %1 times that it was asked"}};
  Phrase answered_last{1820, "last on %1"};
  Phrase reached_directly{1821, "It is reached directly"};
  Phrase through_relay{1822, "It is reached through relay %1"};
  Phrase no_neighbour{1823, "no other unit that is reached so was asked"};
  CountPhrase neighbours{{1824, "of %1 other unit reached so %2 answered when last asked"},
                         {1825, "of %1 other units reached so %2 answered when last asked"}};
  Phrase no_reading{1826, "None has ever come"};
  Phrase last_reading{1827, "The last is of %1"};
  Phrase ago{1828, "%1 ago"};
  Phrase ahead_of_now{1829, "%1 ahead of now"};
  Phrase period{1830, "one every %1 h"};
  Phrase complete{1831, "%1 % of the last 30 days"};
  Phrase gap{1832, "%1 between %2 and %3"};
  Phrase gap_found{1833, "not asked for yet"};
  Phrase gap_lost{1834, "lost for ever"};
  CountPhrase gap_asked{{1835, "asked for %1 time"}, {1836, "asked for %1 times"}};
  CountPhrase gaps_in_all{{1837, "and %1 gap in all"}, {1838, "and %1 gaps in all"}};
  Phrase not_known{1839, "Not known"};
  Phrase steady{1840, "steady"};
  Phrase falling{1841, "falling by %1 mV a day"};
  Phrase rising{1842, "rising by %1 mV a day"};
  CountPhrase at_limit{{1843, "at its limit in about %1 day"}, {1844, "at its limit in about %1 days"}};
  Phrase clock_right{1845, "Right"};
  Phrase clock_ahead{1846, "%1 ahead"};
  Phrase clock_behind{1847, "%1 behind"};
  Phrase other_season{1848, "as it was set before or behind summer time"};
  Phrase loses{1849, "it loses %1 s a day"};
  Phrase gains{1850, "it gains %1 s a day"};
  CountPhrase rejected{{1851, "%1 line rejected in the last 30 days"}, {1852, "%1 lines rejected in the last 30 days"}};
  Phrase never{1853, "Never"};
  Phrase delivered{1854, "Last on %1"};
  Phrase delivered_to{1855, "up to the reading of %1"};
  Phrase then{1856, "then: %1"};
  Phrase on_air{1857, "%1 s on the air"};
};
inline constexpr HealthPhrases kHealthSays;

/// What to take along, and why.
struct HealthThings {
  Phrase battery{1860, "a charged battery"};
  Phrase for_relay{1861, "a battery and an antenna for the relay"};
  Phrase antenna{1862, "an antenna and its cable"};
  Phrase hand_held{1863, "a hand-held unit or a cable, and a computer"};
  Phrase clock{1864, "a clock to set it by"};
  Phrase sensor{1865, "a sensor and its cable"};
  Phrase battery_low{1866, "the one in the unit is low, or will be within 30 days"};
  Phrase battery_unknown{1867, "the unit is silent, and what its battery holds is not known"};
  Phrase relay_silent{1868, "no other unit behind it answers either: look at the relay first"};
  Phrase silent_alone{1869, "the unit is silent, while others on the same way answer"};
  Phrase bad_line{1870, "it answers, but takes many tries or sends damaged lines"};
  Phrase memory{1871, "readings that are not here yet may be in its memory: read it before the battery is changed"};
  Phrase stopped{1872, "it answers and stores nothing new: it may have stopped logging"};
  Phrase clock_off{1873, "its clock is off; where it answers, Set date (corvanectl set-date) sets it from here"};
  Phrase sensor_fails{1874, "one stands still or measures what its table does not hold"};
};
inline constexpr HealthThings kHealthThings;

}  // namespace corvane
