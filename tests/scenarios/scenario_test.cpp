// Plays the scenarios of `data/`: what happens to the whole application on a fake machine in virtual time.
// The language: `README.md`.
#include <gtest/gtest.h>

#include "scenarios/scenario_player.h"

namespace corvane::test {
namespace {

class Scenarios : public testing::TestWithParam<ScenarioCase> {};

TEST_P(Scenarios, Play) {
  ScenarioPlayer(GetParam()).Play();
}

INSTANTIATE_TEST_SUITE_P(All, Scenarios, testing::ValuesIn(AllScenarios()),
                         [](const auto& which) { return which.param.name; });

}  // namespace
}  // namespace corvane::test
