#include "serial/termios_port.h"

#include <array>
#include <cerrno>
#include <system_error>
#include <thread>
#include <utility>

#include <poll.h>

namespace corvane {

namespace {

constexpr std::size_t kLongestInput = 65536;
constexpr std::size_t kLongestOutput = 65536;

struct CounterEvent {
  int LineCounters::*counter;
  PortEvent code;
};
constexpr CounterEvent kCounterEvents[] = {
    {&LineCounters::framing, kPortFraming},  {&LineCounters::parity, kPortParity},
    {&LineCounters::overrun, kPortOverrun},  {&LineCounters::buffer_overrun, kPortBufferOverflow},
    {&LineCounters::breaks, kPortBreak},     {&LineCounters::cts, kPortCtsChanged},
    {&LineCounters::dsr, kPortDsrChanged},   {&LineCounters::cd, kPortCdChanged},
    {&LineCounters::ring, kPortRingChanged},
};

}  // namespace

TermiosPort::TermiosPort(EventLoop& loop, DescriptorWatcher& watcher, DeviceOpener open_device, SerialTimes times)
    : loop_(loop), watcher_(watcher), open_device_(std::move(open_device)), times_(times) {
  counter_timer_ = loop_.MakeTimer([this] {
    QueueCounterChanges();
    DeliverEvents();
  });
  stall_timer_ = loop_.MakeTimer([this] { OnWriteStalled(); });
}

TermiosPort::~TermiosPort() {
  Close();
}

Status TermiosPort::SetDevice(const std::string& path) {
  if (IsOpen()) return {EBUSY, "the port is open: close it before choosing another device"};
  if (path.empty()) return {ENOENT, "no device is set for this port: choose a device or another port"};
  path_ = path;
  return Status::Ok();
}

Status TermiosPort::SetSettings(const std::string& settings) {
  if (IsOpen()) return {EBUSY, "the port is open: close it before changing its settings"};
  const std::optional<LineSettings> parsed = ParseLineSettings(settings);
  if (!parsed) return {EINVAL, "\"" + settings + "\" is no line setting: write it like 9600,N,8,1"};
  settings_ = *parsed;
  return Status::Ok();
}

Status TermiosPort::SetNoHandshaking() {
  if (IsOpen()) return {EBUSY, "the port is open: close it before changing its settings"};
  return Status::Ok();
}

Status TermiosPort::Open() {
  if (IsOpen()) return {EBUSY, path_ + " is open already"};
  if (path_.empty()) return {ENOENT, "no device is set for this port: choose a device or another port"};
  if (Status status = open_device_(path_, settings_, device_); !status.ok()) return status;
  ++session_;
  decoder_.Reset();
  counters_ = device_->Counters();
  if (counters_) counter_timer_->Start(times_.counter_interval);
  WatchInput();
  return Status::Ok();
}

void TermiosPort::Close() {
  if (!IsOpen()) return;
  ++session_;
  ending_ = false;
  events_.clear();
  received_.clear();
  if (device_) {
    Unwatch();
    CloseDevice();
  }
}

bool TermiosPort::IsOpen() const {
  return device_ != nullptr || ending_;
}

std::string TermiosPort::ReadAll() {
  if (device_) {
    LineMarks marks;
    // A device that has gone is reported from the loop.
    static_cast<void>(ReadDevice(marks));
    QueueMarks(marks);
    if (input_paused_) WatchInput();
  }
  return std::exchange(received_, {});
}

Status TermiosPort::Write(std::string_view text) {
  if (ending_) return Status::FromErrno("writing to " + path_, EIO);
  if (!device_) return {EBADF, "the port is closed"};
  if (output_.size() + text.size() > kLongestOutput) return {ENOBUFS, path_ + " does not take its output"};
  output_ += text;
  const int error = WriteQueued();
  return error == 0 ? Status::Ok() : Status::FromErrno("writing to " + path_, error);
}

void TermiosPort::SetEventHandler(std::function<void(int code)> handler) {
  handler_ = std::move(handler);
}

void TermiosPort::WatchInput() {
  input_paused_ = false;
  watcher_.WatchRead(device_->Descriptor(), [this] { OnReadable(); });
}

void TermiosPort::OnReadable() {
  const std::size_t before = received_.size();
  LineMarks marks;
  const bool alive = ReadDevice(marks);
  if (received_.size() > before) events_.push_back(kPortDataReceived);
  QueueMarks(marks);
  QueueCounterChanges();
  if (!alive) {
    LoseDevice();
  } else if (received_.size() >= kLongestInput) {
    input_paused_ = true;
    watcher_.WatchRead(device_->Descriptor(), {});
  }
  DeliverEvents();
}

/// Reads until nothing waits or the buffer is full; false when the device has gone.
bool TermiosPort::ReadDevice(LineMarks& marks) {
  std::array<char, 4096> piece;
  while (received_.size() < kLongestInput) {
    const ssize_t got = device_->Read(piece.data(), piece.size());
    if (got == -EAGAIN) return true;
    if (got <= 0) return false;
    const LineMarks found = decoder_.Decode({piece.data(), static_cast<std::size_t>(got)}, received_);
    marks.breaks += found.breaks;
    marks.damaged += found.damaged;
  }
  return true;
}

/// The marks stand for the counters of a device that has none.
void TermiosPort::QueueMarks(const LineMarks& marks) {
  if (counters_) return;
  if (marks.damaged > 0) events_.push_back(settings_.parity == Parity::None ? kPortFraming : kPortParity);
  if (marks.breaks > 0) events_.push_back(kPortBreak);
}

void TermiosPort::QueueCounterChanges() {
  if (!counters_) return;
  const std::optional<LineCounters> now = device_->Counters();
  if (!now) return;
  for (const CounterEvent& event : kCounterEvents) {
    if ((*now).*event.counter != (*counters_).*event.counter) events_.push_back(event.code);
  }
  counters_ = now;
}

void TermiosPort::DeliverEvents() {
  while (!events_.empty()) {
    const int code = events_.front();
    events_.pop_front();
    const std::function<void(int)> handler = handler_;
    const std::uint64_t session = session_;
    if (handler) handler(code);
    if (code == kPortEndOfInput && session_ == session) Close();
  }
}

/// A descriptor that is kept would be ready for ever and keep the adapter from coming back under its name.
void TermiosPort::LoseDevice() {
  Unwatch();
  device_.reset();
  ending_ = true;
  events_.push_back(kPortEndOfInput);
}

/// Hands the queue to the device as far as it takes it; returns 0 or the errno that ended the output.
int TermiosPort::WriteQueued() {
  while (!output_.empty()) {
    const ssize_t taken = device_->Write(output_);
    if (taken == -EAGAIN || taken == 0) {
      if (!stall_timer_->Running()) {
        stall_timer_->Start(times_.write_stall);
        watcher_.WatchWrite(device_->Descriptor(), [this] { OnWritable(); });
      }
      return 0;
    }
    if (taken < 0) {
      EndOutput();
      return static_cast<int>(-taken);
    }
    output_.erase(0, static_cast<std::size_t>(taken));
    if (stall_timer_->Running()) stall_timer_->Start(times_.write_stall);
  }
  EndOutput();
  return 0;
}

void TermiosPort::OnWritable() {
  // A failure is a device that has gone, which reading reports.
  static_cast<void>(WriteQueued());
}

void TermiosPort::OnWriteStalled() {
  EndOutput();
  device_->DiscardOutput();
  events_.push_back(kPortTransmitFull);
  DeliverEvents();
}

void TermiosPort::EndOutput() {
  output_.clear();
  if (!stall_timer_->Running()) return;
  stall_timer_->Stop();
  watcher_.WatchWrite(device_->Descriptor(), {});
}

void TermiosPort::Unwatch() {
  EndOutput();
  counter_timer_->Stop();
  watcher_.Unwatch(device_->Descriptor());
}

/// Waits a moment for the last bytes; closing a stuck device blocks, so a thread of its own does that.
void TermiosPort::CloseDevice() {
  constexpr int kStep = 5;
  const std::int64_t deadline = loop_.MonotonicMilliseconds() + times_.close_wait;
  while (device_->PendingOutput() > 0 && loop_.MonotonicMilliseconds() < deadline) poll(nullptr, 0, kStep);
  device_->Release();
  if (device_->PendingOutput() == 0) {
    device_.reset();
    return;
  }
  try {
    std::thread([device = std::move(device_)]() mutable { device.reset(); }).detach();
  } catch (const std::system_error&) {
    // No thread to be had: the device was closed right here.
  }
}

}  // namespace corvane
