#include "units.h"

#include <algorithm>

#include "base/files.h"
#include "base/format.h"
#include "base/near_words.h"
#include "base/numbers.h"
#include "base/text.h"
#include "data/raw_file.h"
#include "options.h"

namespace corvane::console {
namespace {

constexpr int kMostLooks = 1000;  ///< for a date: lines of a short file, blocks of a long one from its end

std::int64_t FindUnit(const Registry& registry, const std::string& name) {
  const auto& units = registry.Units;
  const auto id = ParseInteger(name, INT32_MIN, INT32_MAX);
  std::vector<std::int64_t> found;
  for (std::int64_t i = 1; i <= units.count(); ++i) {
    if (EqualsNoCase(units[i].Name, name)) found.push_back(i);
  }
  for (std::int64_t i = 1; id && found.empty() && i <= units.count(); ++i) {
    if (units[i].ID == *id) found.push_back(i);
  }
  if (found.empty()) {
    std::vector<std::string> names;
    for (std::int64_t i = 1; i <= units.count(); ++i) names.push_back(units[i].Name);
    throw UsageError(NoUnitText(name, names, "units"));
  }
  if (found.size() > 1) throw UsageError("several units are called \"" + name + "\": name the unit by its ID");
  return found.front();
}

}  // namespace

std::string NoUnitText(const std::string& name, const std::vector<std::string>& names, const std::string& lists) {
  const std::string meant = NearestWord(name, names);
  return "there is no unit \"" + name + "\"; " +
         (meant.empty() ? "corvanectl " + lists + " lists them" : "did you mean \"" + meant + "\"?");
}

std::vector<std::int64_t> FindUnits(const Registry& registry, const std::vector<std::string>& names) {
  std::vector<std::int64_t> units;
  for (const std::string& name : names) {
    const std::int64_t unit = FindUnit(registry, name);
    if (std::find(units.begin(), units.end(), unit) == units.end()) units.push_back(unit);
  }
  return units;
}

std::vector<std::int64_t> ActiveUnits(const Registry& registry, std::int32_t get_from) {
  std::vector<std::int64_t> active;
  const auto& units = registry.Units;
  for (std::int64_t i = 1; i <= units.count(); ++i) {
    if (units[i].Active != 0 && (get_from == kFromAnywhere || units[i].GetFrom == get_from)) active.push_back(i);
  }
  return active;
}

std::string LastReading(const std::string& raw_file) {
  if (!ExamineFile(raw_file)) return "";
  // A file that is none of ours must not hold the table up.
  const auto look_further = [looks = 0]() mutable { return ++looks < kMostLooks; };
  try {
    const DateTime last = ReadLastDate(raw_file, look_further).last_date;
    return last.IsNone() ? "" : FormatDate(last, "yyyy-mm-dd HH:MM");
  } catch (const RunTimeError&) {
    return "unreadable";
  }
}

}  // namespace corvane::console
