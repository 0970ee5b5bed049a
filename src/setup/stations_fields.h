#pragma once

#include <functional>
#include <string>
#include <vector>

#include "lang/phrases.h"
#include "setup/stations_names.h"
#include "setup/stations_table.h"
#include "state/records.h"

namespace corvane {

/// One column of one kind of records: what a cell holds, and what it does.
template <class Record>
struct StationField {
  StationColumn column;
  bool empty_is_text = false;  ///< an empty cell empties it; else it keeps what is there
  std::function<std::string(const Record& record)> text;
  /// Takes a text that differs from the present one; what is wrong with it, empty when it was taken.
  std::function<std::string(Record& record, const std::string& text)> set;
};

/// What a table of stations holds of a relay, column by column.
[[nodiscard]] std::vector<StationField<Relay>> RelayFields(const Phrases& av_Phrases = {});
/// A client's ID is read by its column and never set.
[[nodiscard]] std::vector<StationField<Client>> ClientFields(const Phrases& av_Phrases = {});
/// `av_Relays` and `av_Clients` must outlive what is returned.
[[nodiscard]] std::vector<StationField<Unit>> UnitFields(const RecordNames& av_Relays, const RecordNames& av_Clients,
                                                         const Phrases& av_Phrases = {});
/// What is wrong with a text that becomes one line of the settings; empty when nothing is.
[[nodiscard]] std::string StationTextProblem(const std::string& as_Text, const Phrases& av_Phrases);

/// By which names the cells of units call these records.
[[nodiscard]] RecordNames NamesOf(const RecordArray<Relay>& av_Relays);
[[nodiscard]] RecordNames NamesOf(const RecordArray<Client>& av_Clients);
/// The same for none at all, which only knows how a cell says "none".
[[nodiscard]] RecordNames NoRelayNames(const Phrases& av_Phrases = {});
[[nodiscard]] RecordNames NoClientNames(const Phrases& av_Phrases = {});

}  // namespace corvane
