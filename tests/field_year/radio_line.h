#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "conversation.h"
#include "field_year/year_loop.h"
#include "platform/serial_port.h"

namespace corvane::test {

/// The serial adapter with a base station behind it; it outlives the program and goes on sending when that has died.
class RadioLine : public SerialPort {
 public:
  RadioLine(YearLoop& loop, basestation::Station& station) : loop_(loop), conversation_(station, log_) {
    conversation_.answer_over = [this] { on_answer_over(); };
  }

  Status SetDevice(const std::string& /*path*/) override { return Status::Ok(); }
  Status SetSettings(const std::string& /*settings*/) override { return Status::Ok(); }
  Status SetNoHandshaking() override { return Status::Ok(); }
  Status Open() override {
    loop_.Check();
    ++opens;
    if (unplugged) return {2, "the device is not there"};
    open_ = true;
    last_sign_ = loop_.MonotonicMilliseconds();
    return Status::Ok();
  }
  void Close() override {
    if (std::exchange(open_, false)) NoteSign();
    waiting_.clear();
  }
  [[nodiscard]] bool IsOpen() const override { return open_; }
  [[nodiscard]] std::string ReadAll() override { return std::exchange(waiting_, {}); }
  Status Write(std::string_view text) override {
    if (!open_) return {5, "the port is closed"};
    NoteSign();
    if (on_line && text.find('\r') != text.npos) on_line();
    conversation_.TakeInput(text, Moment());
    Pump();
    return Status::Ok();
  }
  [[nodiscard]] std::vector<SerialDeviceInfo> ListDevices() const override { return {}; }
  [[nodiscard]] DeviceState LookAt(const std::string& path) const override {
    if (unplugged) return {DevicePresence::NotThere, path + " is not there"};
    return {DevicePresence::There, ""};
  }
  void SetEventHandler(std::function<void(int code)> handler) override { handler_ = std::move(handler); }

  void SetUnplugged(bool away) {
    unplugged = away;
    if (away) Close();
  }
  /// Takes the program away that held the port.
  void LoseProgram() {
    open_ = false;
    handler_ = nullptr;
    waiting_.clear();
  }
  void Receive(const std::string& bytes) {
    if (!open_) return;
    NoteSign();
    waiting_ += bytes;
    handler_(kPortDataReceived);
  }
  void TellOverrun() {
    if (open_) handler_(kPortOverrun);
  }

  bool unplugged = false;
  std::int64_t opens = 0;                   ///< how often it was tried
  std::int64_t longest_silence = 0;         ///< milliseconds for which the open port was still
  std::function<void()> on_line;            ///< a command line comes
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
    pumping_ = piece > 0 || pause.count() > 0;
    if (pumping_) loop_.After(piece > 0 ? 1 + static_cast<std::int64_t>(piece) : pause.count(), [this] { Deliver(); });
  }
  void Deliver() {
    pumping_ = false;
    std::string bytes(conversation_.Waiting(Moment()).substr(0, kPiece));
    conversation_.NoteSent(bytes.size());
    if (spoil && !bytes.empty()) spoil(bytes);
    Receive(bytes);
    Pump();
  }

  static constexpr std::size_t kPiece = 960;

  YearLoop& loop_;
  basestation::Log log_;
  basestation::Conversation conversation_;
  std::function<void(int code)> handler_;
  bool open_ = false;
  bool pumping_ = false;
  std::int64_t last_sign_ = 0;
  std::string waiting_;
};

}  // namespace corvane::test
