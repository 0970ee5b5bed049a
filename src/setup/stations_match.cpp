#include "setup/stations_match.h"

#include <array>
#include <cstddef>
#include <deque>
#include <unordered_map>

#include "setup/stations_names.h"

namespace corvane {
namespace {

/// One way to know a record again; an empty key knows none.
struct Way {
  std::string (*key)(const StationMarks& marks);
  bool alone;          ///< counts only where one row and one record have that key
  bool without_owner;  ///< is for rows that do not say whose the record is
};

std::string Text(const std::optional<std::int32_t>& number) {
  return std::to_string(number.value_or(0)) + "\n";
}

std::string OwnerIDName(const StationMarks& marks) {
  return marks.owner && marks.id ? Text(marks.owner) + Text(marks.id) + marks.name : std::string();
}
std::string OwnerID(const StationMarks& marks) {
  return marks.owner && marks.id ? Text(marks.owner) + Text(marks.id) : std::string();
}
std::string IDName(const StationMarks& marks) {
  return marks.id ? Text(marks.id) + PlainName(marks.name) : std::string();
}
std::string ID(const StationMarks& marks) {
  return marks.id ? Text(marks.id) : std::string();
}
std::string OwnerName(const StationMarks& marks) {
  return marks.owner && !marks.name.empty() ? Text(marks.owner) + PlainName(marks.name) : std::string();
}
std::string Name(const StationMarks& marks) {
  return marks.name;
}
std::string LooseName(const StationMarks& marks) {
  return PlainName(marks.name);
}

constexpr std::array kWays = {
    Way{OwnerIDName, false, false}, Way{OwnerID, false, false}, Way{IDName, true, false},    Way{ID, true, true},
    Way{OwnerName, true, false},    Way{Name, true, false},     Way{LooseName, true, false},
};

class Matcher {
 public:
  Matcher(const std::vector<StationMarks>& rows, const std::vector<StationMarks>& records)
      : rows_(rows), records_(records), found_(rows.size()), taken_(records.size()) {}

  void Go(const Way& way) {
    std::unordered_map<std::string, std::deque<std::size_t>> free;
    for (std::size_t record = 0; record < records_.size(); ++record) {
      if (!taken_[record]) free[way.key(records_[record])].push_back(record);
    }
    std::unordered_map<std::string, int> asking;
    if (way.alone) {
      for (std::size_t row = 0; row < rows_.size(); ++row) {
        if (found_[row] == 0) ++asking[way.key(rows_[row])];
      }
    }
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      if (found_[row] != 0 || (way.without_owner && rows_[row].owner)) continue;
      const std::string key = way.key(rows_[row]);
      const auto bearers = free.find(key);
      if (key.empty() || bearers == free.end() || bearers->second.empty()) continue;
      if (way.alone && (bearers->second.size() > 1 || asking[key] > 1)) continue;
      const std::size_t record = bearers->second.front();
      bearers->second.pop_front();
      taken_[record] = true;
      found_[row] = static_cast<std::int64_t>(record) + 1;
    }
  }

  [[nodiscard]] std::vector<std::int64_t> Found() { return std::move(found_); }

 private:
  const std::vector<StationMarks>& rows_;
  const std::vector<StationMarks>& records_;
  std::vector<std::int64_t> found_;
  std::vector<bool> taken_;
};

}  // namespace

std::vector<std::int64_t> MatchStations(const std::vector<StationMarks>& av_Rows,
                                        const std::vector<StationMarks>& av_Records) {
  Matcher matcher(av_Rows, av_Records);
  for (const Way& way : kWays) matcher.Go(way);
  return matcher.Found();
}

}  // namespace corvane
