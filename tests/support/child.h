// Programs as child processes.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/temp_folder.h"

namespace corvane::test {

using Words = std::vector<std::string>;

/// Waits until `done` returns true; false when it does not within `limit`.
inline bool Until(const std::function<bool()>& done, std::chrono::milliseconds limit = std::chrono::seconds(10)) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  for (; !done(); usleep(1'000)) {
    if (std::chrono::steady_clock::now() > deadline) return false;
  }
  return true;
}

/// A program that is started with the object and ended with it; both its outputs are collected together.
class Child {
 public:
  explicit Child(Words command, const std::string& input = "") {
    const std::string files = " <" + files_.Write("in", input) + " >" + files_.Write("out", "") + " 2>&1";
    command.insert(command.begin(), {"sh", "-c", "unset CORVANE_HOME; exec \"$0\" \"$@\"" + files});
    std::vector<char*> words;
    for (std::string& word : command) words.push_back(word.data());
    words.push_back(nullptr);
    if (posix_spawn(&process_, "/bin/sh", nullptr, nullptr, words.data(), environ) != 0) {
      throw std::runtime_error("no process");
    }
  }
  ~Child() {
    Signal(SIGKILL);
    Wait();
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void Signal(int signal) {
    if (!Ended()) kill(process_, signal);
  }
  [[nodiscard]] std::string output() const { return files_.Read("out"); }
  /// Waits until the output holds `text`; false when it does not.
  [[nodiscard]] bool Shows(const std::string& text) const {
    return Until([&] { return output().find(text) != std::string::npos; });
  }
  /// Waits for the end and returns the exit status; -1 when it has not ended within `limit`.
  int Wait(std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    if (!Until([this] { return Ended(); }, limit)) return -1;
    return WIFEXITED(status_) ? WEXITSTATUS(status_) : 256 + WTERMSIG(status_);
  }

 private:
  bool Ended() { return ended_ = ended_ || waitpid(process_, &status_, WNOHANG) == process_; }

  TempFolder files_;
  pid_t process_ = -1;
  int status_ = 0;
  bool ended_ = false;
};

/// A server of `tests/servers`; it prints its port when it is ready.
class ServerProcess : public Child {
 public:
  explicit ServerProcess(Words script_and_arguments) : Child(Command(std::move(script_and_arguments))) {
    const auto printed = [this] {
      const std::string all = output();
      return all.ends_with('\n') && (port_ = std::atoi(all.c_str() + all.rfind('\n', all.size() - 2) + 1)) != 0;
    };
    if (!Until(printed)) throw std::runtime_error("no server: " + output());
  }

  [[nodiscard]] int port() const { return port_; }

 private:
  static Words Command(Words words) {
    words.front() = TEST_SERVERS_DIR "/" + words.front();
    words.insert(words.begin(), "/usr/bin/python3");
    return words;
  }

  int port_ = 0;
};

}  // namespace corvane::test
