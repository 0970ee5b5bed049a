#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace corvane::test {

/// One line of a scenario with the indented lines below it.
struct Line {
  int number = 0;
  std::string word;
  std::string rest;
  std::vector<std::string> block;
};

/// A case of a file, with the lines above the first case in front.
struct ScenarioCase {
  std::string name;
  std::string path;
  std::vector<Line> lines;
};
void PrintTo(const ScenarioCase& which, std::ostream* out);

/// The cases of all files of `data/`.
std::vector<ScenarioCase> AllScenarios();

}  // namespace corvane::test
