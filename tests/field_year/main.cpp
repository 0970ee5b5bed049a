// corvane-field-year: runs the program through simulated years and holds every reading to account.
#include <algorithm>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

#include "field_year/year.h"

namespace {

using namespace corvane::test;

constexpr std::uint64_t kManySeeds = 100;

struct Options {
  YearSettings year;
  std::uint64_t first = 1;
  std::uint64_t last = 1;
  bool shrinks = false;
  bool runs_twice = false;
  bool prints_table = false;
};

/// An option and, where it has one, what its value is.
struct Option {
  std::string name;
  std::string value;
  void (*take)(Options& options, const std::string& value);
};

void TakeSeeds(Options& options, const std::string& value) {
  options.first = options.last = std::stoull(value);
  if (const auto dash = value.find('-'); dash != value.npos) options.last = std::stoull(value.substr(dash + 1));
}

void TakeKinds(Options& options, const std::string& value) {
  std::istringstream names(value);
  for (std::string kind; std::getline(names, kind, ',');) options.year.without.insert(kind);
}

const Option kOptions[] = {
    {"--seed", "N", TakeSeeds},
    {"--seeds", "A-B", TakeSeeds},
    {"--days", "D", [](Options& o, const std::string& value) { o.year.days = std::stoi(value); }},
    {"--units", "U", [](Options& o, const std::string& value) { o.year.units = std::max(std::stoi(value), 3); }},
    {"--rounds-a-day", "R",
     [](Options& o, const std::string& value) { o.year.rounds_a_day = std::clamp(std::stoi(value), 1, 24); }},
    {"--go-on", "0|1", [](Options& o, const std::string& value) { o.year.goes_on = value != "0"; }},
    {"--without", "KIND,...", TakeKinds},
    {"--trace", "", [](Options& o, const std::string&) { o.year.trace = true; }},
    {"--shrink", "", [](Options& o, const std::string&) { o.shrinks = true; }},
    {"--twice", "", [](Options& o, const std::string&) { o.runs_twice = true; }},
    {"--table", "", [](Options& o, const std::string&) { o.prints_table = true; }}};

/// Takes the command line; false when it cannot be followed.
bool TakeOptions(Options& options, int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const auto* const option = std::ranges::find(kOptions, argv[i], &Option::name);
    if (option == std::end(kOptions) || (!option->value.empty() && ++i == argc)) return false;
    option->take(options, argv[i]);
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
    if (!Year(fewer).Run().broken.empty()) year = fewer;
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

std::string Readings(const Counts& counts) {
  std::int64_t all = 0;
  for (const char* heading : kHeadings) all += counts.at(heading);
  return std::to_string(all) + " readings, " + std::to_string(counts.at(kHeadings[0])) + " in raw files";
}

/// Runs one seed and adds what came of it to `all`; false when a promise was broken.
bool RunSeed(const Options& options, std::uint64_t seed, Counts& all) {
  YearSettings year = options.year;
  year.seed = seed;
  const auto began = std::chrono::steady_clock::now();
  YearOutcome outcome = Year(year).Run();
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
  if (options.runs_twice && outcome.broken.empty()) {
    const YearOutcome again = Year(year).Run();
    if (again.digest != outcome.digest) outcome.broken = "the same seed has left other files";
    if (again.history != outcome.history) outcome.broken = "the same seed has left another history";
  }
  for (const auto& [name, count] : outcome.counts) all[name] += count;
  std::cout << "seed " << seed << ": " << outcome.day << " days, " << Readings(outcome.counts) << ", digest "
            << outcome.digest << ", " << std::setprecision(3) << took.count() << " s" << std::endl;
  if (outcome.broken.empty()) return true;
  for (const std::string& event : outcome.events) std::cout << "  " << event << "\n";
  std::cout << "BROKEN on day " << outcome.day << ": " << outcome.broken << std::endl;
  if (options.shrinks) year = Shrink(year, outcome.day);
  std::cout << "again: " << CommandOf(year) << std::endl;
  return false;
}

/// The tables of headings and kinds; false when a kind never struck in many seeds.
bool PrintTables(const Options& options, Counts& all) {
  const auto print = [&all](const char* title, const auto& headings) {
    std::cout << "\n| " << title << " |\n|---|---|\n";
    for (const auto& heading : headings) std::cout << "| " << heading << " | " << all[heading] << " |\n";
  };
  print("Where a reading is | Readings", kHeadings);
  print("What a raw file lacks | Readings", Year::kGapHeadings);
  print("What had to be told, by evening | How often", Year::kAlertHeadings);
  const std::vector<std::string> kinds = Year::Kinds();
  print("What struck | How often", kinds);
  const bool all_struck = std::ranges::all_of(kinds, [&all](const std::string& kind) { return all[kind] > 0; });
  return all_struck || options.last - options.first + 1 < kManySeeds;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!TakeOptions(options, argc, argv)) {
    std::cerr << "corvane-field-year";
    for (const Option& option : kOptions) std::cerr << " [" << option.name << " " << option.value << "]";
    std::cerr << std::endl;
    return 2;
  }
  Counts all;
  for (std::uint64_t seed = options.first; seed <= options.last; ++seed) {
    if (!RunSeed(options, seed, all)) return 1;
  }
  std::cout << Readings(all) << ", none unexplained" << std::endl;
  if (!options.prints_table || PrintTables(options, all)) return 0;
  std::cout << "\nBROKEN: a kind of fault never struck" << std::endl;
  return 1;
}
