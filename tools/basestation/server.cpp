#include "server.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <iostream>
#include <utility>

#include "run_time_error.h"
#include "state_file.h"

namespace corvane::basestation {
namespace {

using namespace std::chrono_literals;

constexpr std::int64_t kBitsPerByte = 10;
constexpr std::int64_t kBurstsPerSecond = 100;
constexpr std::uint64_t kLongestPiece = 64;
constexpr auto kSettling = 20ms;
constexpr auto kBetweenLooks = 500ms;

}  // namespace

Server::Server(Settings settings, Station& station, Pty& pty, Log& log)
    : settings_(std::move(settings)), station_(station), pty_(pty), log_(log), conversation_(station, log) {
  conversation_.answer_over = [this] { changed_ = true; };
}

void Server::Run(int signals) {
  last_input_ = units_time_ = Clock::now();
  while (!stop_) {
    ReopenWhenDue();
    conversation_.Advance(Clock::now());
    HangUpWhenRead();
    KeepState();
    const short events = Wait(signals);
    TakeSignals(signals);
    if ((events & POLLIN) != 0) {
      TakeInput(pty_.Read());
    } else if ((events & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
      throw RunTimeError("the pseudo-terminal is lost");
    }
    Send();
    const auto idle = Clock::now() - last_input_;
    stop_ = stop_ || LeftAlone() || (settings_.idle_exit > 0 && idle >= std::chrono::seconds(settings_.idle_exit));
  }
  KeepState();
}

void Server::TakeInput(std::string_view bytes) {
  last_input_ = Clock::now();
  PassRealTime();
  conversation_.TakeInput(bytes, last_input_);
}

/// Hanging up loses what the application has not read; bytes just sent take a moment to show as unread.
void Server::HangUpWhenRead() {
  const auto now = Clock::now();
  if (!conversation_.WantsHangUp() || now < hold_until_) {
    return;
  }
  if (!pty_.Drained() || now - last_sent_ < kSettling) {
    hold_until_ = now + 2ms;
    return;
  }
  log_.Write("hung up");
  pty_.Close();
  const std::int64_t back_after = conversation_.HangUp();
  if (back_after >= 0) reopen_at_ = now + std::chrono::milliseconds(back_after);
}

void Server::ReopenWhenDue() {
  if (!reopen_at_ || Clock::now() < *reopen_at_) {
    return;
  }
  reopen_at_.reset();
  try {
    pty_.Open();
  } catch (const RunTimeError& error) {
    log_.Write(error.what());
    throw;
  }
  log_.Write("back on " + pty_.name());
}

bool Server::MaySend() const {
  const auto now = Clock::now();
  return pty_.fd() >= 0 && !conversation_.Waiting(now).empty() && now >= hold_until_ && now >= pace_from_;
}

/// How many bytes may go out now.
std::size_t Server::Allowance() {
  std::size_t bytes = conversation_.Waiting(Clock::now()).size();
  const std::int64_t piece = conversation_.piece_size();
  if (piece != 0 && !pty_.Drained()) {
    const bool reading = Clock::now() - last_sent_ < 20ms;
    hold_until_ = Clock::now() + (reading ? 100us : 5000us);
    return 0;
  }
  if (piece != 0) {
    const std::uint64_t size = piece > 0 ? static_cast<std::uint64_t>(piece) : 1 + pieces_.Below(kLongestPiece);
    bytes = std::min<std::size_t>(bytes, size);
  }
  if (settings_.baud > 0) {
    const std::int64_t burst = std::max<std::int64_t>(settings_.baud / kBitsPerByte / kBurstsPerSecond, 1);
    bytes = std::min(bytes, static_cast<std::size_t>(burst));
  }
  return bytes;
}

void Server::Send() {
  const std::size_t allowed = MaySend() ? Allowance() : 0;
  const std::size_t written = allowed > 0 ? pty_.Write(conversation_.Waiting(Clock::now()).substr(0, allowed)) : 0;
  if (written == 0) {
    return;
  }
  conversation_.NoteSent(written);
  last_sent_ = Clock::now();
  if (conversation_.piece_size() != 0) hold_until_ = last_sent_ + 100us;
  if (settings_.baud > 0) {
    const auto bits = static_cast<std::int64_t>(written) * kBitsPerByte;
    pace_from_ =
        std::max(pace_from_, last_sent_ - 20ms) + std::chrono::nanoseconds(bits * 1'000'000'000 / settings_.baud);
  }
}

Server::Clock::time_point Server::NextWake() const {
  auto wake = Clock::time_point::max();
  if (conversation_.active()) {
    const auto ready = std::max({conversation_.resume_at(), hold_until_, pace_from_});
    if (ready > Clock::now() || !conversation_.HasOutput()) wake = ready;
  }
  if (reopen_at_) wake = std::min(wake, *reopen_at_);
  if (settings_.idle_exit > 0) wake = std::min(wake, last_input_ + std::chrono::seconds(settings_.idle_exit));
  if (settings_.end_with_link) wake = std::min(wake, look_at_link_);
  return wake;
}

/// Waits for input, room for output, a signal or the next due time; returns the line's events.
short Server::Wait(int signals) {
  pollfd files[] = {{pty_.fd(), static_cast<short>(MaySend() ? POLLIN | POLLOUT : POLLIN), 0},
                    {signals, POLLIN, 0},
                    {settings_.lifeline, POLLIN, 0}};
  const auto wake = NextWake();
  timespec limit{};
  if (const auto now = Clock::now(); wake > now) {
    const auto left = std::chrono::nanoseconds(wake - now).count();
    limit.tv_sec = left / 1'000'000'000;
    limit.tv_nsec = left % 1'000'000'000;
  }
  const int ready = ppoll(files, 3, wake == Clock::time_point::max() ? nullptr : &limit, nullptr);
  return ready > 0 ? files[0].revents : short{0};
}

void Server::TakeSignals(int signals) {
  signalfd_siginfo info{};
  while (read(signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    if (info.ssi_signo == SIGUSR1) {
      station_.PassReadings(settings_.signal_step);
      changed_ = true;
      log_.Write("signal: every unit has new readings");
    } else {
      stop_ = true;
    }
  }
}

bool Server::LeftAlone() {
  char thrown_away[256];
  pollfd lifeline{settings_.lifeline, POLLIN, 0};
  const bool something = settings_.lifeline >= 0 && poll(&lifeline, 1, 0) > 0;
  if (something && read(settings_.lifeline, thrown_away, sizeof thrown_away) == 0) return true;
  if (!settings_.end_with_link || Clock::now() < look_at_link_) return false;
  look_at_link_ = Clock::now() + kBetweenLooks;
  return pty_.fd() >= 0 && !pty_.HasLink();
}

void Server::PassRealTime() {
  if (settings_.clock_speed <= 0) {
    return;
  }
  const std::chrono::duration<double> elapsed = Clock::now() - units_time_;
  const auto seconds = static_cast<Seconds>(elapsed.count() * settings_.clock_speed);
  const std::chrono::duration<double> used(static_cast<double>(seconds) / settings_.clock_speed);
  units_time_ += std::chrono::duration_cast<Clock::duration>(used);
  station_.PassTime(seconds);
}

void Server::KeepState() {
  if (!std::exchange(changed_, false) || settings_.state_path.empty()) {
    return;
  }
  try {
    SaveState(settings_.state_path, station_);
  } catch (const RunTimeError& error) {
    std::cerr << "corvane-basestation: " << error.what() << std::endl;
  }
}

}  // namespace corvane::basestation
