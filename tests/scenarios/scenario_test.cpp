// Plays the scenarios of `data/`: what happens to the whole application on a fake machine in virtual time.
// The language: `README.md`.
#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "console/control_text.h"
#include "console/script_runner.h"
#include "scenarios/history_texts.h"
#include "scenarios/scenario_texts.h"
#include "sqlite/sqlite_history_store.h"
#include "support/small_disk.h"
#include "support/sync_faults.h"
#include "support/world.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

/// One line of a scenario with the indented lines below it.
struct Line {
  int number = 0;
  std::string word;
  std::string rest;
  Texts block;
};

/// A case of a file, with the lines above the first case in front.
struct ScenarioCase {
  std::string name;
  std::string path;
  std::vector<Line> lines;
};

void PrintTo(const ScenarioCase& which, std::ostream* out) {
  *out << which.name;
}

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

std::vector<ScenarioCase> AllScenarios() {
  std::vector<ScenarioCase> cases;
  for (const auto& file : fs::directory_iterator(SCENARIO_DIR)) {
    if (file.path().extension() == ".txt") ReadScenarios(file.path(), cases);
  }
  return cases;
}

class Scenarios : public testing::TestWithParam<ScenarioCase> {
 protected:
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

  Scenarios() {
    world_.port.on_line = [this](const std::string& command) { OnLine(command); };
    world_.internet.on_call = [this](const std::string& call) { OnCall(call); };
    world_.zip.on_run = [this] { OnCall(world_.zip.runs.back()); };
    AddGivens();
    AddChecks();
    words_["start"] = {kAction, [this](const Line& line) { Start(line.rest); }};
    words_["key"] = {kAction, [this](const Line& line) {
                       Require(line, world_.form().Frm_Main.Key(std::stoi(line.rest), true), "is not taken");
                     }};
    words_["close"] = {kAction, [this](const Line& line) { App().commands().Close(line.rest == "silently"); }};
    words_["collect"] = {kAction, [this](const Line& line) {
                           std::vector<std::int64_t> units;
                           for (const std::string& unit : Pieces(line.rest, " ")) units.push_back(std::stoll(unit));
                           App().commands().Collect(units);
                         }};
    words_["quit"] = {kAction, [this](const Line&) { App().life().OnWindowClose(); }};
  }
  void AddGivens();
  void AddChecks();
  Application& App() { return world_.app(); }

  void Play() {
    for (const Line& line : case_.lines) Run(line);
    for (const Reply& reply : replies_) {
      if (reply.used == 0 && reply.line.word == "reply") Fail(reply.line) << "was not asked for";
    }
    for (const Plan& plan : plans_) {
      if (!plan.ran) Fail(plan.line) << "never happened";
    }
    EXPECT_TRUE(checked_) << "a scenario that checks nothing";
  }

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
  void Compare(const Line& line, const std::string& found, const std::string& wanted) const {
    Require(line, wanted != "<*>", "a check that cannot fail");
    if (!Matches(found, wanted)) Fail(line) << "wanted: " << wanted << "\n found: " << found;
  }
  void CompareAll(const Line& line, const Texts& found, const std::string& wanted) const {
    Compare(line, Escaped(Joined(found)), Escaped(Expand(wanted)));
  }

  /// Runs the statements of an `each` line once for each row below it, with the row's cells for {1}, {2} ...
  void RunRows(const Line& line) {
    for (std::size_t row = 0; row < line.block.size(); ++row) {
      std::string statements = line.rest;
      Texts cells = Pieces(line.block[row], " | ");
      cells.resize(4);
      for (std::size_t cell = 0; cell < cells.size(); ++cell) {
        const std::string place = "{" + std::to_string(cell + 1) + "}";
        for (std::size_t at = 0; (at = statements.find(place, at)) != std::string::npos; at += cells[cell].size()) {
          statements.replace(at, place.size(), cells[cell]);
        }
      }
      for (const std::string& each : Pieces(statements, " ; ")) {
        const auto [word, rest] = Cut(each, " ");
        rows_.push_back({line.number + static_cast<int>(row) + 1, word, rest, {}});
        Run(rows_.back());
      }
    }
  }

  void Run(const Line& line) {
    if (line.word == "each") return RunRows(line);
    const auto found = words_.find(line.word);
    const Kind kind = line.word[0] == '[' ? kGiven : found == words_.end() ? kAction : found->second.kind;
    if (runner_ == nullptr && kind != kGiven && line.word != "start") Start("");
    if (kind == kAction && depth_ == 0) ForgetWhatHappened();
    checked_ = checked_ || kind == kCheck;
    ++depth_;
    try {
      if (line.word[0] == '[') {
        Require(line, runner_ == nullptr, "settings must stand above the first statement");
        for (const std::string& each : Pieces(line.rest, "; "))
          settings_[line.word][Cut(each, "=").first] = Expand(each);
      } else {
        found == words_.end() ? RunStatement(line) : found->second.run(line);
      }
    } catch (const std::exception& error) {
      Fail(line) << error.what();
    }
    --depth_;
  }

  void Start(const std::string& switches) {
    std::string text;
    for (const auto& [section, lines] : settings_) {
      text += section + "\n";
      for (const auto& [key, setting] : lines) text += setting + "\n";
    }
    if (!text.empty() && runner_ == nullptr) world_.home.Write("corvane.ini", text);
    world_.Start(switches);
    console::ScriptRunner::Hooks hooks;
    hooks.answer = [this](const std::string& answer) {
      world_.dialogs.text_answer = answer.empty() ? std::nullopt : std::optional(answer);
      if (answer == "yes" || answer == "no") world_.dialogs.answers.push_back(answer == "yes" ? 1 : 2);
    };
    hooks.activate = [this](const std::string& switches_now) { App().life().OnWindowActivate(switches_now); };
    hooks.print = [](const std::string&) { throw std::runtime_error("\"shows NAME TEXT\" compares"); };
    runner_ = std::make_unique<console::ScriptRunner>(world_.form(), world_.loop, App().flags(), hooks);
  }

  /// What is no word of scenarios is a statement of console scripts.
  void RunStatement(const Line& line) {
    std::int64_t& counted = App().flags().problems;
    const std::int64_t before = counted;
    const auto script = console::ParseScript(case_.name, line.word + " " + Expand(line.rest), world_.form());
    const console::ScriptResult result = runner_->Run(script);
    Require(line, result.error.empty(), result.error);
    if (depth_ == 1) problems_ = result.problems;
    if (depth_ > 1) counted += before;
  }

  void ForgetWhatHappened() {
    world_.port.written.clear();
    world_.port.opens = 0;
    world_.shell.opened.clear();
    world_.shell.edited.clear();
    calls_.clear();
    boxes_before_ = world_.dialogs.boxes.size();
    began_ = world_.loop.MonotonicMilliseconds();
  }

  void OnLine(const std::string& command) {
    const std::string subject = world_.port.device + " " + command;
    for (Reply& reply : replies_) {
      if (reply.line.word == "reply" && reply.used > 0) continue;
      if (subject.find(reply.subject) == std::string::npos) continue;
      ++reply.used;
      return Send(reply.items, command);
    }
    world_.AnswerAsUsual(command);
  }

  /// Sends items of the line's other end: "xCOUNT " repeats, "+MS " waits, "!event", "@" echoes, else a line.
  void Send(const std::string& items, const std::string& command) {
    std::int64_t when = 1;
    std::string text;
    const auto deliver = [&] {
      if (!text.empty()) world_.port.Receive(std::exchange(text, {}), when);
    };
    Texts all;
    for (const std::string& item : Pieces(items, " | ")) {
      const bool repeated = item.size() > 1 && item[0] == 'x' && std::isdigit(item[1]) != 0;
      all.insert(all.end(), repeated ? std::stoul(item.substr(1)) : 1, repeated ? Cut(item, " ").second : item);
    }
    for (std::string item : all) {
      if (item.starts_with('+')) {
        deliver();
        const auto [delay, rest] = Cut(item, " ");
        when = (when == 1 ? 0 : when) + std::stoll(delay);
        item = rest;
      }
      if (item.starts_with('!')) {
        deliver();
        const int event = item == "!gone" ? 0 : PortEvents().at(item.substr(1));
        world_.loop.After(when, [this, event] { event == 0 ? world_.port.Close() : world_.port.Event(event); });
      } else {
        text += item == "@" ? command + "\r\n" : LineText(item);
      }
    }
    deliver();
  }

  void RunAt(const Line& line) {
    const auto [milliseconds, statement] = Cut(line.rest, " ");
    Plan& plan = plans_.emplace_back(line);
    world_.loop.After(std::stoll(milliseconds), [this, &plan, what = statement] { RunPlan(plan, what); });
  }
  void RunPlan(Plan& plan, const std::string& statements) {
    plan.ran = true;
    for (const std::string& each : Pieces(statements, " ; ")) {
      const auto [word, rest] = Cut(each, " ");
      Run({plan.line.number, word, rest, {}});
    }
  }
  void OnCall(const std::string& call) {
    calls_.push_back(call);
    for (Plan& plan : plans_) {
      const auto [begin, statements] = Cut(Expand(plan.line.rest), ": ");
      if (!plan.ran && plan.line.word == "on" && call.starts_with(begin)) RunPlan(plan, statements);
    }
  }

  [[nodiscard]] std::string Expand(const std::string& text) const { return Expanded(text, world_.home.path()); }
  /// One line as it is in a file or on the line: "$items" is framed, CR LF follows unless "~" ends it.
  [[nodiscard]] std::string LineText(const std::string& text) const {
    const bool open = text.ends_with('~');
    const std::string line = Expand(open ? text.substr(0, text.size() - 1) : text);
    const bool is_framed = text.size() >= 3 && text[text.size() - 3] == '*';
    if (text.starts_with('$') && !is_framed) return Framed(line.substr(1));
    return line + (open ? "" : "\r\n");
  }
  [[nodiscard]] std::string Contents(const Line& line) const {
    std::string contents = Expand(Cut(line.rest, " ").second);
    for (const std::string& each : line.block) contents += LineText(each);
    return contents;
  }
  [[nodiscard]] bool Exists(const std::string& name) const {
    if (!name.starts_with("ftp:")) return fs::exists(world_.home.Name(name));
    return world_.internet.files.contains(name.substr(4)) || world_.internet.folders.contains(name.substr(4));
  }
  std::string FileText(const Line& line) {
    const std::string name = Cut(line.rest, " ").first;
    Require(line, Exists(name), "is not there");
    return name.starts_with("ftp:") ? world_.internet.files[name.substr(4)] : world_.home.Read(name);
  }
  void MakeFile(const Line& line) {
    const std::string name = Expand(Cut(line.rest, " ").first);
    if (name.starts_with("ftp:") && name.ends_with('/')) {
      world_.internet.folders.insert(name.substr(4, name.size() - 5));
    } else if (name.starts_with("ftp:")) {
      world_.internet.files[name.substr(4)] = Contents(line);
    } else if (name.ends_with('/')) {
      fs::create_directories(world_.home.Name(name));
    } else {
      world_.home.Write(name, Contents(line));
    }
  }
  const Control& ControlOf(const std::string& name) {
    const Control* control = world_.form().Find(name);
    if (control == nullptr) throw std::runtime_error("there is no control " + name);
    return *control;
  }
  [[nodiscard]] Texts Boxes() const {
    Texts texts;
    for (std::size_t box = boxes_before_; box < world_.dialogs.boxes.size(); ++box) {
      const BoxContents& contents = world_.dialogs.boxes[box];
      texts.push_back((contents.count_down.empty() ? "" : "(" + contents.count_down + ") ") + contents.text);
    }
    return texts;
  }
  /// What was written to the port but escapes, by lines; one with a blank at its end stands between quotation marks.
  [[nodiscard]] Texts Written() const {
    std::string written = world_.port.written;
    std::erase(written, '\x1b');
    Texts lines = Pieces(written, "\r");
    for (std::string& line : lines) line = line.ends_with(' ') ? "\"" + line + "\"" : line;
    return lines;
  }
  [[nodiscard]] Texts Calls(const std::string& operations) const {
    Texts found;
    for (const std::string& call : calls_) {
      if (("," + operations + ",").find("," + Cut(call, " ").first + ",") != std::string::npos) found.push_back(call);
    }
    return found;
  }
  void CheckRest(const Line& line) {
    Require(line, !world_.port.IsOpen(), "the port is open");
    Require(line, !App().slot().Taken() && !App().flags().automatic_run, "an operation runs");
    Require(line, App().link().State == kIdle && !App().link().DirectListening, "the link is in use");
    Require(line, world_.form().Cmd_Close.enabled() && !world_.form().Suppress.set(), "commands are disabled");
    Require(line, world_.dialogs.open_boxes == 0, "a box is open");
  }

  const ScenarioCase& case_ = GetParam();
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

void Scenarios::AddGivens() {
  const auto add = [this](const char* word, auto run) { words_[word] = {kGiven, run}; };
  add("given", [this](const Line& line) { MakeFile(line); });
  add("remove", [this](const Line& line) { fs::remove_all(world_.home.Name(line.rest)); });
  add("at", [this](const Line& line) { RunAt(line); });
  add("on", [this](const Line& line) { plans_.emplace_back(line); });
  for (const char* word : {"reply", "always"}) {
    add(word, [this](const Line& line) {
      const auto [subject, items] = Cut(line.rest, " =");
      replies_.emplace_back(line, subject, items.substr(std::min<std::size_t>(items.size(), 1)));
    });
  }
  add("receive", [this](const Line& line) { Send(line.rest, ""); });
  add("devices", [this](const Line& line) { world_.port.answering_devices = Pieces(line.rest, " "); });
  add("port-error", [this](const Line& line) { world_.port.open_result = {line.rest.empty() ? 0 : 2, line.rest}; });
  add("settings-error", [this](const Line& line) { world_.port.settings_result = {22, line.rest}; });
  add("log-on-error", [this](const Line& line) { world_.shell.write_result = {13, line.rest}; });
  add("zip-result", [this](const Line& line) {
    world_.zip.result = static_cast<std::int16_t>(std::stoi(line.rest));
    world_.zip.disk_was_not_empty = line.rest.ends_with("not-empty");
  });
  add("ftp-error", [this](const Line& line) {
    const auto [operation, codes] = Cut(line.rest, " ");
    for (const auto& code : Pieces(codes, " ")) world_.internet.errors[operation].push_back(std::stoi(code));
  });
  add("ftp-report", [this](const Line& line) {
    const auto [code, rest] = Cut(line.rest, " ");
    const auto [bytes, text] = Cut(rest, " ");
    world_.internet.Report({2, std::stoi(code), Expand(text), std::stoll(bytes)});
  });
  add("guide", [this](const Line& line) { world_.help = {line.rest + "contents", line.rest + "index"}; });
  add("full-disk", [this](const Line& line) {
    disk_.reset();
    if (!line.rest.empty()) disk_ = std::make_unique<SmallDisk>(std::stoul(line.rest));
  });
  add("link", [this](const Line& line) {
    fs::create_symlink(Cut(line.rest, " ").second, world_.home.Name(Cut(line.rest, " ").first));
  });
  add("age", [this](const Line& line) {
    const auto [name, hours] = Cut(line.rest, " ");
    fs::last_write_time(world_.home.Name(name),
                        fs::file_time_type::clock::now() - std::chrono::hours(std::stoi(hours)));
  });
  add("spoil", [this](const Line& line) {
    const auto [name, page] = Cut(line.rest, " ");
    std::fstream file(world_.home.Name(name), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp((std::stoi(page) - 1) * 4096) << std::string(4096, '\x7F');
  });
  add("failing-syncs", [](const Line& line) { failing_syncs = std::stoi(line.rest); });
  add("failing-reads", [](const Line& line) {
    const auto [error, count] = Cut(line.rest, " ");
    read_error = error == "EMFILE" ? EMFILE : EIO;
    failing_reads = std::stoi(count);
  });
  add("keep-history", [this](const Line&) { world_.history = &history_; });
  add("history-error", [this](const Line& line) {
    const auto [code, text] = Cut(line.rest, " ");
    history_.failure = {std::stoi(code), text};
  });
  add("unattended", [this](const Line&) { world_.dialogs.answer_plain_boxes = false; });
}

void Scenarios::AddChecks() {
  const auto add = [this](const char* word, auto run) { words_[word] = {kCheck, run}; };
  add("sent", [this](const Line& line) { CompareAll(line, Written(), line.rest); });
  add("boxes", [this](const Line& line) { CompareAll(line, Boxes(), line.rest); });
  add("opened", [this](const Line& line) { CompareAll(line, world_.shell.opened, line.rest); });
  add("edited", [this](const Line& line) { CompareAll(line, world_.shell.edited, line.rest); });
  add("calls", [this](const Line& line) {
    const auto [operations, calls] = Cut(line.rest, " =");
    CompareAll(line, Calls(operations), calls.substr(std::min<std::size_t>(calls.size(), 1)));
  });
  add("history", [this](const Line& line) {
    const auto [part, texts] = Cut(line.rest, " ");
    CompareAll(line, HistoryTexts(world_.home.Name("history.db"), part), texts);
  });
  add("shows", [this](const Line& line) {
    const auto [name, text] = Cut(line.rest, " ");
    CompareAll(line, console::ShownTexts(ControlOf(name)), text);
  });
  for (const bool enabled : {false, true}) {
    add(enabled ? "enabled" : "disabled", [this, enabled](const Line& line) {
      for (const auto& name : Pieces(line.rest, " ")) Require(line, ControlOf(name).enabled() == enabled, name);
    });
  }
  add("hidden", [this](const Line& line) { Require(line, !ControlOf(line.rest).visible(), "is shown"); });
  add("file", [this](const Line& line) { Compare(line, Escaped(FileText(line)), Escaped(Contents(line))); });
  add("folder", [this](const Line& line) { Require(line, Exists(line.rest), "is not there"); });
  add("owner-only", [this](const Line& line) {
    Require(line, fs::status(world_.home.Name(line.rest)).permissions() == fs::perms(0600), "others may use it");
  });
  add("synced", [this](const Line& line) {
    Require(line, synced_folders.contains(world_.home.Name(line.rest)), "was not synced");
  });
  add("absent", [this](const Line& line) { Require(line, !Exists(line.rest), "is there"); });
  for (const bool has : {false, true}) {
    add(has ? "has" : "lacks", [this, has](const Line& line) {
      const std::string text = FileText(line);
      const std::string part = Cut(line.rest, " ").second;
      Require(line, !part.empty(), "a check that cannot fail");
      Require(line, Matches(text, "<*>" + Expand(part) + "<*>") == has, text);
    });
  }
  const auto add_text = [&](const char* word, std::function<std::string()> found) {
    add(word, [this, found](const Line& line) { Compare(line, found(), Expand(line.rest)); });
  };
  add_text("filter", [this] { return world_.dialogs.last_filter; });
  add_text("problems", [this] { return std::to_string(problems_); });
  add_text("time", [this] { return std::to_string(world_.loop.MonotonicMilliseconds() - began_); });
  add_text("escapes", [this] { return std::to_string(std::ranges::count(world_.port.written, '\x1b')); });
  add_text("opens", [this] { return std::to_string(world_.port.opens); });
  add_text("device", [this] { return world_.port.device + " " + world_.port.settings; });
  add_text("login", [this] {
    return (world_.internet.last_login.encrypted ? "encrypted " : "plain ") + world_.internet.last_login.certificate;
  });
  add_text("log-on", [this] { return world_.shell.log_on_entry.value_or("none"); });
  add_text("closing", [this] { return std::string(App().flags().closing ? "yes" : "no"); });
  add("at-rest", [this](const Line& line) { CheckRest(line); });
}

TEST_P(Scenarios, Play) {
  Play();
}

INSTANTIATE_TEST_SUITE_P(All, Scenarios, testing::ValuesIn(AllScenarios()),
                         [](const auto& which) { return which.param.name; });

}  // namespace
}  // namespace corvane::test
