#include "link/port_link.h"

#include <algorithm>
#include <array>

#include "base/scoped_value.h"
#include "base/status.h"
#include "base/text.h"
#include "ui/mouse_pointer.h"

namespace corvane {
namespace {

constexpr char kLineEnd = '\r';

/// The text of one event code: an event of the line, or an error.
struct EventText {
  int code;
  bool error;
  std::string_view text;
};
constexpr std::array<EventText, 13> kEventTexts = {{
    {1, false, "SThreshold reached"},
    {kPortCtsChanged, false, "Change in CTS"},
    {kPortDsrChanged, false, "Change in DSR"},
    {kPortCdChanged, false, "Change in CD"},
    {kPortRingChanged, false, "Change in Ring"},
    {kPortEndOfInput, true, "EOF in input"},
    {kPortBreak, true, "Break received"},
    {kPortFraming, true, "Framing error"},
    {kPortOverrun, true, "Overrun - data lost"},
    {kPortBufferOverflow, true, "Receive buffer overflow"},
    {kPortParity, true, "Parity Error"},
    {kPortTransmitFull, true, "Transmit buffer full"},
    {kPortUnexpected, true, "Unexpected error retrieving DCB"},
}};

const EventText* TextOf(int al_Code) {
  const auto* found = std::find_if(kEventTexts.begin(), kEventTexts.end(),
                                   [al_Code](const EventText& row) { return row.code == al_Code; });
  return found == kEventTexts.end() ? nullptr : found;
}

std::string CheckedDevice(int al_Number, const std::string& as_Device) {
  const std::string port = "COM" + std::to_string(al_Number);
  if (al_Number == 0) throw RunTimeError("No port is chosen. Choose one in the list of ports");
  if (as_Device.empty()) {
    throw RunTimeError(port + " stands for no device. Enter \"" + port +
                       "=/dev/...\" in the section [Ports] of the settings file, or choose another port");
  }
  if (as_Device.front() != '/') {
    throw RunTimeError(port + " stands for \"" + as_Device + "\", which is no device: its name must begin with \"/\"");
  }
  return as_Device;
}

}  // namespace

bool PortLink::OpenPort(std::int16_t ai_Index) {
  last_index_ = ai_Index;
  if (ai_Index < 0 || ai_Index > p_.form.Cmb_Port.last()) return true;
  const BusyPointer busy(p_.form.Frm_Main);
  std::string step;
  try {
    OpenSteps(ai_Index, step);
    p_.link.PortFailed = false;
    return true;
  } catch (const RunTimeError& error) {
    p_.link.PortFailed = true;
    p_.trace.AErrorReport("OpenPort: " + step + " [" + error.what() + "]");
    TellProblem(std::string("The port did not open: ") + error.what());
    return false;
  }
}

void PortLink::TellProblem(const std::string& as_Problem) {
  p_.form.Lbl_PortProblem.SetText(as_Problem);
  p_.trace.Status(as_Problem, StatusKind::Error);
}

void PortLink::OpenSteps(std::int16_t ai_Index, std::string& as_Step) {
  as_Step = "If .PortOpen";
  if (p_.port.IsOpen()) {
    as_Step = ".PortOpen = False";
    p_.port.Close();
  }
  as_Step = ".CommPort = Get_Value(Cmb_Port(ai_Index))";
  const int number = p_.form.Cmb_Port[ai_Index].SelectedItemData();
  const std::string device = CheckedDevice(number, p_.devices.DeviceOf(number));
  Require(p_.port.SetDevice(device));
  opened_ = "COM" + std::to_string(number) + " (" + device + ")";
  as_Step = ".Settings = " + p_.form.Txt_Settings.text();
  Require(p_.port.SetSettings(p_.form.Txt_Settings.text()));
  as_Step = ".Handshaking - none";
  Require(p_.port.SetNoHandshaking());
  as_Step = ".PortOpen = True";
  Require(p_.port.Open());
  p_.trace.TraceDecision("OpenPort: COM" + std::to_string(number) + " is " + device);
  as_Step = "clear buffers";
  EmptyBuffers();
}

Status PortLink::Reopen() {
  Status opened = p_.port.Open();
  if (opened.ok()) EmptyBuffers();
  return opened;
}

void PortLink::ReportGone(const std::string& as_Cause) {
  p_.link.PortFailed = true;
  const std::string report = "The port has gone: " + opened_ + ": " + as_Cause;
  p_.trace.AErrorReport(report);
  TellProblem(report);
}

void PortLink::EmptyBuffers() {
  p_.link.ReplyLine.clear();
  p_.link.ReceiveBuffer.clear();
  lines_.clear();
  next_line_ = 0;
  overflowed_ = false;
}

void PortLink::ClosePort() {
  if (p_.port.IsOpen()) p_.port.Close();
}

void PortLink::ClearBeforeCommand(std::string_view as_Where) {
  if (p_.port.IsOpen()) static_cast<void>(p_.port.ReadAll());
  TellStalePart();
  overflowed_ = false;
  p_.link.Timeout = false;
  p_.link.HalvexError = false;
  p_.timer.Stop();
  p_.bars.Download.SetValue(0);
  p_.states.SetIdle(false);
  p_.states.UpdateCommandStates();
  p_.form.lbl_CountDown.SetText("");
  p_.form.Lbl_Tries[0].SetText("");
  p_.form.Lbl_Tries[1].SetVisible(false);
  p_.trace.TraceDecision("ClearBeforeCommand:" + std::string(as_Where));
}

void PortLink::TellStalePart() {
  // The line feed of the last line stays behind every answer.
  const std::string& part = p_.link.ReceiveBuffer;
  const bool stale = std::any_of(part.begin(), part.end(), [](unsigned char c) { return c >= ' '; });
  if (!stale || heard_since_exchange_) return;
  const bool dropped = GoesOn(p_.form, p_.flags);
  p_.trace.TraceDecision("Half a line from before" + std::string(dropped ? ", dropped: " : ": ") +
                         p_.link.ReceiveBuffer);
  if (dropped) p_.link.ReceiveBuffer.clear();
}

void PortLink::BeginDiscarding() {
  discarding_ = true;
  discarded_ = 0;
}

void PortLink::ClearEverything() {
  p_.bars.Unit.SetValue(0);
  ClearBeforeCommand("Everything");
}

void PortLink::OnPortEvent(int al_Code) {
  if (al_Code == kPortDataReceived) TakeReceivedData();
  const EventText* text = TextOf(al_Code);
  if (p_.link.State != kIdle) p_.timer.RestartForEvent();
  if (text == nullptr) return;
  if (text->error) {
    TakeError(al_Code, text->text);
  } else {
    p_.trace.TraceReceiveDetail("CommsError:" + std::string(text->text));
  }
}

void PortLink::TakeReceivedData() {
  if (discarding_) {
    discarded_ += p_.port.ReadAll().size();
    return;
  }
  heard_since_exchange_ = true;
  if (data_received) data_received();
  std::string received = p_.port.ReadAll();
  if (overflowed_) {
    const std::size_t end = received.find(kLineEnd);
    if (end == std::string::npos) return;
    received.erase(0, end + 1);
    overflowed_ = false;
  }
  p_.link.ReceiveBuffer += received;
  ShowReceiveBuffer();
  if (!dispatching_) CutLines();
  if (p_.link.ReceiveBuffer.size() <= kLargestBuffer) return;
  TakeError(kPortBufferOverflow, TextOf(kPortBufferOverflow)->text);
  overflowed_ = true;
}

void PortLink::ShowReceiveBuffer() {
  p_.trace.TraceReceiveDetail(p_.link.ReceiveBuffer);
  if (p_.form.Chk_ShowReply.ticked()) p_.form.Lbl_Reply.SetText(Visible(p_.link.ReceiveBuffer));
}

void PortLink::CutLines() {
  for (;;) {
    // At first those that an error in the handler has left.
    HandLinesOn();
    const std::size_t last = p_.link.ReceiveBuffer.rfind(kLineEnd);
    if (last == std::string::npos) return;
    lines_.assign(p_.link.ReceiveBuffer, 0, last + 1);
    next_line_ = 0;
    p_.link.ReceiveBuffer.erase(0, last + 1);
  }
}

void PortLink::HandLinesOn() {
  const ScopedValue<bool> dispatching(dispatching_, true);
  while (next_line_ < lines_.size()) {
    const std::size_t end = lines_.find(kLineEnd, next_line_);
    std::string_view line = std::string_view(lines_).substr(next_line_, end - next_line_);
    next_line_ = end + 1;
    while (!line.empty() && static_cast<unsigned char>(line.front()) < 32) line.remove_prefix(1);
    p_.link.ReplyLine = line;
    p_.trace.TraceReceive(p_.link.ReplyLine);
    if (line_received) line_received();
  }
}

void PortLink::TakeError(int al_Code, std::string_view as_Error) {
  if (al_Code == kPortOverrun) {
    ++p_.link.OverunCount;
    p_.link.OverunFlag = true;
    p_.trace.AErrorReport(WithBufferSize(as_Error));
  } else if (al_Code == kPortBreak) {
    p_.trace.TraceReceive(as_Error);
  } else {
    FailExchange(as_Error);
  }
}

std::string PortLink::WithBufferSize(std::string_view as_Error) const {
  return std::string(as_Error) +
         " Buffer size:" + std::to_string(p_.link.ReceiveBuffer.size() + lines_.size() - next_line_);
}

void PortLink::FailExchange(std::string_view as_Error) {
  p_.link.Fail(as_Error);
  p_.trace.AErrorReport(WithBufferSize(as_Error));
  static_cast<void>(p_.port.ReadAll());
  EmptyBuffers();
  p_.trace.SwitchOnAllTrace("CommsError: " + std::string(as_Error), 1);
  p_.writer.SendEscape();
}

}  // namespace corvane
