#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "conversation.h"
#include "field_year/year_loop.h"
#include "support/scripted_port.h"

namespace corvane::test {

/// The serial adapter with a base station behind it; it outlives the program and goes on sending when that has died.
class RadioLine : public ScriptedPort {
 public:
  RadioLine(YearLoop& loop, basestation::Station& station)
      : ScriptedPort(loop), loop_(loop), conversation_(station, log_) {
    conversation_.answer_over = [this] { on_answer_over(); };
    on_line = [this](const std::string& line) {
      on_command();
      Take(line + "\r");
      lines.clear();
      written.clear();
    };
    on_escape = [this] { Take("\x1b"); };
  }

  Status Open() override {
    loop_.Check();
    last_sign_ = loop_.MonotonicMilliseconds();
    static_cast<void>(ReadAll());
    return ScriptedPort::Open();
  }
  void Close() override {
    if (IsOpen()) NoteSign();
    ScriptedPort::Close();
  }
  void SetUnplugged(bool away) {
    open_result = away ? Status(2, "the device is not there") : Status::Ok();
    if (away) Close();
  }
  void TellOverrun() { Event(kPortOverrun); }

  std::int64_t longest_silence = 0;         ///< milliseconds for which the open port was still
  std::function<void()> on_command;         ///< a command line comes
  std::function<void()> on_answer_over;     ///< all of an answer has been sent
  std::function<void(std::string&)> spoil;  ///< may change what is about to arrive

 private:
  [[nodiscard]] basestation::Conversation::Moment Moment() const {
    return basestation::Conversation::Moment(std::chrono::milliseconds(loop_.MonotonicMilliseconds()));
  }
  void NoteSign() {
    const std::int64_t now = loop_.MonotonicMilliseconds();
    longest_silence = std::max(longest_silence, now - std::exchange(last_sign_, now));
  }
  void Take(const std::string& text) {
    NoteSign();
    conversation_.TakeInput(text, Moment());
    Pump();
  }
  /// Sends the next piece at 9600 baud, a pause or a hang-up when it is due.
  void Pump() {
    if (std::exchange(pumping_, true)) return;
    conversation_.Advance(Moment());
    if (conversation_.WantsHangUp()) {
      SetUnplugged(true);
      loop_.After(std::max<std::int64_t>(conversation_.HangUp(), 1), [this] { SetUnplugged(false); });
    }
    const std::size_t piece = std::min(conversation_.Waiting(Moment()).size(), kPiece);
    const auto pause = std::chrono::duration_cast<std::chrono::milliseconds>(conversation_.resume_at() - Moment());
    pumping_ = piece > 0;
    if (pumping_) return loop_.After(1 + static_cast<std::int64_t>(piece), [this] { Deliver(); });
    // An escape may end a pause before its time.
    if (pause.count() > 0) loop_.After(pause.count(), [this] { Pump(); });
  }
  void Deliver() {
    pumping_ = false;
    std::string bytes(conversation_.Waiting(Moment()).substr(0, kPiece));
    conversation_.NoteSent(bytes.size());
    if (spoil && !bytes.empty()) spoil(bytes);
    if (IsOpen()) NoteSign();
    ReceiveNow(bytes);
    Pump();
  }

  static constexpr std::size_t kPiece = 960;

  YearLoop& loop_;
  basestation::Log log_;
  basestation::Conversation conversation_;
  bool pumping_ = false;
  std::int64_t last_sign_ = 0;
};

}  // namespace corvane::test
