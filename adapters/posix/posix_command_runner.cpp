#include "posix/posix_command_runner.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "posix/child_process.h"

namespace corvane {
namespace {

constexpr std::int64_t kTickMilliseconds = 20;
constexpr std::int64_t kMillisecondsASecond = 1000;
constexpr int kSignalBase = 128;
/// Blocks read a tick of a command that floods, so that it is slowed down instead of the program.
constexpr int kBlocksATick = 16;

struct Pipe {
  int read_end = -1;
  int write_end = -1;

  ~Pipe() {
    for (const int end : {read_end, write_end}) {
      if (end >= 0) close(end);
    }
  }
  [[nodiscard]] bool Open() {
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return false;
    read_end = ends[0];
    write_end = ends[1];
    return true;
  }
};

/// Lets this thread write to a pipe that nobody reads without a signal that would end the program.
class WithoutPipeSignal {
 public:
  WithoutPipeSignal() {
    sigemptyset(&pipe_signal_);
    sigaddset(&pipe_signal_, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    was_pending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &pipe_signal_, &earlier_);
  }
  ~WithoutPipeSignal() {
    constexpr timespec kAtOnce{0, 0};
    const int error = errno;
    if (!was_pending_) sigtimedwait(&pipe_signal_, nullptr, &kAtOnce);
    pthread_sigmask(SIG_SETMASK, &earlier_, nullptr);
    errno = error;
  }
  WithoutPipeSignal(const WithoutPipeSignal&) = delete;
  WithoutPipeSignal& operator=(const WithoutPipeSignal&) = delete;

 private:
  sigset_t pipe_signal_{};
  sigset_t earlier_{};
  bool was_pending_ = false;
};

}  // namespace

PosixCommandRunner::PosixCommandRunner(EventLoop& loop, DescriptorWatcher& watcher, Limits limits)
    : loop_(loop), watcher_(watcher), limits_(limits), timer_(loop.MakeTimer([this] { Tick(); })) {}

void PosixCommandRunner::Start(const std::string& command, const std::string& input, std::int64_t seconds,
                               std::function<void(const CommandEnding&)> on_end) {
  on_end_ = std::move(on_end);
  ending_ = {};
  input_ = input;
  written_ = 0;
  seconds_ = seconds;
  next_step_ = loop_.MonotonicMilliseconds() + seconds * kMillisecondsASecond;
  ending_.status = Launch(command);
  timer_->Start(kTickMilliseconds);
  if (process_ == 0) return;
  watcher_.WatchRead(output_end_, [this] { ReadOutput(); });
  watcher_.WatchWrite(input_end_, [this] { WriteInput(); });
}

Status PosixCommandRunner::Launch(const std::string& command) {
  Pipe input;
  Pipe output;
  if (!input.Open() || !output.Open()) return Status::FromErrno("no pipe", errno);
  for (const int end : {input.write_end, output.read_end}) fcntl(end, F_SETFL, O_NONBLOCK);
  pid_t process = 0;
  const int error = StartProcess({"/bin/sh", "-c", command}, input.read_end, output.write_end, process);
  if (error != 0) return Status::FromErrno("/bin/sh", error);
  process_ = process;
  input_end_ = std::exchange(input.write_end, -1);
  output_end_ = std::exchange(output.read_end, -1);
  return Status::Ok();
}

void PosixCommandRunner::Stop() {
  timer_->Stop();
  on_end_ = nullptr;
  CloseInput();
  CloseOutput();
  if (process_ == 0) return;
  kill(-process_, SIGKILL);
  // Killed, it ends at once, unless the kernel holds it (a dead network disk); then a thread waits for it.
  ReapAside(std::exchange(process_, 0));
}

void PosixCommandRunner::Tick() {
  if (process_ != 0 && !ShellEnded()) {
    const bool floods = ending_.output.size() >= limits_.most_output;
    for (int block = 0; floods && block < kBlocksATick && ReadOutput(); ++block) {
    }
    return KeepTime();
  }
  if (process_ != 0) {
    kill(-process_, SIGKILL);
    ReadRest();
    Reap();
  }
  Finish();
}

void PosixCommandRunner::KeepTime() {
  if (loop_.MonotonicMilliseconds() < next_step_) return;
  const bool asked = !ending_.status.ok();
  kill(-process_, asked ? SIGKILL : SIGTERM);
  if (!asked) ending_.status = {ETIMEDOUT, "it was ended after " + std::to_string(seconds_) + " s"};
  next_step_ = loop_.MonotonicMilliseconds() + limits_.grace_milliseconds;
}

void PosixCommandRunner::WriteInput() {
  const WithoutPipeSignal guarded;
  const ssize_t taken =
      written_ < input_.size() ? write(input_end_, input_.data() + written_, input_.size() - written_) : 0;
  if (taken < 0 && (errno == EAGAIN || errno == EINTR)) return;
  written_ += static_cast<std::size_t>(std::max<ssize_t>(taken, 0));
  // A command that does not want all of its input has not failed for that.
  if (taken < 0 || written_ == input_.size()) CloseInput();
}

bool PosixCommandRunner::ReadOutput() {
  std::array<char, 64 * 1024> block;
  if (output_end_ < 0) return false;
  const ssize_t got = read(output_end_, block.data(), block.size());
  if (got < 0 && (errno == EAGAIN || errno == EINTR)) return false;
  if (got <= 0) {
    CloseOutput();
    return false;
  }
  const std::size_t room = limits_.most_output - ending_.output.size();
  ending_.output.append(block.data(), std::min(room, static_cast<std::size_t>(got)));
  if (ending_.output.size() >= limits_.most_output) watcher_.WatchRead(output_end_, nullptr);
  return true;
}

void PosixCommandRunner::ReadRest() {
  while (ending_.output.size() < limits_.most_output && ReadOutput()) {
  }
}

bool PosixCommandRunner::ShellEnded() const {
  siginfo_t info{};
  // A program that was started with SIGCHLD ignored has no child left to ask for.
  return waitid(P_PID, static_cast<id_t>(process_), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
}

void PosixCommandRunner::Reap() {
  int status = 0;
  if (waitpid(std::exchange(process_, 0), &status, 0) < 0) {
    if (ending_.status.ok()) ending_.status = Status::FromErrno("how it ended is not known", errno);
    return;
  }
  ending_.exit_code = WIFSIGNALED(status) ? kSignalBase + WTERMSIG(status) : WEXITSTATUS(status);
}

void PosixCommandRunner::Finish() {
  timer_->Stop();
  CloseInput();
  CloseOutput();
  // The caller may start the next one, or destroy this object.
  const auto on_end = std::exchange(on_end_, nullptr);
  const CommandEnding ending = std::exchange(ending_, {});
  on_end(ending);
}

void PosixCommandRunner::CloseInput() {
  if (input_end_ < 0) return;
  watcher_.Unwatch(input_end_);
  close(std::exchange(input_end_, -1));
}

void PosixCommandRunner::CloseOutput() {
  if (output_end_ < 0) return;
  watcher_.Unwatch(output_end_);
  close(std::exchange(output_end_, -1));
}

}  // namespace corvane
