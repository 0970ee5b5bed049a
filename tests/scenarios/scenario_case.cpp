#include "scenarios/scenario_case.h"

#include <filesystem>
#include <fstream>
#include <ostream>

#include "scenarios/scenario_texts.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

void ReadScenarios(const std::string& path, std::vector<ScenarioCase>& cases) {
  std::vector<Line> common;
  std::vector<Line>* lines = &common;
  std::ifstream in(path, std::ios::binary);
  int number = 1;
  for (std::string text; std::getline(in, text); ++number) {
    if (text.starts_with("  ")) {
      lines->at(lines->size() - 1).block.push_back(text.substr(2));
    } else if (text.starts_with("== ")) {
      cases.push_back({fs::path(path).stem().string() + "_" + text.substr(3), path, common});
      lines = &cases.back().lines;
    } else if (!text.empty() && text[0] != '#') {
      // What these words run later, or with each row, keeps its separators.
      const bool is_whole =
          text[0] == '[' || text.starts_with("at ") || text.starts_with("on ") || text.starts_with("each ");
      for (const std::string& statement : is_whole ? Texts{text} : Pieces(text, " ; ")) {
        const auto [word, rest] = Cut(statement, " ");
        lines->push_back({number, word, rest, {}});
      }
    }
  }
}

}  // namespace

void PrintTo(const ScenarioCase& which, std::ostream* out) {
  *out << which.name;
}

std::vector<ScenarioCase> AllScenarios() {
  std::vector<ScenarioCase> cases;
  for (const auto& file : fs::directory_iterator(SCENARIO_DIR)) {
    if (file.path().extension() == ".txt") ReadScenarios(file.path(), cases);
  }
  return cases;
}

}  // namespace corvane::test
