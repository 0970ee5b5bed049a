// The words of the language that give and check things.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "console/control_text.h"
#include "scenarios/scenario_player.h"
#include "support/sync_faults.h"

namespace corvane::test {

namespace fs = std::filesystem;

void ScenarioPlayer::AddGivens() {
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

void ScenarioPlayer::AddChecks() {
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

}  // namespace corvane::test
