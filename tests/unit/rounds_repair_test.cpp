#include <algorithm>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "data/gap_splice.h"
#include "support/world.h"

namespace corvane::test {
namespace {

/// A unit with a reading every hour, whose raw file lacks some of them, and a link that may do anything to an answer.
class DisturbedUnit {
 public:
  explicit DisturbedUnit(unsigned seed) : random_(seed) {
    for (int hour = 0; hour < 96; ++hour) {
      const std::string day = "2010/3/" + std::to_string(1 + hour / 24) + " ";
      truth_.push_back(day + std::to_string(hour % 24) + ":00," + std::to_string(Below(9000)) + ",300");
    }
    for (std::size_t at = 0; at < truth_.size(); ++at) {
      if (at > 5 && at < 90 && Below(12) == 0) at += Below(6);
      file_.push_back(truth_[at]);
    }
  }
  [[nodiscard]] const std::vector<std::string>& truth() const { return truth_; }
  [[nodiscard]] const std::vector<std::string>& file() const { return file_; }

  std::string Answer(const std::string& command) {
    std::string answer = command + "\r\n" + Framed("V2,1,2,1," + std::to_string(Below(99)) + ",x");
    const auto from =
        static_cast<std::size_t>(std::stoi(command.substr(21, 2)) * 24 + std::stoi(command.substr(23, 2)));
    for (std::size_t at = from - 24 + 1 - std::min<std::size_t>(Below(3), 1); at < truth_.size(); ++at) {
      answer += Disturbed(truth_[at]);
      if (Below(30) == 0) at -= Below(3);
      if (Below(30) == 0) at += Below(9);
      if (Below(60) == 0) return answer + (Below(2) == 0 ? "ERROR 3\r\n" : "");
    }
    return answer + "OK\r\n";
  }

 private:
  std::size_t Below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }
  std::string Disturbed(const std::string& reading) {
    std::string line = Framed(reading);
    const std::size_t at = Below(line.size());
    switch (Below(40)) {
      case 0:
        line[at] = static_cast<char>(line[at] ^ (1 << Below(7)));
        return line;
      case 1:
        return line.erase(at, 1);
      case 2:
        return Framed(reading + ",1");
      case 3:
        return line + line;
      case 4:
        return "";
      default:
        return line;
    }
  }

  std::mt19937 random_;
  std::vector<std::string> truth_;
  std::vector<std::string> file_;
};

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0, end = 0; (end = text.find("\r\n", begin)) != std::string::npos; begin = end + 2) {
    lines.push_back(text.substr(begin, end - begin));
  }
  return lines;
}

TEST(Repair, WhateverTheStationAnswersTheFormerLinesStayAndOnlyTrueOnesComeBetween) {
  std::size_t filled = 0;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    DisturbedUnit unit(seed);
    World world(SmallNetwork(1));
    std::string former = Framed("V2,1,2,1,9,x");
    for (const std::string& line : unit.file()) former += line + "\r\n";
    world.home.Write("data/00001.epd", former);
    world.port.on_line = [&](const std::string& line) { world.port.Receive(unit.Answer(line)); };
    world.Start().commands().RepairUnits({1}, DateTime());
    world.app().commands().RepairUnits({1}, DateTime());

    const std::vector<std::string> lines = LinesOf(world.home.Read("data/00001.epd"));
    const std::vector<std::string> before = LinesOf(former);
    std::size_t kept = 0;
    DateTime last;
    for (std::size_t at = 0; at < lines.size(); ++at) {
      kept += kept < before.size() && lines[at] == before[kept] ? 1 : 0;
      if (at == 0) continue;
      EXPECT_TRUE(std::find(unit.truth().begin(), unit.truth().end(), lines[at]) != unit.truth().end()) << lines[at];
      EXPECT_LT(last, *DateOfReading(lines[at])) << "seed " << seed;
      last = *DateOfReading(lines[at]);
    }
    EXPECT_EQ(kept, before.size()) << "seed " << seed;
    filled += lines.size() - before.size();
  }
  EXPECT_GT(filled, 100U);
}

}  // namespace
}  // namespace corvane::test
