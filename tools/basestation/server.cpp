#include "server.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <iostream>
#include <utility>

namespace corvane::basestation {
namespace {

using namespace std::chrono_literals;

constexpr char kEscape = 27;
constexpr std::size_t kLongestCommand = 4096;
constexpr std::size_t kLongestLine = 1024;
constexpr std::int64_t kBitsPerByte = 10;
constexpr std::int64_t kBurstsPerSecond = 100;
constexpr std::uint64_t kLongestPiece = 64;
constexpr auto kSettling = 20ms;

}  // namespace

Server::Server(Settings settings, Station& station, Pty& pty, Log& log)
    : settings_(std::move(settings)), station_(station), pty_(pty), log_(log) {}

std::string Server::Run(int signals) {
  last_input_ = units_time_ = Clock::now();
  while (!stop_) {
    if (std::string problem = ReopenWhenDue(); !problem.empty()) {
      return problem;
    }
    Refill();
    SaveState();
    const short events = Wait(signals);
    TakeSignals(signals);
    if ((events & POLLIN) != 0) {
      TakeInput(pty_.Read());
    } else if ((events & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
      return "the pseudo-terminal is lost";
    }
    Send();
    const auto idle = Clock::now() - last_input_;
    stop_ = stop_ || (settings_.idle_exit > 0 && idle >= std::chrono::seconds(settings_.idle_exit));
  }
  SaveState();
  return {};
}

void Server::TakeInput(std::string_view bytes) {
  last_input_ = Clock::now();
  for (const char byte : bytes) {
    if (byte == kEscape) {
      TakeEscape();
    } else if (byte == '\r') {
      TakeLine();
    } else if (byte != '\n' && line_.size() < kLongestCommand) {
      line_ += byte;
    }
  }
}

void Server::TakeLine() {
  const std::string line = std::exchange(line_, {});
  log_.Write("< " + line);
  EndAnswerThatIsOut();
  if (exchange_ && !exchange_->stubborn()) {
    log_.Write("busy");
    Interrupt(ErrorLine(kBusy), true);
    return;
  }
  if (exchange_) Interrupt("", false);
  PassRealTime();
  exchange_.emplace(station_.Answer(line));
  if (!station_.last_faults().empty()) log_.Write("fault: " + station_.last_faults());
  Refill();
}

/// The application reads an answer's last carriage return before the line feed behind it has left a paced line.
void Server::EndAnswerThatIsOut() {
  const bool over = exchange_ && step_ && step_->kind == Step::Kind::kEnd;
  if (over && out_.size() - sent_ <= 1) ActOnStep();
}

void Server::TakeEscape() {
  line_.clear();
  EndAnswerThatIsOut();
  if (exchange_ && !exchange_->stubborn()) {
    log_.Write("< escape, stopped");
    Interrupt(ErrorLine(kCancelled), false);
  } else {
    log_.Write("< escape");
  }
}

/// Puts a line into the output at the next end of a line; what was to follow is sent behind it or given up.
void Server::Interrupt(std::string_view line, bool keep_rest) {
  std::size_t at = sent_;
  std::string text(line);
  if (!at_line_start_) {
    const std::size_t end = out_.find('\n', sent_);
    if (end == out_.npos || end - sent_ > kLongestLine) {
      text = "\r\n" + text;
    } else {
      at = end + 1;
    }
  }
  if (!keep_rest) {
    out_.resize(at);
    exchange_.reset();
    step_.reset();
    resume_at_ = {};
  }
  out_.insert(at, text);
}

void Server::Refill() {
  while (exchange_ && sent_ == out_.size()) {
    // An answer that is out is over at once: the application may already be sending its next command.
    const bool over = step_ && step_->kind == Step::Kind::kEnd;
    if (!over && Clock::now() < resume_at_) {
      return;
    }
    if (step_) {
      ActOnStep();
      continue;
    }
    out_.clear();
    sent_ = 0;
    const Step step = exchange_->Produce(out_);
    if (step.kind != Step::Kind::kMore) step_ = step;
  }
}

void Server::ActOnStep() {
  // Hanging up loses what the application has not read; bytes just sent take a moment to show as unread.
  if (step_->kind == Step::Kind::kHangUp && (!pty_.Drained() || Clock::now() - last_sent_ < kSettling)) {
    resume_at_ = Clock::now() + 2ms;
    return;
  }
  const Step step = *std::exchange(step_, std::nullopt);
  if (step.kind == Step::Kind::kPause) {
    resume_at_ = Clock::now() + std::chrono::milliseconds(step.amount);
  } else if (step.kind == Step::Kind::kHangUp) {
    HangUp(step.amount);
  } else {
    log_.Write(exchange_->complete() ? "> sent to the end" : "> sent");
    station_.Finish(*exchange_);
    exchange_.reset();
    changed_ = true;
  }
}

void Server::HangUp(std::int64_t back_after) {
  log_.Write("hung up");
  pty_.Close();
  exchange_.reset();
  out_.clear();
  line_.clear();
  sent_ = 0;
  at_line_start_ = true;
  if (back_after >= 0) reopen_at_ = Clock::now() + std::chrono::milliseconds(back_after);
}

std::string Server::ReopenWhenDue() {
  if (!reopen_at_ || Clock::now() < *reopen_at_) {
    return {};
  }
  reopen_at_.reset();
  std::string problem = pty_.Open();
  log_.Write(problem.empty() ? "back on " + pty_.name() : problem);
  return problem;
}

bool Server::MaySend() const {
  const auto now = Clock::now();
  return pty_.fd() >= 0 && sent_ < out_.size() && now >= resume_at_ && now >= pace_from_;
}

/// How many bytes may go out now.
std::size_t Server::Allowance() {
  std::size_t bytes = out_.size() - sent_;
  const std::int64_t piece = exchange_ ? exchange_->piece_size() : 0;
  if (piece != 0 && !pty_.Drained()) {
    const bool reading = Clock::now() - last_sent_ < 20ms;
    resume_at_ = Clock::now() + (reading ? 100us : 5000us);
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
  const std::size_t written = allowed > 0 ? pty_.Write(std::string_view(out_).substr(sent_, allowed)) : 0;
  if (written == 0) {
    return;
  }
  sent_ += written;
  at_line_start_ = out_[sent_ - 1] == '\n';
  last_sent_ = Clock::now();
  if (exchange_ && exchange_->piece_size() != 0) resume_at_ = last_sent_ + 100us;
  if (settings_.baud > 0) {
    const auto bits = static_cast<std::int64_t>(written) * kBitsPerByte;
    pace_from_ =
        std::max(pace_from_, last_sent_ - 20ms) + std::chrono::nanoseconds(bits * 1'000'000'000 / settings_.baud);
  }
}

Server::Clock::time_point Server::NextWake() const {
  auto wake = Clock::time_point::max();
  if (exchange_ || sent_ < out_.size()) {
    const auto ready = std::max(resume_at_, pace_from_);
    if (ready > Clock::now() || sent_ == out_.size()) wake = ready;
  }
  if (reopen_at_) wake = std::min(wake, *reopen_at_);
  if (settings_.idle_exit > 0) wake = std::min(wake, last_input_ + std::chrono::seconds(settings_.idle_exit));
  return wake;
}

/// Waits for input, room for output, a signal or the next due time; returns the line's events.
short Server::Wait(int signals) {
  pollfd files[] = {{pty_.fd(), static_cast<short>(MaySend() ? POLLIN | POLLOUT : POLLIN), 0}, {signals, POLLIN, 0}};
  const auto wake = NextWake();
  timespec limit{};
  if (const auto now = Clock::now(); wake > now) {
    const auto left = std::chrono::nanoseconds(wake - now).count();
    limit.tv_sec = left / 1'000'000'000;
    limit.tv_nsec = left % 1'000'000'000;
  }
  const int ready = ppoll(files, 2, wake == Clock::time_point::max() ? nullptr : &limit, nullptr);
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

void Server::SaveState() {
  if (!std::exchange(changed_, false) || settings_.state_path.empty()) {
    return;
  }
  if (const std::string problem = station_.Save(settings_.state_path); !problem.empty()) {
    std::cerr << "corvane-basestation: " << problem << std::endl;
  }
}

}  // namespace corvane::basestation
