#pragma once

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::test {

/// A server of `tests/servers`, ended with the object; it must print its port when it is ready.
class ServerProcess {
 public:
  ServerProcess(const std::string& script, const std::vector<std::string>& arguments) {
    std::vector<std::string> words{"/usr/bin/python3", TEST_SERVERS_DIR "/" + script};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, ends[0]);
    posix_spawn_file_actions_addclose(&actions, ends[1]);
    const int error = posix_spawn(&process_, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    std::string line;
    for (char c = 0; error == 0 && read(ends[0], &c, 1) == 1 && c != '\n';) line += c;
    close(ends[0]);
    port_ = std::atoi(line.c_str());
    if (port_ == 0) throw std::runtime_error(script + " did not start");
  }
  ~ServerProcess() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  [[nodiscard]] int port() const { return port_; }

 private:
  pid_t process_ = 0;
  int port_ = 0;
};

}  // namespace corvane::test
