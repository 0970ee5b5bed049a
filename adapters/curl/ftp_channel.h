#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <curl/curl.h>

#include "curl/ftp_limits.h"
#include "curl/transcript.h"
#include "platform/event_loop.h"
#include "platform/internet_client.h"

namespace corvane {

/// What one run of the channel does: first the commands, then the transfer if there is one.
struct FtpTask {
  enum class Kind : std::uint8_t { Commands, Login, Upload, Download, Listing };

  Kind kind = Kind::Commands;
  std::string path{};                   ///< of the file, or of the folder to list
  std::vector<std::string> commands{};  ///< one that is refused does not end the run
  std::string list_command{};           ///< instead of LIST
  std::int64_t size = 0;                ///< of an upload
  std::int64_t milliseconds = 0;        ///< the longest the whole run may take; 0: as long as something moves
  /// Called when the run begins: a transfer may be tried again from its start.
  std::function<void()> begin{};
  /// Fills the buffer with the next bytes of an upload; below 0 ends it.
  std::function<std::ptrdiff_t(char*, std::size_t)> read{};
  /// Takes the next bytes of a download or listing; false ends it.
  std::function<bool(std::string_view)> write{};
};

/// How a run ended.
struct FtpRun {
  CURLcode code = CURLE_FAILED_INIT;
  long os_error = 0;
  bool was_login = false;
  bool had_address = false;  ///< the server's name did resolve
  bool cancelled = false;
  bool timed_out = false;
  bool moved = false;                ///< some bytes of a transfer did move
  std::int64_t announced_size = -1;  ///< of a download, when the server told it
  std::string words;                 ///< curl's own, for failures
};

/// One logged-in control connection and the runs over it; the loop runs meanwhile.
///
/// Curl is driven in the loop's thread. It blocks in two places: while it waits for the reply that ends a transfer,
/// which this class therefore waits for first, and in the handshakes of encryption, whose steps run aside.
class FtpChannel {
 public:
  /// Receives what happens during a run; called outside of curl, so that it may do anything but start a run.
  using Report = std::function<void(InternetStatusCode code, const std::string& text, std::int64_t bytes)>;

  /// A run ends soon after `cancelled` has become true, which must outlive the channel.
  FtpChannel(EventLoop& loop, const FtpLimits& limits, FtpLogin login, const bool& cancelled, Report report);
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
  [[nodiscard]] FtpRun Run(const FtpTask& task);
  [[nodiscard]] const FtpLogin& login() const { return login_; }
  /// What went over the control connection in the last run.
  [[nodiscard]] const Transcript& transcript() const { return transcript_; }
  /// The server's folder right after the login, empty when it did not tell.
  [[nodiscard]] const std::string& entry_folder() const { return entry_folder_; }

 private:
  static int OnDebug(CURL* easy, curl_infotype type, char* bytes, std::size_t length, void* self);
  static std::size_t OnRead(char* buffer, std::size_t size, std::size_t count, void* self);
  static std::size_t OnWrite(char* bytes, std::size_t size, std::size_t count, void* self);
  static curl_socket_t OnOpenSocket(void* self, curlsocktype purpose, curl_sockaddr* address);
  static int OnCloseSocket(void* self, curl_socket_t socket);

  void SetUp();
  void SetUpEncryption();
  void Prepare();
  void PrepareTransfer();
  void Drive();
  void Finish(FtpRun& run);
  /// Gives the loop a turn when it is due; true when the run has to end.
  [[nodiscard]] bool TurnLoop();
  void PollLoopWhenDue();
  [[nodiscard]] bool MayBlock() const;
  void PerformAside(int& running);
  int CloseData(curl_socket_t socket);
  void WaitForLastReply();
  void ReportConnecting();
  void ReportBytes(bool last);
  [[nodiscard]] bool TooLate();
  [[nodiscard]] std::int64_t MovedBytes() const;
  [[nodiscard]] std::int64_t Information(CURLINFO what) const;
  [[nodiscard]] std::string UrlOf(const std::string& path, bool is_folder) const;
  void CutConnections();

  EventLoop& loop_;
  const FtpLimits limits_;
  const FtpLogin login_;
  const bool& cancelled_;
  const Report report_;
  CURLM* multi_ = nullptr;
  CURL* easy_ = nullptr;
  curl_slist* commands_ = nullptr;
  char error_[CURL_ERROR_SIZE] = {};
  Transcript transcript_;
  std::string entry_folder_;
  std::atomic<curl_socket_t> control_ = CURL_SOCKET_BAD;
  std::mutex sockets_mutex_;
  std::vector<curl_socket_t> sockets_;  ///< that curl has open
  std::int64_t last_used_ = 0;
  std::int64_t last_poll_ = 0;

  // Of the run that is under way.
  const FtpTask* task_ = nullptr;
  bool ended_early_ = false;  ///< by a cancel or a limit
  std::string address_;       ///< that is being connected to and was not reported
  bool had_address_ = false;
  bool connected_ = false;  ///< was reported
  std::int64_t began_ = 0;
  std::int64_t reported_ = 0;  ///< bytes
  std::int64_t report_due_ = 0;
  std::int64_t received_ = 0;      ///< bytes of a download
  std::int64_t parsed_ = 0;        ///< bytes of replies that curl has read
  std::int64_t taken_before_ = 0;  ///< bytes from the control connection in former runs
  std::int64_t last_sign_ = 0;     ///< when something moved
  std::int64_t sign_ = 0;          ///< what had moved then
  std::atomic<curl_socket_t> data_ = CURL_SOCKET_BAD;
  bool draining_ = false;  ///< curl is done with the data connection, the kernel is not
};

}  // namespace corvane
