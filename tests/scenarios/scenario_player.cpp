#include "scenarios/scenario_player.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace corvane::test {

namespace fs = std::filesystem;

ScenarioPlayer::ScenarioPlayer(const ScenarioCase& which) : case_(which) {
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

void ScenarioPlayer::Play() {
  for (const Line& line : case_.lines) Run(line);
  for (const Reply& reply : replies_) {
    if (reply.used == 0 && reply.line.word == "reply") Fail(reply.line) << "was not asked for";
  }
  for (const Plan& plan : plans_) {
    if (!plan.ran) Fail(plan.line) << "never happened";
  }
  EXPECT_TRUE(checked_) << "a scenario that checks nothing";
}

void ScenarioPlayer::Compare(const Line& line, const std::string& found, const std::string& wanted) const {
  Require(line, wanted != "<*>", "a check that cannot fail");
  if (!Matches(found, wanted)) Fail(line) << "wanted: " << wanted << "\n found: " << found;
}

void ScenarioPlayer::RunRows(const Line& line) {
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

void ScenarioPlayer::Run(const Line& line) {
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
      for (const std::string& each : Pieces(line.rest, "; ")) settings_[line.word][Cut(each, "=").first] = Expand(each);
    } else {
      found == words_.end() ? RunStatement(line) : found->second.run(line);
    }
  } catch (const std::exception& error) {
    Fail(line) << error.what();
  }
  --depth_;
}

void ScenarioPlayer::Start(const std::string& switches) {
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

void ScenarioPlayer::RunStatement(const Line& line) {
  std::int64_t& counted = App().flags().problems;
  const std::int64_t before = counted;
  const auto script = console::ParseScript(case_.name, line.word + " " + Expand(line.rest), world_.form());
  const console::ScriptResult result = runner_->Run(script);
  Require(line, result.error.empty(), result.error);
  if (depth_ == 1) problems_ = result.problems;
  if (depth_ > 1) counted += before;
}

void ScenarioPlayer::ForgetWhatHappened() {
  world_.port.written.clear();
  world_.port.opens = 0;
  world_.shell.opened.clear();
  world_.shell.edited.clear();
  calls_.clear();
  boxes_before_ = world_.dialogs.boxes.size();
  began_ = world_.loop.MonotonicMilliseconds();
}

void ScenarioPlayer::OnLine(const std::string& command) {
  const std::string subject = world_.port.device + " " + command;
  for (Reply& reply : replies_) {
    if (reply.line.word == "reply" && reply.used > 0) continue;
    if (subject.find(reply.subject) == std::string::npos) continue;
    ++reply.used;
    return Send(reply.items, command);
  }
  world_.AnswerAsUsual(command);
}

void ScenarioPlayer::Send(const std::string& items, const std::string& command) {
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

void ScenarioPlayer::RunAt(const Line& line) {
  const auto [milliseconds, statement] = Cut(line.rest, " ");
  Plan& plan = plans_.emplace_back(line);
  world_.loop.After(std::stoll(milliseconds), [this, &plan, what = statement] { RunPlan(plan, what); });
}

void ScenarioPlayer::RunPlan(Plan& plan, const std::string& statements) {
  plan.ran = true;
  for (const std::string& each : Pieces(statements, " ; ")) {
    const auto [word, rest] = Cut(each, " ");
    Run({plan.line.number, word, rest, {}});
  }
}

void ScenarioPlayer::OnCall(const std::string& call) {
  calls_.push_back(call);
  for (Plan& plan : plans_) {
    const auto [begin, statements] = Cut(Expand(plan.line.rest), ": ");
    if (!plan.ran && plan.line.word == "on" && call.starts_with(begin)) RunPlan(plan, statements);
  }
}

std::string ScenarioPlayer::LineText(const std::string& text) const {
  const bool open = text.ends_with('~');
  const std::string line = Expand(open ? text.substr(0, text.size() - 1) : text);
  const bool is_framed = text.size() >= 3 && text[text.size() - 3] == '*';
  if (text.starts_with('$') && !is_framed) return Framed(line.substr(1));
  return line + (open ? "" : "\r\n");
}

std::string ScenarioPlayer::Contents(const Line& line) const {
  std::string contents = Expand(Cut(line.rest, " ").second);
  for (const std::string& each : line.block) contents += LineText(each);
  return contents;
}

bool ScenarioPlayer::Exists(const std::string& name) const {
  if (!name.starts_with("ftp:")) return fs::exists(world_.home.Name(name));
  return world_.internet.files.contains(name.substr(4)) || world_.internet.folders.contains(name.substr(4));
}

std::string ScenarioPlayer::FileText(const Line& line) {
  const std::string name = Cut(line.rest, " ").first;
  Require(line, Exists(name), "is not there");
  return name.starts_with("ftp:") ? world_.internet.files[name.substr(4)] : world_.home.Read(name);
}

void ScenarioPlayer::MakeFile(const Line& line) {
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

const Control& ScenarioPlayer::ControlOf(const std::string& name) {
  const Control* control = world_.form().Find(name);
  if (control == nullptr) throw std::runtime_error("there is no control " + name);
  return *control;
}

ScenarioPlayer::Texts ScenarioPlayer::Boxes() const {
  Texts texts;
  for (std::size_t box = boxes_before_; box < world_.dialogs.boxes.size(); ++box) {
    const BoxContents& contents = world_.dialogs.boxes[box];
    texts.push_back((contents.count_down.empty() ? "" : "(" + contents.count_down + ") ") + contents.text);
  }
  return texts;
}

ScenarioPlayer::Texts ScenarioPlayer::Written() const {
  std::string written = world_.port.written;
  std::erase(written, '\x1b');
  Texts lines = Pieces(written, "\r");
  for (std::string& line : lines) line = line.ends_with(' ') ? "\"" + line + "\"" : line;
  return lines;
}

ScenarioPlayer::Texts ScenarioPlayer::Calls(const std::string& operations) const {
  Texts found;
  for (const std::string& call : calls_) {
    if (("," + operations + ",").find("," + Cut(call, " ").first + ",") != std::string::npos) found.push_back(call);
  }
  return found;
}

void ScenarioPlayer::CheckRest(const Line& line) {
  Require(line, !world_.port.IsOpen(), "the port is open");
  Require(line, !App().slot().Taken() && !App().flags().automatic_run, "an operation runs");
  Require(line, App().link().State == kIdle && !App().link().DirectListening, "the link is in use");
  Require(line, world_.form().Cmd_Close.enabled() && !world_.form().Suppress.set(), "commands are disabled");
  Require(line, world_.dialogs.open_boxes == 0, "a box is open");
}

}  // namespace corvane::test
