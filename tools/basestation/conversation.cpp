#include "conversation.h"

#include <utility>

#include "protocol.h"

namespace corvane::basestation {
namespace {

constexpr char kEscape = 27;
constexpr std::size_t kLongestCommand = 4096;
constexpr std::size_t kLongestLine = 1024;

}  // namespace

void Conversation::TakeInput(std::string_view bytes, Moment now) {
  for (const char byte : bytes) {
    if (byte == kEscape) {
      TakeEscape();
    } else if (byte == '\r') {
      TakeLine(now);
    } else if (byte != '\n' && line_.size() < kLongestCommand) {
      line_ += byte;
    }
  }
}

void Conversation::TakeLine(Moment now) {
  const std::string line = std::exchange(line_, {});
  log_.Write("< " + line);
  EndAnswerThatIsOut();
  if (exchange_ && !exchange_->stubborn()) {
    log_.Write("busy");
    Interrupt(ErrorLine(kBusy), true);
    return;
  }
  if (exchange_) Interrupt("", false);
  exchange_.emplace(station_.Answer(line));
  if (!station_.last_faults().empty()) log_.Write("fault: " + station_.last_faults());
  Advance(now);
}

/// The application reads an answer's last carriage return before the line feed behind it has left a paced line.
void Conversation::EndAnswerThatIsOut() {
  const bool over = exchange_ && step_ && step_->kind == Step::Kind::End;
  if (over && out_.size() - sent_ <= 1) EndAnswer();
}

void Conversation::TakeEscape() {
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
void Conversation::Interrupt(std::string_view line, bool keep_rest) {
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

void Conversation::Advance(Moment now) {
  while (exchange_ && !HasOutput()) {
    // An answer that is out is over at once: the application may already be sending its next command.
    if (step_ && step_->kind == Step::Kind::End) {
      EndAnswer();
    } else if (now < resume_at_ || WantsHangUp()) {
      return;
    } else if (step_) {
      resume_at_ = now + std::chrono::milliseconds(std::exchange(step_, std::nullopt)->amount);
    } else {
      out_.clear();
      sent_ = 0;
      const Step step = exchange_->Produce(out_);
      if (step.kind != Step::Kind::More) step_ = step;
    }
  }
}

void Conversation::EndAnswer() {
  log_.Write(exchange_->complete() ? "> sent to the end" : "> sent");
  station_.Finish(*exchange_);
  exchange_.reset();
  step_.reset();
  if (answer_over) answer_over();
}

std::string_view Conversation::Waiting(Moment now) const {
  return now < resume_at_ ? std::string_view() : std::string_view(out_).substr(sent_);
}

void Conversation::NoteSent(std::size_t bytes) {
  sent_ += bytes;
  if (bytes > 0) at_line_start_ = out_[sent_ - 1] == '\n';
}

bool Conversation::WantsHangUp() const {
  return exchange_ && !HasOutput() && step_ && step_->kind == Step::Kind::HangUp;
}

std::int64_t Conversation::HangUp() {
  const std::int64_t back_after = step_ ? step_->amount : -1;
  exchange_.reset();
  step_.reset();
  out_.clear();
  line_.clear();
  sent_ = 0;
  at_line_start_ = true;
  return back_after;
}

}  // namespace corvane::basestation
