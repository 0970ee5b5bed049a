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

sigset_t SignalWatch::Handled(std::initializer_list<int> signals) {
  sigset_t handled;
  sigemptyset(&handled);
  for (const int signal : signals) {
    struct sigaction action {};
    const bool known = sigaction(signal, nullptr, &action) == 0;
    if (known && action.sa_handler != SIG_IGN) sigaddset(&handled, signal);
  }
  return handled;
}

void SignalWatch::BlockEarly(std::initializer_list<int> signals) {
  const sigset_t handled = Handled(signals);
  pthread_sigmask(SIG_BLOCK, &handled, nullptr);
}

Status SignalWatch::Start(std::initializer_list<int> signals, std::function<void(int)> handler) {
  if (Running()) return {EBUSY, "signals are watched already"};
  const sigset_t watched = Handled(signals);
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
