// A client of a web-data server: one connection, plain text, a log of its own.
//
// The settings hold the server's host and port; no command makes an instance.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/files.h"
#include "form/control.h"
#include "platform/event_loop.h"
#include "platform/tcp_socket.h"
#include "state/app_info.h"

namespace corvane {

class CWinsock {
 public:
  /// Takes over the socket's handler. `av_Window` shows the busy pointer; the log is "winsock.Log" in the application
  /// folder. All must outlive it.
  CWinsock(TcpSocket& av_Socket, EventLoop& av_Loop, Window& av_Window, const AppInfo& av_App);
  ~CWinsock();
  CWinsock(const CWinsock&) = delete;
  CWinsock& operator=(const CWinsock&) = delete;

  /// Connects anew and waits up to `ad_Timeout` seconds (0: not at all); true when it is connected then. **Yields.**
  [[nodiscard]] bool SocketConnect(std::string_view as_Host, std::int32_t al_Port, double ad_Timeout);
  /// Sends a text; true when the send completed within 15 seconds. An empty text is not sent. **Yields.**
  [[nodiscard]] bool SendData(std::string_view as_Text);
  void SocketClose() { socket_.Close(); }
  /// The text of a `SocketState` number, empty for any other number.
  [[nodiscard]] static std::string_view StateText(std::int32_t al_State);

  /// Turns the log on or off; a log that cannot be written turns itself off.
  void SetLogging(bool ab_Logging) { logging_ = ab_Logging; }

 private:
  void OnEvent(SocketEvent av_Event, const std::string& as_Text);
  /// Yields until `av_Done` or `ad_Seconds` have passed; returns whether it is done. **Yields.**
  bool WaitUntil(const std::function<bool()>& av_Done, double ad_Seconds);
  void LogWrite(std::string_view as_Text);

  TcpSocket& socket_;
  EventLoop& loop_;
  Window& window_;
  bool send_complete_ = false;
  bool logging_ = false;
  std::string log_path_;
  OutputFile log_;
  std::string remote_host_;
  std::int32_t remote_port_ = 0;
};

}  // namespace corvane
