#include "desktop/spawn.h"

#include <csignal>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane {

namespace {

/// What the started program finds: no signals blocked or ignored, its own session, an empty terminal.
struct SpawnSetup {
  SpawnSetup() {
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_init(&files);
    sigset_t none;
    sigset_t defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&files, descriptor, "/dev/null", O_RDWR, 0);
    }
  }
  ~SpawnSetup() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
  }
  SpawnSetup(const SpawnSetup&) = delete;
  SpawnSetup& operator=(const SpawnSetup&) = delete;

  posix_spawnattr_t attributes;
  posix_spawn_file_actions_t files;
};

}  // namespace

std::vector<std::string> SplitAtBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  std::vector<std::string> words;
  std::size_t begin = text.find_first_not_of(kBlanks);
  while (begin != std::string_view::npos) {
    const std::size_t end = text.find_first_of(kBlanks, begin);
    words.emplace_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(kBlanks, end);
  }
  return words;
}

int SpawnDetached(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);

  const SpawnSetup setup;
  pid_t child = 0;
  const int error = posix_spawnp(&child, arguments[0], &setup.files, &setup.attributes, arguments.data(), environ);
  if (error != 0) return error;
  try {
    std::thread([child] { waitpid(child, nullptr, 0); }).detach();
  } catch (const std::system_error&) {
    // No thread to be had: the entry in the process table stays until this program ends.
  }
  return 0;
}

}  // namespace corvane
