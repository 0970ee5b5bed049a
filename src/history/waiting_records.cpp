#include "history/waiting_records.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <vector>

namespace corvane {
namespace {

constexpr std::size_t kMostOfAKind = 1'250;  ///< rounds, deliveries, gaps, alerts

template <class Record>
void Append(std::vector<Record>& av_To, const std::vector<Record>& av_From) {
  av_To.insert(av_To.end(), av_From.begin(), av_From.end());
}

template <class Record, class KeyOf>
void KeepLastOfEachKey(std::vector<Record>& av_Records, const KeyOf& av_KeyOf) {
  std::set<decltype(av_KeyOf(av_Records.front()))> keys;
  std::vector<Record> kept;
  for (auto record = av_Records.rbegin(); record != av_Records.rend(); ++record) {
    if (keys.insert(av_KeyOf(*record)).second) kept.push_back(std::move(*record));
  }
  av_Records.assign(std::make_move_iterator(kept.rbegin()), std::make_move_iterator(kept.rend()));
}

/// True when some were dropped.
template <class Record>
bool DropOldest(std::vector<Record>& av_Records, std::size_t al_Most) {
  if (av_Records.size() <= al_Most) return false;
  av_Records.erase(av_Records.begin(), av_Records.end() - static_cast<std::ptrdiff_t>(al_Most));
  return true;
}

}  // namespace

std::size_t CountOf(const HistoryContents& av_Contents) {
  return av_Contents.units.size() + av_Contents.rounds.size() + av_Contents.contacts.size() +
         av_Contents.deliveries.size() + av_Contents.days.size() + av_Contents.gaps.size() + av_Contents.scans.size() +
         av_Contents.alerts.size() + av_Contents.notes.size() + (av_Contents.network ? 1 : 0);
}

void Append(HistoryContents& av_To, const HistoryContents& av_From) {
  Append(av_To.units, av_From.units);
  Append(av_To.rounds, av_From.rounds);
  Append(av_To.contacts, av_From.contacts);
  Append(av_To.deliveries, av_From.deliveries);
  Append(av_To.days, av_From.days);
  Append(av_To.gaps, av_From.gaps);
  Append(av_To.scans, av_From.scans);
  Append(av_To.alerts, av_From.alerts);
  Append(av_To.notes, av_From.notes);
  if (av_From.network) av_To.network = av_From.network;
}

void RenumberRecords(HistoryContents& av_Records, const std::map<std::int64_t, std::int64_t>& av_Units,
                     std::int64_t al_Rounds) {
  const auto renumber = [&av_Units](auto& av_OfAKind) {
    for (auto& record : av_OfAKind) {
      if (const auto found = av_Units.find(record.unit); found != av_Units.end()) record.unit = found->second;
    }
  };
  renumber(av_Records.contacts);
  renumber(av_Records.deliveries);
  renumber(av_Records.gaps);
  renumber(av_Records.alerts);
  for (ContactRecord& contact : av_Records.contacts) contact.round += al_Rounds;
  for (RoundRecord& round : av_Records.rounds) round.key += al_Rounds;
}

bool KeepNewest(HistoryContents& av_Waiting) {
  if (CountOf(av_Waiting) <= kMostWaiting) return false;
  KeepLastOfEachKey(av_Waiting.units, [](const UnitRecord& unit) { return unit.key; });
  KeepLastOfEachKey(av_Waiting.rounds, [](const RoundRecord& round) { return round.key; });
  KeepLastOfEachKey(av_Waiting.contacts,
                    [](const ContactRecord& contact) { return std::tuple(contact.round, contact.unit); });
  KeepLastOfEachKey(av_Waiting.deliveries,
                    [](const DeliveryRecord& delivery) { return std::tuple(delivery.unit, delivery.target); });
  KeepLastOfEachKey(av_Waiting.gaps, [](const GapRecord& gap) { return std::tuple(gap.unit, gap.from); });
  KeepLastOfEachKey(av_Waiting.alerts,
                    [](const AlertRecord& alert) { return std::tuple(alert.cause, alert.unit, alert.subject); });
  KeepLastOfEachKey(av_Waiting.notes, [](const NoteRecord& note) { return note.unit; });
  if (CountOf(av_Waiting) <= kMostWaiting) return false;
  bool dropped = DropOldest(av_Waiting.rounds, kMostOfAKind);
  dropped = DropOldest(av_Waiting.deliveries, kMostOfAKind) || dropped;
  dropped = DropOldest(av_Waiting.gaps, kMostOfAKind) || dropped;
  dropped = DropOldest(av_Waiting.alerts, kMostOfAKind) || dropped;
  const std::size_t others = CountOf(av_Waiting) - av_Waiting.contacts.size();
  const std::size_t left = others < kMostWaiting / 2 ? kMostWaiting - others : kMostWaiting / 2;
  return DropOldest(av_Waiting.contacts, left) || dropped;
}

}  // namespace corvane
