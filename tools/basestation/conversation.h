#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "exchange.h"
#include "log.h"
#include "station.h"

namespace corvane::basestation {

/// What an application and the station say to each other on one line: cuts the input into command lines, holds the
/// answer under way and obeys escapes.
///
/// It knows neither a device nor a clock: who carries the bytes says what the time is.
class Conversation {
 public:
  /// A moment of the caller's clock, which never goes back.
  using Moment = std::chrono::steady_clock::time_point;

  /// `station` and `log` must outlive the conversation.
  Conversation(Station& station, Log& log) : station_(station), log_(log) {}
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  /// Takes bytes that the application has sent.
  void TakeInput(std::string_view bytes, Moment now);
  /// Produces what comes next, once everything before it is sent and a pause is over.
  void Advance(Moment now);
  /// The bytes that may be sent; empty during a pause.
  [[nodiscard]] std::string_view Waiting(Moment now) const;
  /// Takes note that the first `bytes` of those that waited are gone.
  void NoteSent(std::size_t bytes);
  /// Whether the line is to be hung up as soon as the application has read what was sent.
  [[nodiscard]] bool WantsHangUp() const;
  /// Gives up all that is under way; returns after how many milliseconds the line comes back, -1 for never.
  std::int64_t HangUp();

  /// Whether an answer or a part of one is under way.
  [[nodiscard]] bool active() const { return exchange_ || HasOutput(); }
  /// Whether something is produced and not yet sent, be it during a pause.
  [[nodiscard]] bool HasOutput() const { return sent_ < out_.size(); }
  /// When the pause is over; long past when there is none.
  [[nodiscard]] Moment resume_at() const { return resume_at_; }
  /// Bytes to send at once: 0 any number, -1 a random number each time.
  [[nodiscard]] std::int64_t piece_size() const { return exchange_ ? exchange_->piece_size() : 0; }

  /// Called when an answer is over, whole or not; set by the owner.
  std::function<void()> answer_over;

 private:
  void TakeLine(Moment now);
  void TakeEscape();
  void EndAnswerThatIsOut();
  void Interrupt(std::string_view line, bool keep_rest);
  void EndAnswer();

  Station& station_;
  Log& log_;
  std::string line_;                  ///< the command line as far as it has come in
  std::optional<Exchange> exchange_;  ///< the answer under way
  std::string out_;                   ///< bytes produced and not yet sent
  std::size_t sent_ = 0;              ///< how many of them are gone
  bool at_line_start_ = true;         ///< whether the last byte sent ended a line
  std::optional<Step> step_;          ///< what to do when `out_` is sent
  Moment resume_at_{};                ///< nothing is produced or sent before
};

}  // namespace corvane::basestation
