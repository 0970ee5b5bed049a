#include "transfer/c_winsock.h"

#include <algorithm>
#include <array>
#include <memory>

#include "base/format.h"
#include "base/text.h"
#include "ui/mouse_pointer.h"

namespace corvane {
namespace {

constexpr double kSendSeconds = 15;
constexpr double kLongestWaitSeconds = 1e6;

}  // namespace

CWinsock::CWinsock(TcpSocket& av_Socket, EventLoop& av_Loop, Window& av_Window, const AppInfo& av_App)
    : socket_(av_Socket), loop_(av_Loop), window_(av_Window), log_path_(av_App.AppPath("winsock.Log")) {
  socket_.SetHandler([this](SocketEvent event, const std::string& text) { OnEvent(event, text); });
}

CWinsock::~CWinsock() {
  socket_.SetHandler({});
}

bool CWinsock::SocketConnect(std::string_view as_Host, std::int32_t al_Port, double ad_Timeout) {
  socket_.Close();
  remote_host_ = as_Host;
  remote_port_ = al_Port;
  socket_.Connect(remote_host_, remote_port_);
  // Intended: an error does not end the wait; only the connected state or the time-out does.
  return WaitUntil([this] { return socket_.State() == SocketState::Connected; }, ad_Timeout);
}

bool CWinsock::SendData(std::string_view as_Text) {
  if (as_Text.empty()) return false;
  send_complete_ = false;
  const BusyPointer busy(window_);
  socket_.Send(as_Text);
  return WaitUntil([this] { return send_complete_; }, kSendSeconds);
}

std::string_view CWinsock::StateText(std::int32_t al_State) {
  static constexpr std::array<std::string_view, 10> kTexts = {"Closed",
                                                              "Open",
                                                              "Listening",
                                                              "Connection pending",
                                                              "Resolving Host",
                                                              "Host resolved",
                                                              "Connecting",
                                                              "Connected",
                                                              "Peer is closing the connection",
                                                              "Error"};
  const auto index = static_cast<std::size_t>(al_State);
  return index < kTexts.size() ? kTexts[index] : std::string_view();
}

void CWinsock::OnEvent(SocketEvent av_Event, const std::string& as_Text) {
  switch (av_Event) {
    case SocketEvent::StateChanged:
      return LogWrite("WStatus:" + std::string(StateText(static_cast<std::int32_t>(socket_.State()))));
    case SocketEvent::SendComplete:
      send_complete_ = true;
      return LogWrite("CWinsock:Send complete");
    case SocketEvent::DataArrived:
      return LogWrite("CWinsock:Data arrived");
    case SocketEvent::Error:
      return LogWrite("CWinsock:Error " + as_Text);
  }
}

bool CWinsock::WaitUntil(const std::function<bool()>& av_Done, double ad_Seconds) {
  if (!(ad_Seconds > 0)) return av_Done();
  bool out_of_time = false;
  const auto limit = loop_.MakeTimer([&out_of_time] { out_of_time = true; });
  limit->Start(static_cast<std::int64_t>(std::min(ad_Seconds, kLongestWaitSeconds) * 1000));
  while (!av_Done() && !out_of_time) loop_.Yield();
  return av_Done();
}

void CWinsock::LogWrite(std::string_view as_Text) {
  if (!logging_) return;
  const std::string line = GeneralDate(loop_.Now()) + ":" + Visible(as_Text) + std::string(kLineBreak);
  const bool open = log_.IsOpen() || log_.OpenForAppending(log_path_).ok();
  logging_ = open && log_.Write(line).ok();
}

}  // namespace corvane
