// The words of the page "Network" and of the icon in the tray, besides those of the history.
#pragma once

#include "history/status_texts.h"
#include "lang/phrases.h"

namespace corvane::window {

struct NetworkPhrases {
  Phrase all_states{1343, "All states"};
  Phrase not_fine{1344, "Not fine"};
  Phrase no_groups{1345, "No groups"};
  Phrase by_client{1346, "By client"};
  Phrase by_relay{1347, "By relay"};
  Phrase shown{1348, "%1 of %2 units"};
  Phrase all_is_well{1349, "all is well"};
  Phrase no_last_answer{1463, "it did not answer when it was asked last"};
  Phrase note{1350, "Note: %1"};
  Phrase sort_by{1351, "Sort by"};
  Phrase asked_now{1352, "asked now"};
  Phrase behind_relay{1353, "Behind relay %1"};
  Phrase count_fine{1354, "%1 fine"};
  Phrase no_client{1355, "No client"};
  Phrase no_relay{1356, "No relay"};
  Phrase relay{1357, "Relay %1"};
  Phrase begin_here{1358,
                    "Press Set up... here; or press New below the list at the left, fill in the tab Unit, and press "
                    "Download."};
  Phrase set_interval{1359,
                      "The tab Settings, page Schedule and backup, holds the interval of the automatic download. The "
                      "button Download collects now."};
  Phrase first_round{1360, "No round has run yet: the button Download begins one."};
  Phrase by_hand_only{1361,
                      "Rounds begin only when somebody presses Download: automatic download is switched off in the tab "
                      "Settings, page Schedule and backup."};
  Phrase cannot_tell{1362, "It cannot be told how things stand: %1"};
  Phrase rounds_go_on{1363, "Rounds go on meanwhile. What happens in them is shown in the tab Log."};
  Phrase round_asks{1364, "A round runs; %1 is asked now."};
  Phrase round_runs{1365, "A round runs; no unit is asked now."};
  Phrase last_round{1366, "Last round: %1"};
  CountPhrase stations_silent{{1367, "%1 station is silent"}, {1368, "%1 stations are silent"}};
  Phrase no_day{1381, "No day of any unit is known yet: the first download brings them."};
  Phrase none_left{1382, "No unit is left by the filter."};
  Phrase point_at_a_day{1383, "Point at a day, or go there with the arrow keys, to read its numbers."};
  Phrase with_a_problem{1384, "With a problem"};
  Phrase not_asked{1385, "Not asked"};
  Phrase well{1386, "Well"};
  Phrase nobody_in_it{1387, "No unit had a part in it."};
  Phrase no_round{1388, "No round is known yet: the first download brings one."};
  Phrase take_along{1875, "Take along"};
  Phrase nothing_special{1876, "nothing special"};
  Phrase what_is_known{1877, "What is known"};
  Phrase last_contacts{1878, "Last contacts"};
  Phrase copied{1879, "The text is in the clipboard."};
};
inline constexpr NetworkPhrases kNetworkSays;

}  // namespace corvane::window
