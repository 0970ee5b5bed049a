#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/serial_port.h"
#include "support/fake_loop.h"

namespace corvane::test {

/// A serial port whose other end is a script: each line written (up to its CR) is answered by `on_line`.
///
/// `on_line` may call `Receive` and `Event`, at once or later through the loop.
class ScriptedPort : public SerialPort {
 public:
  explicit ScriptedPort(FakeLoop& loop) : loop_(loop) {}

  Status SetDevice(const std::string& path) override {
    device = path;
    return Status::Ok();
  }
  Status SetSettings(const std::string& text) override {
    settings = text;
    return settings_result;
  }
  Status SetNoHandshaking() override { return Status::Ok(); }
  Status Open() override {
    ++opens;
    if (!open_result.ok()) return open_result;
    if (answering_devices.empty()) return DoOpen();
    for (const std::string& known : answering_devices) {
      if (known == device) return DoOpen();
    }
    return {2, device + " is not there"};
  }
  void Close() override { open_ = false; }
  [[nodiscard]] bool IsOpen() const override { return open_; }
  [[nodiscard]] std::string ReadAll() override { return std::exchange(waiting_, {}); }
  Status Write(std::string_view text) override {
    if (!open_) return {5, "the port is closed"};
    written += text;
    for (const char c : text) TakeCharacter(c);
    return Status::Ok();
  }
  [[nodiscard]] std::vector<SerialDeviceInfo> ListDevices() const override { return devices_there; }
  [[nodiscard]] DeviceState LookAt(const std::string& path) const override {
    for (const SerialDeviceInfo& known : devices_there) {
      if (path != known.path && path != known.device) continue;
      return {known.problem.empty() ? DevicePresence::There : DevicePresence::NoPermission, known.problem};
    }
    return {DevicePresence::NotThere, path + " is not there"};
  }
  void SetEventHandler(std::function<void(int code)> handler) override { handler_ = std::move(handler); }

  /// Delivers `text` with one data event, from the loop after `milliseconds`.
  void Receive(std::string text, std::int64_t milliseconds = 1) {
    loop_.After(milliseconds, [this, text = std::move(text)] { ReceiveNow(text); });
  }
  void ReceiveNow(const std::string& text) {
    if (!open_) return;
    waiting_ += text;
    Event(kPortDataReceived);
  }
  /// Delivers one event at once.
  void Event(int code) {
    if (open_ && handler_) handler_(code);
  }

  std::string device;
  std::string settings;
  std::string written;             ///< everything written so far
  std::vector<std::string> lines;  ///< complete lines written, without CR
  int escapes = 0;
  int opens = 0;
  Status open_result;
  Status settings_result;
  std::vector<SerialDeviceInfo> devices_there;
  std::vector<std::string> answering_devices;  ///< when not empty, only these open
  std::function<void(const std::string& line)> on_line;
  std::function<void()> on_escape;

 private:
  Status DoOpen() {
    open_ = true;
    return Status::Ok();
  }
  void TakeCharacter(char c) {
    if (c == '\x1b') {
      ++escapes;
      partial_.clear();
      if (on_escape) on_escape();
    } else if (c == '\r') {
      lines.push_back(std::exchange(partial_, {}));
      if (on_line) on_line(lines.back());
    } else {
      partial_ += c;
    }
  }

  FakeLoop& loop_;
  std::function<void(int code)> handler_;
  bool open_ = false;
  std::string waiting_;
  std::string partial_;
};

}  // namespace corvane::test
