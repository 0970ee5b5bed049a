// The words in which a table of stations is told about: its faults, its changes, and what else is to be known.
#pragma once

#include <array>
#include <vector>

#include "history/status_texts.h"
#include "lang/phrases.h"
#include "setup/stations_table.h"

namespace corvane {

/// A phrase for each kind, by `StationKind`.
using OfEachKind = std::array<Phrase, 3>;

struct StationsPhrases {
  // Where something is wrong.
  Phrase line{1710, "line %1"};
  Phrase line_and_column{1711, "line %1, %2"};

  // What is wrong with a file.
  Phrase two_columns{1712, "there are two columns of this name"};
  Phrase no_name_column{
      1713,
      "this is no table of stations: no column has the heading Name (or Station, or Site). The first line holds the "
      "headings, such as Name, ID (or Radio ID, or Number), Relay, Client and Depths, with commas, semicolons or tabs "
      "between them"};
  Phrase no_id_column{1714,
                      "no column has the heading ID (or Radio ID, or Number): units and relays that are new need one"};
  Phrase more_cells{1715, "there are more cells than headings, the first of them %1"};
  Phrase no_kind{1716, "%1 is none of Unit, Relay and Client"};
  Phrase not_of_kind{1717, "a %1 has nothing in this column; empty the cell"};
  Phrase no_text{1718, "this is no text in UTF-8 or Windows-1252; save the table as CSV in UTF-8"};
  Phrase empty_file{1719, "the file is empty; its first line holds the headings, Name among them"};
  Phrase open_quote{1720, "a quote (\") begins here and has no end"};
  Phrase behind_quote{1721, "text stands behind the closing quote (\") of a cell; a quote within is written twice"};

  // What is wrong with a cell.
  Phrase line_break{1722, "the text holds a line break or a control character; write it in one line"};
  Phrase too_long{1723, "the text is longer than %1 characters"};
  Phrase null_word{1724, "the word \"null\" stands for an empty text; write another one"};
  Phrase unnamed{1725, "the name is empty"};
  Phrase yes_or_no{1726, "write yes or no, not %1"};
  Phrase none_of{1727, "%1 is none of %2"};
  Phrase several_relays{1728, "several relays are called %1; write \"ID %2\", with the ID of the one that is meant"};
  Phrase several_clients{1729, "several clients are called %1; write \"ID %2\", with the ID of the one that is meant"};
  Phrase no_relay{1730, "there is no relay %1; write the name of one, or Direct, or add a row of the kind relay"};
  Phrase no_client{1731, "there is no client %1; write the name of one, or None, or add a row of the kind client"};
  Phrase client_id_stays{1755, "the ID of a client does not change: %1 has %2; write that, or empty the cell"};
  Phrase relay_needs_id{1756, "it is a new relay and needs an ID"};
  Phrase unit_needs_id{1757, "it is a new unit and needs an ID"};

  // Records, and what they have in common.
  OfEachKind word{{{1732, "relay"}, {1733, "client"}, {1734, "unit"}}};
  OfEachKind on_line{{{1735, "the relay on line %1"}, {1736, "the client on line %1"}, {1737, "the unit on line %1"}}};
  OfEachKind without_row{{{1738, "the relay %1, of which the table has no row,"},
                          {1739, "the client %1, of which the table has no row,"},
                          {1740, "the unit %1, of which the table has no row,"}}};
  Phrase same_name{1741, "%1 has the same name"};
  Phrase same_id{1742, "%1 has the same ID"};
  Phrase same_client_name{1743, "%1 of the same client has the same name"};
  Phrase same_file{1744, "%1 has the same ID and folder: both would share one raw file"};
  Phrase only_direct{1745, "Direct, and it alone, is the relay with the ID 0"};
  Phrase only_none{1746, "None stands for no client; give this one another name and ID"};
  Phrase missed{1747,
                "the %1 has no row and would be deleted, but units refer to it (%2); give it a row, or them another "
                "one"};
  OfEachKind named{{{1748, "relay %1 (%2)"}, {1749, "client %1 (%2)"}, {1750, "unit %1 (%2)"}}};
  Phrase too_many{1751, "there would be %1; a list holds at most %2"};
  CountPhrase relays{{1540, "%1 relay"}, {1541, "%1 relays"}};
  CountPhrase clients{{1752, "%1 client"}, {1753, "%1 clients"}};

  // What else is to be known.
  Phrase unused{1754, "the column %1 is not used"};
  CountPhrase stays{{1758, "%1 has no row and stays as it is"}, {1759, "%1 have no row and stay as they are"}};

  // Changes.
  Phrase adds{1760, "adds %1"};
  Phrase changes{1761, "changes %1: %2"};
  Phrase deletes{1762, "deletes %1"};
  Phrase behind{1763, "%1 behind %2"};
  Phrase for_client{1764, "%1 for %2"};
  Phrase with_folder{1765, "%1, folder %2"};
  Phrase becomes{1766, "%1 %2 becomes %3"};
  Phrase nothing{1767, "(empty)"};
  CountPhrase follow{{1768, "%1 follows it"}, {1769, "%1 follow it"}};
  Phrase files_stay{1770, "the files of its units are not moved: do that, or all readings are fetched anew"};
  Phrase raw_file_stays{1771, "its raw file stays: %1"};
  Phrase folder_stays{1772, "its folder stays"};
  Phrase raw_file_not_moved{1773,
                            "its raw file keeps its name and folder: move it, or all readings are fetched anew: %1"};
};
inline constexpr StationsPhrases kStationsSays;

/// The phrase of a kind.
[[nodiscard]] constexpr const Phrase& Of(const OfEachKind& av_Phrases, StationKind ae_Kind) {
  return av_Phrases[static_cast<std::size_t>(ae_Kind)];
}
[[nodiscard]] constexpr const CountPhrase& CountOf(StationKind ae_Kind) {
  if (ae_Kind == StationKind::Unit) return kCommonPhrases.units;
  return ae_Kind == StationKind::Relay ? kStationsSays.relays : kStationsSays.clients;
}

}  // namespace corvane
