#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/event_loop.h"
#include "platform/serial_port.h"
#include "posix/descriptor_watcher.h"
#include "serial/parmrk_decoder.h"
#include "serial/port_catalogue.h"
#include "serial/tty_device.h"

namespace corvane {

/// Times of a port in milliseconds.
struct SerialTimes {
  std::int64_t counter_interval = 100;  ///< between two looks at the line counters
  std::int64_t write_stall = 2000;      ///< without progress, until the output counts as stuck
  std::int64_t close_wait = 200;        ///< for pending output, until the closing goes on in the background
};

/// A serial port on a terminal device.
///
/// Data comes before the errors that were found with it. A handler that waits gets further events nested, in the order
/// in which they arose; it must not destroy the port. A device that vanishes is closed at once and reported once as
/// `kPortEndOfInput`; `IsOpen` stays true until that handler has returned.
/// At most 64 kB wait for `ReadAll`; more stays in the device. Output that is stuck is reported as `kPortTransmitFull`
/// and thrown away, so that no old command reaches a unit later.
class TermiosPort : public SerialPort {
 public:
  /// `loop` and `watcher` (one object in most programs) must outlive the port.
  TermiosPort(EventLoop& loop, DescriptorWatcher& watcher, DeviceOpener open_device = OpenTtyDevice,
              SerialTimes times = {});
  ~TermiosPort() override;

  Status SetDevice(const std::string& path) override;
  Status SetSettings(const std::string& settings) override;
  /// Succeeds on a closed port, which never uses handshaking.
  Status SetNoHandshaking() override;
  Status Open() override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override;
  [[nodiscard]] std::string ReadAll() override;
  Status Write(std::string_view text) override;
  [[nodiscard]] std::vector<SerialDeviceInfo> ListDevices() const override { return catalogue_.ListDevices(); }
  [[nodiscard]] DeviceState LookAt(const std::string& path) const override { return catalogue_.LookAt(path); }
  void SetEventHandler(std::function<void(int code)> handler) override;

 private:
  void WatchInput();
  void OnReadable();
  [[nodiscard]] bool ReadDevice(LineMarks& marks);
  void QueueMarks(const LineMarks& marks);
  void QueueCounterChanges();
  void DeliverEvents();
  void LoseDevice();
  [[nodiscard]] int WriteQueued();
  void OnWritable();
  void OnWriteStalled();
  void EndOutput();
  void Unwatch();
  void CloseDevice();

  EventLoop& loop_;
  DescriptorWatcher& watcher_;
  DeviceOpener open_device_;
  SerialTimes times_;
  PortCatalogue catalogue_;
  std::unique_ptr<Timer> counter_timer_;
  std::unique_ptr<Timer> stall_timer_;
  std::function<void(int)> handler_;

  std::string path_;
  LineSettings settings_;
  std::unique_ptr<SerialDevice> device_;
  bool ending_ = false;        ///< the device has gone and its last event is not delivered yet
  std::uint64_t session_ = 0;  ///< counts openings and closings, to see whether a handler did one
  ParmrkDecoder decoder_;
  std::optional<LineCounters> counters_;
  std::deque<int> events_;
  std::string received_;
  bool input_paused_ = false;
  std::string output_;
};

}  // namespace corvane
