#include "curl/ftp_channel.h"

#include <new>
#include <string_view>
#include <utility>

#include <unistd.h>

#include "base/encoding.h"
#include "base/scoped_value.h"
#include "curl/run_under_way.h"
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

bool IsOfAFile(const FtpTask& task) {
  return task.kind == FtpTask::Kind::Examine || task.kind == FtpTask::Kind::Upload ||
         task.kind == FtpTask::Kind::Download;
}

}  // namespace

FtpChannel::FtpChannel(EventLoop& loop, const FtpLimits& limits, const bool& cancelled, InternetSession& session,
                       FtpLogin login)
    : loop_(loop),
      limits_(limits),
      cancelled_(cancelled),
      session_(session),
      login_(std::move(login)),
      multi_(curl_multi_init()),
      easy_(curl_easy_init()) {
  if (Usable()) SetUp();
}

FtpChannel::~FtpChannel() {
  // Curl would say QUIT and wait for the answer.
  sockets_.Cut();
}

void FtpChannel::SetUp() {
  curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, 1L);
  const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(easy_.get(), option, value); };
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_NOPROGRESS, 1L);
  set(CURLOPT_PROTOCOLS_STR, "ftp");
  set(CURLOPT_PROXY, "");
  set(CURLOPT_USERNAME, login_.user.c_str());
  set(CURLOPT_PASSWORD, login_.password.c_str());
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_NOCWD));
  set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connect));
  set(CURLOPT_SERVER_RESPONSE_TIMEOUT, static_cast<long>(limits_.reply / 1000) + kSecondsBehind);
  set(CURLOPT_QUICK_EXIT, 1L);
  set(CURLOPT_MAXAGE_CONN, kForEver);
  set(CURLOPT_TCP_KEEPALIVE, 1L);
  set(CURLOPT_BUFFERSIZE, kBufferSize);
  set(CURLOPT_UPLOAD_BUFFERSIZE, 2 * kBufferSize);
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
  const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(easy_.get(), option, value); };
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
  curl_easy_setopt(easy_.get(), CURLOPT_SSLVERSION, kTls12);
}

bool FtpChannel::LoggedIn() const {
  if (control_ == CURL_SOCKET_BAD || loop_.MonotonicMilliseconds() - last_used_ > limits_.idle) return false;
  // A server that says something unasked is closing the connection; curl would take the login for a good one.
  return !WaitReadable(control_, 0);
}

FtpRun FtpChannel::Run(const FtpTask& task) {
  if (task.data != nullptr) task.data->Begin();
  if (task.kind == FtpTask::Kind::Login) sockets_.Cut();
  RunUnderWay run{.task = task, .began = loop_.MonotonicMilliseconds(), .taken_before = TakenBytes(control_)};
  const std::exception_ptr problem = CarryOut(run);
  if (problem) {
    run.ended_early = true;
    sockets_.Cut();
  }
  FtpRun result = Finish(run);
  if (problem) std::rethrow_exception(problem);
  return result;
}

std::exception_ptr FtpChannel::CarryOut(RunUnderWay& run) {
  const ScopedValue<RunUnderWay*> under_way(run_, &run);
  try {
    Prepare();
    curl_multi_add_handle(multi_.get(), easy_.get());
    Drive();
  } catch (...) {
    return std::current_exception();
  }
  return run.problem;
}

void FtpChannel::Prepare() {
  const FtpTask& task = run_->task;
  transcript_.Clear();
  run_->report_due = run_->began + kReportEvery;
  for (const std::string& command : task.commands) {
    // The list is the old one, or null when there was no memory for the word.
    curl_slist* longer = curl_slist_append(run_->commands.get(), ("*" + command).c_str());
    if (longer == nullptr) throw std::bad_alloc();
    static_cast<void>(run_->commands.release());
    run_->commands.reset(longer);
  }
  curl_easy_setopt(easy_.get(), CURLOPT_QUOTE, run_->commands.get());
  curl_easy_setopt(easy_.get(), CURLOPT_ERRORBUFFER, run_->error);
  curl_easy_setopt(easy_.get(), CURLOPT_FRESH_CONNECT, task.kind == FtpTask::Kind::Login ? 1L : 0L);
  PrepareTransfer();
}

void FtpChannel::PrepareTransfer() {
  const FtpTask& task = run_->task;
  const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(easy_.get(), option, value); };
  const bool lists = task.kind == FtpTask::Kind::Listing;
  const bool uploads = task.kind == FtpTask::Kind::Upload;
  // A folder is listed from within: servers read blanks and wildcards in an argument of LIST in ways of their own. With
  // no path curl leaves the folder as it is, for it takes every such run for one in the folder of the run before.
  set(CURLOPT_URL, UrlOf(IsOfAFile(task) ? task.path : "").c_str());
  set(CURLOPT_CUSTOMREQUEST, lists && !task.list_command.empty() ? task.list_command.c_str() : nullptr);
  set(CURLOPT_UPLOAD, uploads ? 1L : 0L);
  set(CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(uploads ? task.size : -1));
  set(CURLOPT_IGNORE_CONTENT_LENGTH, task.kind == FtpTask::Kind::Download && task.size >= 0 ? 1L : 0L);
  set(CURLOPT_NOBODY, task.data == nullptr ? 1L : 0L);
}

std::string FtpChannel::UrlOf(const std::string& path) const {
  const bool is_ipv6 = login_.host.find(':') != std::string::npos;
  const std::string host = is_ipv6 ? "[" + login_.host + "]" : login_.host;
  return "ftp://" + host + ":" + std::to_string(login_.port) + "/" + PercentEncoded(path);
}

void FtpChannel::Drive() {
  for (int running = 1;;) {
    const std::int64_t replies = transcript_.activity();
    if (MayBlock()) {
      PerformAside(running);
    } else {
      curl_multi_perform(multi_.get(), &running);
    }
    if (run_->problem) return;
    ReportConnecting();
    ReportBytes(running == 0 && !run_->ended_early);
    if (running == 0 || TurnLoop()) return;
    // Curl connects to the port of a reply in its next step, and names no socket that a wait for it could end with.
    const bool goes_on = transcript_.activity() != replies;
    curl_multi_poll(multi_.get(), nullptr, 0, goes_on ? 0 : static_cast<int>(kTurn), nullptr);
  }
}

bool FtpChannel::TurnLoop() {
  if (loop_.MonotonicMilliseconds() - last_poll_ >= kTurn / 2) {
    loop_.Poll();
    last_poll_ = loop_.MonotonicMilliseconds();
  }
  run_->ended_early = run_->ended_early || cancelled_ || TooLate();
  return run_->ended_early;
}

bool FtpChannel::MayBlock() const {
  if (!login_.encrypted) return false;
  const bool uploads = run_->task.kind == FtpTask::Kind::Upload;
  const std::int64_t moved = uploads ? Information(CURLINFO_SIZE_UPLOAD_T) : run_->received;
  const std::int64_t announced = uploads ? -1 : Information(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
  const std::int64_t size = announced >= 0 ? announced : run_->task.size;
  const bool in_the_middle = moved > 0 && size - moved > 4 * kBufferSize;
  return !in_the_middle;
}

void FtpChannel::PerformAside(int& running) {
  std::int64_t last_sign = loop_.MonotonicMilliseconds();
  std::int64_t unsent = 0;
  const auto watch = [&] {
    const std::int64_t now = loop_.MonotonicMilliseconds();
    const std::int64_t left = UnsentBytes(run_->data);
    if (left != std::exchange(unsent, left)) last_sign = now;
    const bool is_login = run_->task.kind == FtpTask::Kind::Login;
    const bool late = is_login ? now - run_->began > limits_.connect : now - last_sign > limits_.reply;
    if (!cancelled_ && !late) return;
    run_->ended_early = true;
    sockets_.Cut();
  };
  loop_.Aside([this, &running] { curl_multi_perform(multi_.get(), &running); }, watch);
}

void FtpChannel::WaitForLastReply() {
  const auto has_reply = [this] {
    // A reply that came together with the one before it is with curl already, and the socket silent.
    return control_ == CURL_SOCKET_BAD || WaitReadable(control_, 0) ||
           TakenBytes(control_) - run_->taken_before > run_->parsed;
  };
  while (!has_reply()) {
    ReportBytes(false);
    if (TurnLoop()) return sockets_.Cut();
    static_cast<void>(WaitReadable(control_, static_cast<int>(kTurn)));
  }
}

void FtpChannel::ReportConnecting() {
  if (run_->task.kind != FtpTask::Kind::Login || !run_->task.told) return;
  if (!run_->address.empty()) session_.Tell(kConnectingToServer, std::exchange(run_->address, ""));
  if (run_->connected || Information(CURLINFO_CONNECT_TIME_T) == 0) return;
  run_->connected = true;
  session_.Tell(kConnectedToServer, login_.host);
}

void FtpChannel::ReportBytes(bool last) {
  const bool uploads = run_->task.kind == FtpTask::Kind::Upload;
  if (!uploads && run_->task.kind != FtpTask::Kind::Download) return;
  if (!last && loop_.MonotonicMilliseconds() < run_->report_due) return;
  run_->report_due = loop_.MonotonicMilliseconds() + kReportEvery;
  const std::int64_t moved = last && uploads ? Information(CURLINFO_SIZE_UPLOAD_T) : MovedBytes();
  if (moved <= run_->reported) return;
  const std::int64_t since = moved - std::exchange(run_->reported, moved);
  session_.Tell(uploads ? kSendingRequest : kResponseReceived, "", since);
}

std::int64_t FtpChannel::MovedBytes() const {
  if (run_->task.kind != FtpTask::Kind::Upload) return run_->received;
  return Information(CURLINFO_SIZE_UPLOAD_T) - UnsentBytes(run_->data);
}

std::int64_t FtpChannel::Information(CURLINFO what) const {
  curl_off_t value = 0;
  return curl_easy_getinfo(easy_.get(), what, &value) == CURLE_OK ? value : 0;
}

bool FtpChannel::TooLate() {
  const std::int64_t now = loop_.MonotonicMilliseconds();
  if (run_->task.milliseconds > 0) return now - run_->began > run_->task.milliseconds;
  if (run_->task.kind == FtpTask::Kind::Login) return now - run_->began > limits_.connect;
  const std::int64_t sign = transcript_.activity() + MovedBytes();
  if (sign != std::exchange(run_->sign, sign)) run_->last_sign = now;
  const bool transfers = transcript_.Last().code / 100 == 1;
  return now - run_->last_sign > (transfers ? limits_.stalled : limits_.reply) || (transfers && Trickles(now));
}

bool FtpChannel::Trickles(std::int64_t now) {
  const std::int64_t moved = MovedBytes();
  if (run_->stretch_began == 0 || moved - run_->stretch_moved >= limits_.trickle_bytes) {
    run_->stretch_began = now;
    run_->stretch_moved = moved;
  }
  return now - run_->stretch_began > limits_.trickle;
}

FtpRun FtpChannel::Finish(RunUnderWay& run) {
  FtpRun result;
  result.code = LetGo(run);
  result.was_login = run.task.kind == FtpTask::Kind::Login;
  result.cancelled = run.ended_early && cancelled_;
  result.timed_out = run.ended_early && !cancelled_;
  result.had_address = run.had_address;
  curl_easy_getinfo(easy_.get(), CURLINFO_OS_ERRNO, &result.os_error);
  result.announced_size = Information(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T);
  result.moved = run.received > 0 || Information(CURLINFO_SIZE_UPLOAD_T) > 0;
  result.words = run.error[0] != '\0' ? run.error : curl_easy_strerror(result.code);
  const char* folder = nullptr;
  if (curl_easy_getinfo(easy_.get(), CURLINFO_FTP_ENTRY_PATH, &folder) == CURLE_OK && folder != nullptr) {
    entry_folder_ = folder;
  }
  return result;
}

CURLcode FtpChannel::LetGo(RunUnderWay& run) {
  CURLcode code = CURLE_FAILED_INIT;
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &left)) {
    if (message->msg == CURLMSG_DONE) code = message->data.result;
  }
  curl_socket_t control = CURL_SOCKET_BAD;
  if (!run.ended_early) curl_easy_getinfo(easy_.get(), CURLINFO_ACTIVESOCKET, &control);
  control_ = control;
  curl_multi_remove_handle(multi_.get(), easy_.get());
  curl_easy_setopt(easy_.get(), CURLOPT_QUOTE, static_cast<curl_slist*>(nullptr));
  curl_easy_setopt(easy_.get(), CURLOPT_ERRORBUFFER, static_cast<char*>(nullptr));
  if (run.draining) close(run.data);
  last_used_ = loop_.MonotonicMilliseconds();
  return code;
}

}  // namespace corvane
