#include "curl/ftp_channel.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <future>
#include <system_error>
#include <utility>

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include "curl/socket_state.h"

namespace corvane {

namespace {

/// The longest that the loop is left alone, in milliseconds.
constexpr std::int64_t kTurn = 20;
constexpr std::int64_t kReportEvery = 100;
constexpr long kBufferSize = 128L * 1024;
/// Curl's own limits only stand behind those of this class: they count in seconds and not all of them at the same time.
constexpr long kSecondsBehind = 2;
/// Whether a login is too old to be used is decided here, not by curl.
constexpr long kForEver = 1'000'000;
/// As the lowest version; shifted by 16 bits as the highest.
constexpr long kTls12 = CURL_SSLVERSION_TLSv1_2;

bool IsUnreserved(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
         c == '_' || c == '~' || c == '/';
}

bool Moves(const FtpTask& task) {
  return task.kind != FtpTask::Kind::Commands && task.kind != FtpTask::Kind::Login;
}

std::string AddressText(const curl_sockaddr& address) {
  std::array<char, NI_MAXHOST> text{};
  const bool known =
      getnameinfo(&address.addr, address.addrlen, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0;
  return known ? text.data() : "";
}

}  // namespace

FtpChannel::FtpChannel(EventLoop& loop, const FtpLimits& limits, FtpLogin login, const bool& cancelled, Report report)
    : loop_(loop),
      limits_(limits),
      login_(std::move(login)),
      cancelled_(cancelled),
      report_(std::move(report)),
      multi_(curl_multi_init()),
      easy_(curl_easy_init()) {
  if (Usable()) SetUp();
}

FtpChannel::~FtpChannel() {
  // Curl would say QUIT and wait for the answer.
  CutConnections();
  curl_easy_cleanup(easy_);
  curl_multi_cleanup(multi_);
  curl_slist_free_all(commands_);
}

void FtpChannel::SetUp() {
  curl_multi_setopt(multi_, CURLMOPT_MAXCONNECTS, 1L);
  const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(easy_, option, value); };
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_NOPROGRESS, 1L);
  set(CURLOPT_PROTOCOLS_STR, "ftp");
  set(CURLOPT_PROXY, "");
  set(CURLOPT_USERNAME, login_.user.c_str());
  set(CURLOPT_PASSWORD, login_.password.c_str());
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connect));
  set(CURLOPT_SERVER_RESPONSE_TIMEOUT, static_cast<long>(limits_.reply / 1000) + kSecondsBehind);
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_MAXAGE_CONN, kForEver);
  set(CURLOPT_TCP_KEEPALIVE, 1L);
  set(CURLOPT_BUFFERSIZE, kBufferSize);
  set(CURLOPT_UPLOAD_BUFFERSIZE, 2 * kBufferSize);
  set(CURLOPT_ERRORBUFFER, error_);
  set(CURLOPT_VERBOSE, 1L);
  set(CURLOPT_DEBUGFUNCTION, &OnDebug);
  set(CURLOPT_DEBUGDATA, this);
  set(CURLOPT_READFUNCTION, &OnRead);
  set(CURLOPT_READDATA, this);
  set(CURLOPT_WRITEFUNCTION, &OnWrite);
  set(CURLOPT_WRITEDATA, this);
  set(CURLOPT_OPENSOCKETFUNCTION, &OnOpenSocket);
  set(CURLOPT_OPENSOCKETDATA, this);
  set(CURLOPT_CLOSESOCKETFUNCTION, &OnCloseSocket);
  set(CURLOPT_CLOSESOCKETDATA, this);
  if (login_.encrypted) SetUpEncryption();
}

void FtpChannel::SetUpEncryption() {
  const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(easy_, option, value); };
  set(CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
  set(CURLOPT_FTPSSLAUTH, static_cast<long>(CURLFTPAUTH_TLS));
  set(CURLOPT_SSL_VERIFYPEER, 1L);
  set(CURLOPT_SSL_VERIFYHOST, 2L);
  // Many servers want data connections to resume the session of the control connection. With TLS 1.3 each resumption
  // needs a new ticket, which curl does not wait for in uploads, so that every other one would be refused.
  set(CURLOPT_SSL_SESSIONID_CACHE, 1L);
  set(CURLOPT_SSLVERSION, kTls12 | (kTls12 << 16));
  if (login_.certificate.empty()) return;
  set(CURLOPT_CAINFO, login_.certificate.c_str());
  set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
}

void FtpChannel::AllowNewestEncryption() {
  curl_easy_setopt(easy_, CURLOPT_SSLVERSION, kTls12);
}

bool FtpChannel::LoggedIn() const {
  if (control_ == CURL_SOCKET_BAD || loop_.MonotonicMilliseconds() - last_used_ > limits_.idle) return false;
  // A server that says something unasked is closing the connection; curl would take the login for a good one.
  return !WaitReadable(control_, 0);
}

void FtpChannel::CutConnections() {
  const std::lock_guard lock(sockets_mutex_);
  for (const curl_socket_t socket : sockets_) shutdown(socket, SHUT_RDWR);
}

FtpRun FtpChannel::Run(const FtpTask& task) {
  FtpRun run;
  run.was_login = task.kind == FtpTask::Kind::Login;
  if (task.begin) task.begin();
  task_ = &task;
  Prepare();
  curl_multi_add_handle(multi_, easy_);
  Drive();
  task_ = nullptr;
  Finish(run);
  return run;
}

void FtpChannel::Prepare() {
  transcript_.Clear();
  ended_early_ = had_address_ = connected_ = false;
  address_.clear();
  error_[0] = '\0';
  reported_ = received_ = parsed_ = sign_ = 0;
  began_ = last_sign_ = loop_.MonotonicMilliseconds();
  report_due_ = began_ + kReportEvery;
  const bool is_login = task_->kind == FtpTask::Kind::Login;
  if (is_login) CutConnections();
  taken_before_ = TakenBytes(control_);
  curl_slist_free_all(std::exchange(commands_, nullptr));
  for (const std::string& command : task_->commands) commands_ = curl_slist_append(commands_, ("*" + command).c_str());
  curl_easy_setopt(easy_, CURLOPT_QUOTE, commands_);
  curl_easy_setopt(easy_, CURLOPT_FRESH_CONNECT, is_login ? 1L : 0L);
  PrepareTransfer();
}

void FtpChannel::PrepareTransfer() {
  const bool lists = task_->kind == FtpTask::Kind::Listing;
  const bool uploads = task_->kind == FtpTask::Kind::Upload;
  const bool moves = Moves(*task_);
  curl_easy_setopt(easy_, CURLOPT_URL, UrlOf(moves ? task_->path : "/", !moves || lists).c_str());
  // A folder is listed from within: servers read blanks and wildcards in an argument of LIST in ways of their own.
  curl_easy_setopt(easy_, CURLOPT_FTP_FILEMETHOD,
                   static_cast<long>(lists ? CURLFTPMETHOD_SINGLECWD : CURLFTPMETHOD_NOCWD));
  curl_easy_setopt(easy_, CURLOPT_CUSTOMREQUEST,
                   lists && !task_->list_command.empty() ? task_->list_command.c_str() : nullptr);
  curl_easy_setopt(easy_, CURLOPT_UPLOAD, uploads ? 1L : 0L);
  curl_easy_setopt(easy_, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(uploads ? task_->size : -1));
  curl_easy_setopt(easy_, CURLOPT_NOBODY, moves ? 0L : 1L);
}

std::string FtpChannel::UrlOf(const std::string& path, bool is_folder) const {
  constexpr const char* kDigits = "0123456789ABCDEF";
  const bool is_ipv6 = login_.host.find(':') != std::string::npos;
  std::string url = "ftp://" + (is_ipv6 ? "[" + login_.host + "]" : login_.host) + ":" + std::to_string(login_.port);
  url += '/';
  for (const char c : path) {
    if (IsUnreserved(c)) {
      url += c;
    } else {
      const auto byte = static_cast<unsigned char>(c);
      url += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  // An empty path stands for the folder of the login; "//" is the root.
  if (is_folder && url.back() != '/') url += '/';
  return url;
}

void FtpChannel::Drive() {
  for (int running = 1;;) {
    const std::int64_t replies = transcript_.activity();
    if (MayBlock()) {
      PerformAside(running);
    } else {
      curl_multi_perform(multi_, &running);
    }
    ReportConnecting();
    ReportBytes(running == 0 && !ended_early_);
    if (running == 0 || TurnLoop()) return;
    // Curl connects to the port of a reply in its next step, and names no socket that a wait for it could end with.
    const bool goes_on = transcript_.activity() != replies;
    curl_multi_poll(multi_, nullptr, 0, goes_on ? 0 : static_cast<int>(kTurn), nullptr);
  }
}

bool FtpChannel::TurnLoop() {
  PollLoopWhenDue();
  ended_early_ = ended_early_ || cancelled_ || TooLate();
  return ended_early_;
}

void FtpChannel::PollLoopWhenDue() {
  const std::int64_t now = loop_.MonotonicMilliseconds();
  if (now - last_poll_ < kTurn / 2) return;
  loop_.Poll();
  last_poll_ = loop_.MonotonicMilliseconds();
}

bool FtpChannel::MayBlock() const {
  if (!login_.encrypted) return false;
  const bool uploads = task_->kind == FtpTask::Kind::Upload;
  const std::int64_t moved = uploads ? Information(CURLINFO_SIZE_UPLOAD_T) : received_;
  const std::int64_t size = uploads ? task_->size : Information(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
  const bool in_the_middle = moved > 0 && size - moved > 4 * kBufferSize;
  return !in_the_middle;
}

void FtpChannel::PerformAside(int& running) {
  const auto perform = [this, &running] { curl_multi_perform(multi_, &running); };
  std::future<void> step;
  try {
    step = std::async(std::launch::async, perform);
  } catch (const std::system_error&) {
    return perform();  // no thread is to be had: better late than never
  }
  std::int64_t last_sign = loop_.MonotonicMilliseconds();
  std::int64_t unsent = 0;
  while (step.wait_for(std::chrono::milliseconds(kTurn)) != std::future_status::ready) {
    PollLoopWhenDue();
    const std::int64_t now = loop_.MonotonicMilliseconds();
    if (UnsentBytes(data_) != std::exchange(unsent, UnsentBytes(data_))) last_sign = now;
    const bool is_login = task_->kind == FtpTask::Kind::Login;
    const bool late = is_login ? now - began_ > limits_.connect : now - last_sign > limits_.reply;
    if (!cancelled_ && !late) continue;
    ended_early_ = true;
    CutConnections();
  }
}

void FtpChannel::WaitForLastReply() {
  const auto has_reply = [this] {
    // A reply that came together with the one before it is with curl already, and the socket silent.
    return control_ == CURL_SOCKET_BAD || WaitReadable(control_, 0) || TakenBytes(control_) - taken_before_ > parsed_;
  };
  while (!has_reply()) {
    ReportBytes(false);
    if (TurnLoop()) return CutConnections();
    static_cast<void>(WaitReadable(control_, static_cast<int>(kTurn)));
  }
}

void FtpChannel::ReportConnecting() {
  if (!address_.empty()) report_(kConnectingToServer, std::exchange(address_, ""), 0);
  if (connected_ || task_->kind != FtpTask::Kind::Login || Information(CURLINFO_CONNECT_TIME_T) == 0) return;
  connected_ = true;
  report_(kConnectedToServer, login_.host, 0);
}

void FtpChannel::ReportBytes(bool last) {
  const bool uploads = task_->kind == FtpTask::Kind::Upload;
  if (!uploads && task_->kind != FtpTask::Kind::Download) return;
  if (!last && loop_.MonotonicMilliseconds() < report_due_) return;
  report_due_ = loop_.MonotonicMilliseconds() + kReportEvery;
  const std::int64_t moved = last && uploads ? Information(CURLINFO_SIZE_UPLOAD_T) : MovedBytes();
  if (moved <= reported_) return;
  const std::int64_t since = moved - std::exchange(reported_, moved);
  report_(uploads ? kSendingRequest : kResponseReceived, "", since);
}

std::int64_t FtpChannel::MovedBytes() const {
  if (task_->kind != FtpTask::Kind::Upload) return received_;
  return Information(CURLINFO_SIZE_UPLOAD_T) - UnsentBytes(data_);
}

std::int64_t FtpChannel::Information(CURLINFO what) const {
  curl_off_t value = 0;
  return curl_easy_getinfo(easy_, what, &value) == CURLE_OK ? value : 0;
}

bool FtpChannel::TooLate() {
  const std::int64_t now = loop_.MonotonicMilliseconds();
  if (task_->milliseconds > 0) return now - began_ > task_->milliseconds;
  if (task_->kind == FtpTask::Kind::Login) return now - began_ > limits_.connect;
  const std::int64_t sign = transcript_.activity() + MovedBytes();
  if (sign != std::exchange(sign_, sign)) last_sign_ = now;
  const bool transfers = transcript_.Last().code / 100 == 1;
  return now - last_sign_ > (transfers ? limits_.stalled : limits_.reply);
}

void FtpChannel::Finish(FtpRun& run) {
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
    if (message->msg == CURLMSG_DONE) run.code = message->data.result;
  }
  run.cancelled = ended_early_ && cancelled_;
  run.timed_out = ended_early_ && !cancelled_;
  run.had_address = had_address_;
  curl_easy_getinfo(easy_, CURLINFO_OS_ERRNO, &run.os_error);
  run.announced_size = Information(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
  run.moved = received_ > 0 || Information(CURLINFO_SIZE_UPLOAD_T) > 0;
  run.words = error_[0] != '\0' ? error_ : curl_easy_strerror(run.code);
  const char* folder = nullptr;
  if (curl_easy_getinfo(easy_, CURLINFO_FTP_ENTRY_PATH, &folder) == CURLE_OK && folder != nullptr) {
    entry_folder_ = folder;
  }
  curl_socket_t control = CURL_SOCKET_BAD;
  if (!ended_early_) curl_easy_getinfo(easy_, CURLINFO_ACTIVESOCKET, &control);
  control_ = control;
  curl_multi_remove_handle(multi_, easy_);
  if (std::exchange(draining_, false)) close(data_);
  data_ = CURL_SOCKET_BAD;
  last_used_ = loop_.MonotonicMilliseconds();
}

int FtpChannel::OnDebug(CURL*, curl_infotype type, char* bytes, std::size_t length, void* self) {
  Transcript& transcript = static_cast<FtpChannel*>(self)->transcript_;
  if (type == CURLINFO_HEADER_OUT) transcript.AddCommand({bytes, length});
  if (type != CURLINFO_HEADER_IN) return 0;
  transcript.AddReplyLine({bytes, length});
  static_cast<FtpChannel*>(self)->parsed_ += static_cast<std::int64_t>(length);
  return 0;
}

std::size_t FtpChannel::OnRead(char* buffer, std::size_t size, std::size_t count, void* self) {
  const FtpTask* task = static_cast<FtpChannel*>(self)->task_;
  const std::ptrdiff_t length = task != nullptr && task->read ? task->read(buffer, size * count) : -1;
  return length < 0 ? CURL_READFUNC_ABORT : static_cast<std::size_t>(length);
}

std::size_t FtpChannel::OnWrite(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto* channel = static_cast<FtpChannel*>(self);
  const FtpTask* task = channel->task_;
  if (task == nullptr || !task->write || !task->write({bytes, size * count})) return 0;
  channel->received_ += static_cast<std::int64_t>(size * count);
  return size * count;
}

curl_socket_t FtpChannel::OnOpenSocket(void* self, curlsocktype, curl_sockaddr* address) {
  auto* channel = static_cast<FtpChannel*>(self);
  const curl_socket_t made = socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
  if (made == CURL_SOCKET_BAD || channel->task_ == nullptr) return made;
  const std::lock_guard lock(channel->sockets_mutex_);
  channel->sockets_.push_back(made);
  if (channel->task_->kind == FtpTask::Kind::Login) {
    channel->address_ = AddressText(*address);
    channel->had_address_ = true;
  } else {
    channel->data_ = made;
  }
  return made;
}

int FtpChannel::OnCloseSocket(void* self, curl_socket_t socket) {
  auto* channel = static_cast<FtpChannel*>(self);
  {
    const std::lock_guard lock(channel->sockets_mutex_);
    std::erase(channel->sockets_, socket);
  }
  if (socket == channel->control_) channel->control_ = CURL_SOCKET_BAD;
  const bool is_data = channel->task_ != nullptr && socket == channel->data_;
  return is_data ? channel->CloseData(socket) : close(socket);
}

int FtpChannel::CloseData(curl_socket_t socket) {
  const bool reply_follows = transcript_.Last().code / 100 == 1 && !IsOver(socket);
  // What the kernel still holds of an upload tells whether a slow line is alive.
  draining_ = reply_follows && task_->kind == FtpTask::Kind::Upload && UnsentBytes(socket) > 0;
  int result = 0;
  if (draining_) {
    result = shutdown(socket, SHUT_WR);
  } else {
    data_ = CURL_SOCKET_BAD;
    result = close(socket);
  }
  if (reply_follows && !login_.encrypted) WaitForLastReply();
  return result;
}

}  // namespace corvane
