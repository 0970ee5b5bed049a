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

PortLink::PortLink(Form& av_Form, LinkState& av_Link, SerialPort& av_Port, const PortDevices& av_Devices,
                   CommandStates& av_States, LinkWriter& av_Writer, ReplyTimer& av_Timer, ProgressBars& av_Bars,
                   Trace& av_Trace)
    : form_(av_Form),
      link_(av_Link),
      port_(av_Port),
      devices_(av_Devices),
      states_(av_States),
      writer_(av_Writer),
      timer_(av_Timer),
      bars_(av_Bars),
      trace_(av_Trace) {}

bool PortLink::OpenPort(std::int16_t ai_Index) {
  last_index_ = ai_Index;
  if (ai_Index < 0 || ai_Index > form_.Cmb_Port.last()) return true;
  const BusyPointer busy(form_.Frm_Main);
  std::string step;
  try {
    OpenSteps(ai_Index, step);
    return true;
  } catch (const RunTimeError& error) {
    trace_.AErrorReport("OpenPort: " + step + " [" + error.what() + "]");
    trace_.Status(std::string("The port did not open: ") + error.what());
    return false;
  }
}

void PortLink::OpenSteps(std::int16_t ai_Index, std::string& as_Step) {
  as_Step = "If .PortOpen";
  if (port_.IsOpen()) {
    as_Step = ".PortOpen = False";
    port_.Close();
  }
  as_Step = ".CommPort = Get_Value(Cmb_Port(ai_Index))";
  const int number = form_.Cmb_Port[ai_Index].SelectedItemData();
  const std::string device = CheckedDevice(number, devices_.DeviceOf(number));
  Require(port_.SetDevice(device));
  as_Step = ".Settings = " + form_.Txt_Settings.text();
  Require(port_.SetSettings(form_.Txt_Settings.text()));
  as_Step = ".Handshaking - none";
  Require(port_.SetNoHandshaking());
  as_Step = ".PortOpen = True";
  Require(port_.Open());
  trace_.TraceDecision("OpenPort: COM" + std::to_string(number) + " is " + device);
  as_Step = "clear buffers";
  EmptyBuffers();
}

void PortLink::EmptyBuffers() {
  link_.ReplyLine.clear();
  link_.ReceiveBuffer.clear();
  lines_.clear();
  next_line_ = 0;
  overflowed_ = false;
}

void PortLink::ClosePort() {
  if (port_.IsOpen()) port_.Close();
}

void PortLink::ClearBeforeCommand(std::string_view as_Where) {
  if (port_.IsOpen()) static_cast<void>(port_.ReadAll());
  overflowed_ = false;
  link_.Timeout = false;
  link_.HalvexError = false;
  timer_.Stop();
  bars_.Download.SetValue(0);
  states_.SetIdle(false);
  states_.UpdateCommandStates();
  form_.lbl_CountDown.SetText("");
  form_.Lbl_Tries[0].SetText("");
  form_.Lbl_Tries[1].SetVisible(false);
  trace_.TraceDecision("ClearBeforeCommand:" + std::string(as_Where));
}

void PortLink::ClearEverything() {
  bars_.Unit.SetValue(0);
  ClearBeforeCommand("Everything");
}

void PortLink::OnPortEvent(int al_Code) {
  if (al_Code == kPortDataReceived) TakeReceivedData();
  const EventText* text = TextOf(al_Code);
  if (link_.State != kIdle) timer_.RestartForEvent();
  if (text == nullptr) return;
  if (text->error) {
    TakeError(al_Code, text->text);
  } else {
    trace_.TraceReceiveDetail("CommsError:" + std::string(text->text));
  }
}

void PortLink::TakeReceivedData() {
  if (data_received) data_received();
  std::string received = port_.ReadAll();
  if (overflowed_) {
    const std::size_t end = received.find(kLineEnd);
    if (end == std::string::npos) return;
    received.erase(0, end + 1);
    overflowed_ = false;
  }
  link_.ReceiveBuffer += received;
  ShowReceiveBuffer();
  if (!dispatching_) CutLines();
  if (link_.ReceiveBuffer.size() <= kLargestBuffer) return;
  TakeError(kPortBufferOverflow, TextOf(kPortBufferOverflow)->text);
  overflowed_ = true;
}

void PortLink::ShowReceiveBuffer() {
  trace_.TraceReceiveDetail(link_.ReceiveBuffer);
  if (form_.Chk_ShowReply.ticked()) form_.Lbl_Reply.SetText(Visible(link_.ReceiveBuffer));
}

void PortLink::CutLines() {
  for (;;) {
    // At first those that an error in the handler has left.
    HandLinesOn();
    const std::size_t last = link_.ReceiveBuffer.rfind(kLineEnd);
    if (last == std::string::npos) return;
    lines_.assign(link_.ReceiveBuffer, 0, last + 1);
    next_line_ = 0;
    link_.ReceiveBuffer.erase(0, last + 1);
  }
}

void PortLink::HandLinesOn() {
  const ScopedValue<bool> dispatching(dispatching_, true);
  while (next_line_ < lines_.size()) {
    const std::size_t end = lines_.find(kLineEnd, next_line_);
    std::string_view line = std::string_view(lines_).substr(next_line_, end - next_line_);
    next_line_ = end + 1;
    while (!line.empty() && static_cast<unsigned char>(line.front()) < 32) line.remove_prefix(1);
    link_.ReplyLine = line;
    trace_.TraceReceive(link_.ReplyLine);
    if (line_received) line_received();
  }
}

void PortLink::TakeError(int al_Code, std::string_view as_Error) {
  if (al_Code == kPortOverrun) {
    ++link_.OverunCount;
    link_.OverunFlag = true;
    trace_.AErrorReport(WithBufferSize(as_Error));
  } else if (al_Code == kPortBreak) {
    trace_.TraceReceive(as_Error);
  } else {
    FailExchange(as_Error);
  }
}

std::string PortLink::WithBufferSize(std::string_view as_Error) const {
  return std::string(as_Error) +
         " Buffer size:" + std::to_string(link_.ReceiveBuffer.size() + lines_.size() - next_line_);
}

void PortLink::FailExchange(std::string_view as_Error) {
  link_.HalvexError = true;
  link_.ResultCode = kCommsErrorResult;
  link_.ResultText[kCommsErrorResult] = as_Error;
  trace_.AErrorReport(WithBufferSize(as_Error));
  static_cast<void>(port_.ReadAll());
  EmptyBuffers();
  trace_.SwitchOnAllTrace("CommsError: " + std::string(as_Error), 1);
  writer_.SendEscape();
}

}  // namespace corvane
