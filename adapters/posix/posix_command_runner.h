#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <sys/types.h>

#include "platform/command_runner.h"
#include "platform/event_loop.h"
#include "posix/descriptor_watcher.h"

namespace corvane {

/// Runs commands with "/bin/sh -c"; nothing here waits for one.
///
/// A command ends with its shell: what it leaves running in its process group is killed then, so that no event leaves a
/// process behind it for months. A command that has to live on takes a session of its own (setsid).
class PosixCommandRunner : public CommandRunner {
 public:
  struct Limits {
    std::int64_t grace_milliseconds = 2000;  ///< between SIGTERM and SIGKILL
    std::size_t most_output = 64 * 1024;     ///< bytes; what is printed beyond them is read and thrown away
  };
  /// Both, in practice one object, must outlive the runner.
  PosixCommandRunner(EventLoop& loop, DescriptorWatcher& watcher, Limits limits);
  PosixCommandRunner(EventLoop& loop, DescriptorWatcher& watcher) : PosixCommandRunner(loop, watcher, Limits{}) {}
  ~PosixCommandRunner() override { Stop(); }

  [[nodiscard]] bool Running() const override { return on_end_ != nullptr; }
  /// One that cannot be started ends from the loop, too.
  void Start(const std::string& command, const std::string& input, std::int64_t seconds,
             std::function<void(const CommandEnding&)> on_end) override;
  void Stop() override;

 private:
  [[nodiscard]] Status Launch(const std::string& command);
  void Tick();
  /// Asks the process group to end when its time is over, and kills it when that does not help.
  void KeepTime();
  void WriteInput();
  /// Reads what is there, at most one block; false when there is nothing (more).
  bool ReadOutput();
  /// Reads what an ended command has left in its pipe, without waiting for those who still hold it.
  void ReadRest();
  /// True when the shell has ended; it stays in the process table until `Reap`, so that its number means no one else.
  [[nodiscard]] bool ShellEnded() const;
  void Reap();
  void Finish();
  void CloseInput();
  void CloseOutput();

  EventLoop& loop_;
  DescriptorWatcher& watcher_;
  const Limits limits_;
  std::unique_ptr<Timer> timer_;
  std::function<void(const CommandEnding&)> on_end_;  ///< set while a command runs
  CommandEnding ending_;
  pid_t process_ = 0;  ///< the shell and its process group; 0 for none
  std::string input_;
  std::size_t written_ = 0;
  int input_end_ = -1;
  int output_end_ = -1;
  std::int64_t seconds_ = 0;
  std::int64_t next_step_ = 0;  ///< monotonic milliseconds of the next signal
};

}  // namespace corvane
