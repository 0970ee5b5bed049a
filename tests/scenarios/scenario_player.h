#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "console/script_runner.h"
#include "scenarios/history_texts.h"
#include "scenarios/scenario_case.h"
#include "scenarios/scenario_texts.h"
#include "support/small_disk.h"
#include "support/world.h"

namespace corvane::test {

/// Plays one case.
class ScenarioPlayer {
 public:
  explicit ScenarioPlayer(const ScenarioCase& which);
  void Play();

 private:
  using Texts = std::vector<std::string>;
  /// A word of the language: what was given, done by a person or to be checked.
  enum Kind { kGiven, kAction, kCheck };
  struct Word {
    Kind kind;
    std::function<void(const Line&)> run;
  };
  struct Reply {
    const Line& line;
    std::string subject;
    std::string items;
    int used = 0;
  };
  /// Something that `at` or `on` run later.
  struct Plan {
    Line line;
    bool ran = false;
  };

  void AddGivens();
  void AddChecks();
  Application& App() { return world_.app(); }

  /// Where a failure is reported: `Fail(line) << "why"`.
  struct Failure : std::ostringstream {
    Failure(const std::string& path, const Line& line) : path_(path), line_(line) {}
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
    ~Failure() override {
      ADD_FAILURE_AT(path_.c_str(), line_.number) << line_.word << " " << line_.rest << "\n" << str();
    }
    const std::string& path_;
    const Line& line_;
  };
  [[nodiscard]] Failure Fail(const Line& line) const { return {case_.path, line}; }
  void Require(const Line& line, bool holds, const std::string& why) const {
    if (!holds) Fail(line) << why;
  }
  void Compare(const Line& line, const std::string& found, const std::string& wanted) const;
  void CompareAll(const Line& line, const Texts& found, const std::string& wanted) const {
    Compare(line, Escaped(Joined(found)), Escaped(Expand(wanted)));
  }

  /// Runs the statements of an `each` line once for each row below it, with the row's cells for {1}, {2} ...
  void RunRows(const Line& line);
  void Run(const Line& line);
  void Start(const std::string& switches);

  /// What is no word of scenarios is a statement of console scripts.
  void RunStatement(const Line& line);
  void ForgetWhatHappened();
  void OnLine(const std::string& command);

  /// Sends items of the line's other end: "xCOUNT " repeats, "+MS " waits, "!event", "@" echoes, else a line.
  void Send(const std::string& items, const std::string& command);

  void RunAt(const Line& line);
  void RunPlan(Plan& plan, const std::string& statements);
  void OnCall(const std::string& call);

  [[nodiscard]] std::string Expand(const std::string& text) const { return Expanded(text, world_.home.path()); }
  /// One line as it is in a file or on the line: "$items" is framed, CR LF follows unless "~" ends it.
  [[nodiscard]] std::string LineText(const std::string& text) const;
  [[nodiscard]] std::string Contents(const Line& line) const;
  [[nodiscard]] bool Exists(const std::string& name) const;
  std::string FileText(const Line& line);
  void MakeFile(const Line& line);
  const Control& ControlOf(const std::string& name);
  [[nodiscard]] Texts Boxes() const;
  /// What was written to the port but escapes, by lines; one with a blank at its end stands between quotation marks.
  [[nodiscard]] Texts Written() const;
  [[nodiscard]] Texts Calls(const std::string& operations) const;
  void CheckRest(const Line& line);

  const ScenarioCase& case_;
  FailingStore history_;
  World world_;
  std::map<std::string, Word> words_;
  std::map<std::string, std::map<std::string, std::string>> settings_;  ///< lines by section and key
  std::unique_ptr<console::ScriptRunner> runner_;
  std::deque<Reply> replies_;
  std::deque<Plan> plans_;
  std::deque<Line> rows_;  ///< of `each`; replies and plans refer to them
  std::int64_t problems_ = 0;
  std::int64_t began_ = 0;
  std::size_t boxes_before_ = 0;
  std::unique_ptr<SmallDisk> disk_;
  Texts calls_;
  bool checked_ = false;
  int depth_ = 0;  ///< above 0 while a line runs: what `at` and `on` run then belongs to it
};

}  // namespace corvane::test
