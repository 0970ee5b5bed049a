// The station registry: units, relays and clients in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "state/download_tally.h"

namespace corvane {

/// Where a unit's data comes from.
enum GetFrom : std::int32_t { kFromRadio = 0, kFromNone = 1, kFromHandHeld = 2, kFromFtp = 3, kFromWebData = 4 };

/// Any source, any client, where one is chosen by its number.
inline constexpr std::int32_t kAny = -1;

struct Unit {
  std::string Name;
  std::int32_t ID = 0;       ///< radio address
  std::int16_t Active = 0;   ///< not 0: takes part when all units are downloaded
  std::int32_t RelayID = 0;  ///< ID of a relay, 0 direct
  std::int32_t ftpFile = 0;  ///< 0 none, 1 FTP
  std::int32_t ClientID = 0;
  std::int32_t GetFrom = 0;  ///< see `corvane::GetFrom`
  float MoistureCorrection = 0;
  float SalinityCorrection = 0;
  std::string Depths;  ///< of its sensors in centimetres, from the first on, with ";" between them

  // Working state of a session, never saved.
  std::int16_t Tries = 0;
  bool Problem = false;
  bool Marked = false;
  bool ToSend = false;
  std::int64_t Stored = 0;  ///< readings that the session has added to the raw file
  DownloadTally Brought;    ///< what its last try brought
};

struct Relay {
  std::string Name;
  std::int32_t ID = 0;             ///< radio address
  std::int16_t PasswordStyle = 0;  ///< index of the password-style option, 0 to 2
};

struct Client {
  std::string Name;
  std::int32_t ID = 0;
  std::string Folder;
  std::string Password;
  std::string UserID;
};

/// Records indexed from 1, in the order of downloading and saving.
template <class Record>
class RecordArray {
 public:
  [[nodiscard]] std::int32_t count() const { return static_cast<std::int32_t>(records_.size()); }
  [[nodiscard]] bool Has(std::int64_t index) const { return index >= 1 && index <= count(); }
  /// The record at `index`, 1 to `count()`.
  Record& operator[](std::int64_t index) { return Edit()[static_cast<std::size_t>(index - 1)]; }
  const Record& operator[](std::int64_t index) const { return records_[static_cast<std::size_t>(index - 1)]; }
  void Resize(std::int32_t count) { Edit().resize(static_cast<std::size_t>(count)); }
  void Append(Record record) { Edit().push_back(std::move(record)); }
  /// Puts the record at `index`, 1 to `count()` + 1.
  void Insert(std::int64_t index, Record record) { Edit().insert(records_.begin() + (index - 1), std::move(record)); }
  void Remove(std::int64_t index) { Edit().erase(records_.begin() + (index - 1)); }
  auto begin() const { return records_.begin(); }
  auto end() const { return records_.end(); }
  auto begin() { return Edit().begin(); }
  auto end() { return Edit().end(); }
  /// Grows with each access that may change a record: as long as it stays, so do they.
  [[nodiscard]] std::uint64_t edits() const { return edits_; }

 private:
  std::vector<Record>& Edit() {
    ++edits_;
    return records_;
  }

  std::vector<Record> records_;
  std::uint64_t edits_ = 0;
};

/// Positions in the unit array, both included; none when `last` is below `first`.
struct UnitSpan {
  std::int64_t first = 1;
  std::int64_t last = 0;
};

struct Registry {
  RecordArray<Unit> Units;
  RecordArray<Relay> Relays;
  RecordArray<Client> Clients;

  [[nodiscard]] std::uint64_t edits() const { return Units.edits() + Relays.edits() + Clients.edits(); }

  /// All units, or the one at `al_Selected`; none when there is no such unit.
  [[nodiscard]] UnitSpan UnitRange(bool ab_All, std::int64_t al_Selected) const {
    if (ab_All) return {1, Units.count()};
    return Units.Has(al_Selected) ? UnitSpan{al_Selected, al_Selected} : UnitSpan{};
  }
  /// The first relay or client with that ID; nullptr when there is none.
  [[nodiscard]] const Relay* FindRelay(std::int32_t al_ID) const { return FindByID(Relays, al_ID); }
  [[nodiscard]] const Client* FindClient(std::int32_t al_ID) const { return FindByID(Clients, al_ID); }

 private:
  template <class Record>
  static const Record* FindByID(const RecordArray<Record>& av_Records, std::int32_t al_ID) {
    for (const Record& record : av_Records) {
      if (record.ID == al_ID) return &record;
    }
    return nullptr;
  }
};

}  // namespace corvane
