#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

#include <curl/curl.h>

#include "curl/ftp_limits.h"
#include "curl/ftp_sockets.h"
#include "curl/ftp_task.h"
#include "curl/internet_session.h"
#include "curl/transcript.h"
#include "platform/event_loop.h"
#include "platform/internet_client.h"

namespace corvane {

struct RunUnderWay;

/// One logged-in control connection and the runs over it; the loop runs meanwhile.
///
/// Curl is driven in the loop's thread. It blocks in two places: while it waits for the reply that ends a transfer,
/// which this class therefore waits for first, and in the handshakes of encryption, whose steps run aside.
class FtpChannel {
 public:
  /// A run ends soon after `cancelled` has become true. What happens is told outside of curl, but for the wait for a
  /// last reply. All must outlive the channel.
  FtpChannel(EventLoop& loop, const FtpLimits& limits, const bool& cancelled, InternetSession& session, FtpLogin login);
  /// Never blocks: the control connection is cut, without a good-bye.
  ~FtpChannel();
  FtpChannel(const FtpChannel&) = delete;
  FtpChannel& operator=(const FtpChannel&) = delete;

  /// False when there was no memory for it.
  [[nodiscard]] bool Usable() const { return multi_ != nullptr && easy_ != nullptr; }
  /// Takes any version of TLS from the next login on, for servers without TLS 1.2.
  void AllowNewestEncryption();
  /// True while the login can be used: not closed by the server, not idle for too long.
  [[nodiscard]] bool LoggedIn() const;
  /// Runs `task`; a `Login` makes the control connection anew. **Yields.**
  ///
  /// What a handler or the task's data throws ends the run and the login, and is thrown from here.
  [[nodiscard]] FtpRun Run(const FtpTask& task);
  [[nodiscard]] const FtpLogin& login() const { return login_; }
  /// What went over the control connection in the last run.
  [[nodiscard]] const Transcript& transcript() const { return transcript_; }
  /// The server's folder right after the login, empty when it did not tell.
  [[nodiscard]] const std::string& entry_folder() const { return entry_folder_; }

 private:
  struct FreeMulti {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };
  struct FreeEasy {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
  };

  static int OnDebug(CURL* easy, curl_infotype type, char* bytes, std::size_t length, void* self);
  static std::size_t OnRead(char* buffer, std::size_t size, std::size_t count, void* self);
  static std::size_t OnWrite(char* bytes, std::size_t size, std::size_t count, void* self);
  static curl_socket_t OnOpenSocket(void* self, curlsocktype purpose, curl_sockaddr* address);
  static int OnCloseSocket(void* self, curl_socket_t socket);
  /// The body of a callback: an exception must not cross curl, so it is kept for the end of the run.
  template <class Result, class Body>
  static Result Guarded(void* self, Result failure, Body body) noexcept;

  void SetUp();
  void SetUpEncryption();
  /// Returns what was thrown meanwhile.
  [[nodiscard]] std::exception_ptr CarryOut(RunUnderWay& run);
  void Prepare();
  void PrepareTransfer();
  void Drive();
  [[nodiscard]] FtpRun Finish(RunUnderWay& run);
  [[nodiscard]] CURLcode LetGo(RunUnderWay& run);
  /// Gives the loop a turn when it is due; true when the run has to end.
  [[nodiscard]] bool TurnLoop();
  [[nodiscard]] bool MayBlock() const;
  void PerformAside(int& running);
  int CloseSocket(curl_socket_t socket);
  int CloseData(curl_socket_t socket);
  void WaitForLastReply();
  void ReportConnecting();
  void ReportBytes(bool last);
  [[nodiscard]] bool TooLate();
  /// True when a transfer moves too little to ever end.
  [[nodiscard]] bool Trickles(std::int64_t now);
  [[nodiscard]] std::int64_t MovedBytes() const;
  [[nodiscard]] std::int64_t Information(CURLINFO what) const;
  [[nodiscard]] std::string UrlOf(const std::string& path) const;

  // Never written after the construction.
  EventLoop& loop_;
  const FtpLimits limits_;
  const bool& cancelled_;
  InternetSession& session_;
  const FtpLogin login_;

  // Written by the loop's thread.
  std::string entry_folder_;
  std::int64_t last_used_ = 0;
  std::int64_t last_poll_ = 0;
  RunUnderWay* run_ = nullptr;

  // Written by curl's thread, see `RunUnderWay`, and by the loop's between curl's steps.
  Transcript transcript_;
  curl_socket_t control_ = CURL_SOCKET_BAD;
  FtpSockets sockets_;

  // Last: their ends call back.
  std::unique_ptr<CURLM, FreeMulti> multi_;
  std::unique_ptr<CURL, FreeEasy> easy_;
};

}  // namespace corvane
