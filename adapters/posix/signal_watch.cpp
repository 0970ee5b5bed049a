#include "posix/signal_watch.h"

#include <cerrno>
#include <utility>

#include <sys/signalfd.h>
#include <unistd.h>

namespace corvane {

SignalWatch::~SignalWatch() {
  if (!Running()) return;
  watcher_.Unwatch(descriptor_);
  close(descriptor_);
  pthread_sigmask(SIG_SETMASK, &earlier_mask_, nullptr);
}

Status SignalWatch::Start(std::initializer_list<int> signals, std::function<void(int)> handler) {
  if (Running()) return {EBUSY, "signals are watched already"};
  sigset_t watched;
  sigemptyset(&watched);
  for (const int signal : signals) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0) return Status::FromErrno("watching signals", errno);
    if (action.sa_handler != SIG_IGN) sigaddset(&watched, signal);
  }
  const int descriptor = signalfd(-1, &watched, SFD_NONBLOCK | SFD_CLOEXEC);
  if (descriptor < 0) return Status::FromErrno("watching signals", errno);
  pthread_sigmask(SIG_BLOCK, &watched, &earlier_mask_);
  descriptor_ = descriptor;
  handler_ = std::move(handler);
  watcher_.WatchRead(descriptor_, [this] { ReadSignals(); });
  return Status::Ok();
}

void SignalWatch::ReadSignals() {
  signalfd_siginfo info{};
  while (read(descriptor_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    handler_(static_cast<int>(info.ssi_signo));
  }
}

}  // namespace corvane
