// corvane-field-year: runs the program through simulated years and holds every reading to account.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "field_year/year.h"

namespace {

using corvane::test::kHeadings;
using corvane::test::Year;
using corvane::test::YearOutcome;
using corvane::test::YearSettings;

constexpr const char* kHelp =
    "corvane-field-year [--seed N | --seeds A-B] [--days D] [--units U] [--rounds-a-day R] [--go-on 0|1]\n"
    "                   [--without KIND,...] [--trace] [--shrink] [--twice] [--table]\n";
constexpr std::uint64_t kManySeeds = 100;

struct Options {
  YearSettings year;
  std::uint64_t first = 1;
  std::uint64_t last = 1;
  bool shrinks = false;
  bool runs_twice = false;
  bool prints_table = false;
};

bool TakeSwitch(Options& options, const std::string& name) {
  bool* const flags[] = {&options.year.trace, &options.shrinks, &options.runs_twice, &options.prints_table};
  const std::string names[] = {"--trace", "--shrink", "--twice", "--table"};
  const auto* const found = std::ranges::find(names, name);
  if (found == std::end(names)) return false;
  *flags[found - names] = true;
  return true;
}

bool TakeValue(Options& options, const std::string& name, const std::string& value) {
  const int number = std::atoi(value.c_str());
  if (name == "--seed" || name == "--seeds") {
    options.first = options.last = std::strtoull(value.c_str(), nullptr, 10);
    if (const auto dash = value.find('-'); dash != value.npos) options.last = std::stoull(value.substr(dash + 1));
  } else if (name == "--days") {
    options.year.days = number;
  } else if (name == "--units") {
    options.year.units = std::max(number, 3);
  } else if (name == "--rounds-a-day") {
    options.year.rounds_a_day = std::clamp(number, 1, 24);
  } else if (name == "--go-on") {
    options.year.goes_on = number != 0;
  } else if (name == "--without") {
    std::istringstream names(value);
    for (std::string kind; std::getline(names, kind, ',');) options.year.without.insert(kind);
  } else {
    return false;
  }
  return true;
}

std::string CommandOf(const YearSettings& year) {
  std::ostringstream command;
  command << "corvane-field-year --seed " << year.seed << " --days " << year.days << " --units " << year.units
          << " --rounds-a-day " << year.rounds_a_day << " --go-on " << year.goes_on;
  for (const char* separator = " --without "; const std::string& kind : year.without) {
    command << separator << kind;
    separator = ",";
  }
  return command.str();
}

/// Finds the fewest days and kinds that still break a promise.
YearSettings Shrink(YearSettings year, int day) {
  const auto take_when_broken = [&year](const YearSettings& fewer) {
    const bool broken = !Year(fewer).Run().broken.empty();
    if (broken) year = fewer;
    return broken;
  };
  for (YearSettings fewer = year; fewer.days > day - 1; fewer.days = std::min(fewer.days - 1, day + 4)) {
    take_when_broken(fewer);
  }
  for (const std::string& kind : Year::Kinds()) {
    YearSettings fewer = year;
    if (fewer.without.insert(kind).second) take_when_broken(fewer);
  }
  return year;
}

/// Runs one seed and adds what came of it to `all`; false when a promise was broken.
bool RunSeed(const Options& options, std::uint64_t seed, YearOutcome& all) {
  YearSettings year = options.year;
  year.seed = seed;
  const auto began = std::chrono::steady_clock::now();
  YearOutcome outcome = Year(year).Run();
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
  if (options.runs_twice && outcome.broken.empty() && Year(year).Run().digest != outcome.digest) {
    outcome.broken = "the same seed has left other files";
  }
  for (const auto& [kind, strikes] : outcome.strikes) all.strikes[kind] += strikes;
  for (std::size_t i = 0; i < kHeadings.size(); ++i) all.headings[i] += outcome.headings[i];
  all.logged += outcome.logged;
  all.stored += outcome.stored;
  std::printf("seed %llu: %d days, %lld readings, %lld in raw files, digest %s, %.1f s\n",
              static_cast<unsigned long long>(seed), outcome.day, static_cast<long long>(outcome.logged),
              static_cast<long long>(outcome.stored), outcome.digest.c_str(), took.count());
  if (outcome.broken.empty()) return true;
  for (const std::string& event : outcome.events) std::printf("  %s\n", event.c_str());
  std::printf("BROKEN on day %d: %s\n", outcome.day, outcome.broken.c_str());
  if (options.shrinks) year = Shrink(year, outcome.day);
  std::printf("again: %s\n", CommandOf(year).c_str());
  return false;
}

/// The tables of headings and kinds; false when a kind never struck in many seeds.
bool PrintTables(const Options& options, YearOutcome& all) {
  std::printf("\n| Why a reading is not in its raw file | Readings |\n|---|---|\n");
  for (std::size_t i = 0; i < kHeadings.size(); ++i) {
    std::printf("| %s | %lld |\n", kHeadings[i], static_cast<long long>(all.headings[i]));
  }
  std::printf("\n| What struck | How often |\n|---|---|\n");
  bool all_struck = true;
  for (const std::string& kind : Year::Kinds()) {
    std::printf("| %s | %lld |\n", kind.c_str(), static_cast<long long>(all.strikes[kind]));
    all_struck = all_struck && all.strikes[kind] > 0;
  }
  return all_struck || options.last - options.first + 1 < kManySeeds;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    if (TakeSwitch(options, argv[i]) || (i + 1 < argc && TakeValue(options, argv[i], argv[i + 1]) && ++i > 0)) continue;
    std::fputs(kHelp, stderr);
    return 2;
  }
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  YearOutcome all;
  for (std::uint64_t seed = options.first; seed <= options.last; ++seed) {
    if (!RunSeed(options, seed, all)) return 1;
  }
  std::printf("%lld readings, %lld in raw files, none unexplained\n", static_cast<long long>(all.logged),
              static_cast<long long>(all.stored));
  if (!options.prints_table || PrintTables(options, all)) return 0;
  std::printf("\nBROKEN: a kind of fault never struck\n");
  return 1;
}
