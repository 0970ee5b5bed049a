#include "posix/child_process.h"

#include <csignal>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane {
namespace {

/// What the started program finds: no signals blocked or ignored, its own session, no descriptors but its three.
struct ProcessSetup {
  ProcessSetup(int input, int output) {
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_init(&files);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    Give(input, STDIN_FILENO);
    Give(output, STDOUT_FILENO);
    Give(output, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
  }
  ~ProcessSetup() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
  }
  ProcessSetup(const ProcessSetup&) = delete;
  ProcessSetup& operator=(const ProcessSetup&) = delete;

  void Give(int descriptor, int as) {
    if (descriptor < 0) {
      posix_spawn_file_actions_addopen(&files, as, "/dev/null", O_RDWR, 0);
    } else {
      posix_spawn_file_actions_adddup2(&files, descriptor, as);
    }
  }

  posix_spawnattr_t attributes;
  posix_spawn_file_actions_t files;
};

}  // namespace

int StartProcess(const std::vector<std::string>& command, int input, int output, pid_t& process) {
  std::vector<char*> arguments;
  for (const std::string& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  const ProcessSetup setup(input, output);
  return posix_spawnp(&process, arguments[0], &setup.files, &setup.attributes, arguments.data(), environ);
}

void ReapAside(pid_t process) {
  try {
    std::thread([process] { waitpid(process, nullptr, 0); }).detach();
  } catch (const std::system_error&) {
    // No thread to be had: the entry in the process table stays until this program ends.
  }
}

}  // namespace corvane
