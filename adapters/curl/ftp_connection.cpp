#include "curl/ftp_connection.h"

#include <string_view>
#include <utility>
#include <vector>

#include <arpa/inet.h>

#include "base/text.h"
#include "curl/failure_map.h"

namespace corvane {

namespace {

/// A host without the brackets that addresses of IPv6 are often written in.
FtpLogin WithPlainHost(FtpLogin login) {
  std::string& host = login.host;
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
  return login;
}

bool FitsIntoUrl(const FtpLogin& login) {
  constexpr std::string_view kForbidden = " /:#?@[]{}\\^`|\"<>%";
  if (login.port < 1 || login.port > 65535 || login.host.empty()) return false;
  in6_addr address{};
  if (inet_pton(AF_INET6, login.host.c_str(), &address) == 1) return true;
  return login.host.find_first_of(kForbidden) == std::string::npos && !HasControlCharacter(login.host);
}

/// The folder in a reply to PWD: between quotes, a quote in it doubled. Empty when there is none.
std::string QuotedFolder(std::string_view reply) {
  std::string folder;
  std::size_t place = reply.find('"');
  if (place == std::string_view::npos) return folder;
  for (++place; place < reply.size(); ++place) {
    // A folder that would smuggle in a command is none.
    if (reply[place] == '"' && (++place == reply.size() || reply[place] != '"')) {
      return HasControlCharacter(folder) ? "" : folder;
    }
    folder += reply[place];
  }
  return "";
}

}  // namespace

FtpConnection::FtpConnection(EventLoop& loop, const FtpLimits& limits, const FtpLogin& login, const bool& cancelled,
                             FtpChannel::Report report)
    : limits_(limits),
      report_(std::move(report)),
      channel_(loop, limits, WithPlainHost(login), cancelled, [this](auto code, const auto& text, auto bytes) {
        // A login made again is nobody's business.
        if (code > kConnectedToServer || !known_) report_(code, text, bytes);
      }) {}

bool FtpConnection::Fail(int error, const std::string& words) {
  error_ = error;
  if (!words.empty()) response_ = words;
  return false;
}

bool FtpConnection::CheckName(const std::string& name) {
  if (name.empty()) return Refuse("A name for the server is missing.");
  if (!HasControlCharacter(name)) return true;
  return Refuse("A name for the server must not hold control characters such as line breaks.");
}

bool FtpConnection::CheckLogin() {
  const FtpLogin& login = channel_.login();
  if (!channel_.Usable()) return Refuse("There is not enough memory for a connection.");
  if (!FitsIntoUrl(login)) return Fail(kInternetInvalidUrl);
  if (!HasControlCharacter(login.user) && !HasControlCharacter(login.password)) return true;
  return Refuse("The user name and the password must not hold control characters such as line breaks.");
}

bool FtpConnection::LogIn() {
  if (!CheckLogin()) return false;
  report_(kResolvingName, channel_.login().host, 0);
  const FtpTask task{.kind = FtpTask::Kind::Login, .commands = {"FEAT"}};
  FtpRun run;
  bool logged_in = RunOnce(task, run);
  if (!logged_in && run.code == CURLE_SSL_CONNECT_ERROR && !run.cancelled && !run.timed_out) {
    channel_.AllowNewestEncryption();
    logged_in = RunOnce(task, run);
  }
  if (!logged_in) return false;
  known_ = true;
  ReadFeatures();
  current_folder_ = channel_.entry_folder();
  return !has_utf8_ || Perform({.commands = {"OPTS UTF8 ON"}});
}

void FtpConnection::ReadFeatures() {
  const FtpExchange& reply = transcript().Of("FEAT");
  if (reply.code / 100 != 2) return;
  for (std::string_view line : Split(reply.text, '\n')) {
    line = Trim(line.substr(0, line.find('\r')));
    has_mlsd_ = has_mlsd_ || StartsWithNoCase(line, "MLST") || StartsWithNoCase(line, "MLSD");
    has_utf8_ = has_utf8_ || EqualsNoCase(line, "UTF8");
  }
}

bool FtpConnection::LogInAgain() {
  FtpTask task{.kind = FtpTask::Kind::Login};
  if (has_utf8_) task.commands = {"OPTS UTF8 ON"};
  FtpRun run;
  lost_ = !RunOnce(task, run);
  return !lost_;
}

bool FtpConnection::RunOnce(const FtpTask& task, FtpRun& run) {
  current_is_fresh_ = false;
  run = channel_.Run(task);
  const FtpFailure failure = FailureOf(run, transcript());
  error_ = failure.error;
  response_ = failure.words.empty() ? transcript().Last().text : failure.words;
  return error_ == kInternetNoError;
}

bool FtpConnection::Perform(const FtpTask& task, FtpRun& run) {
  if (!channel_.LoggedIn()) return LogInAgain() && RunOnce(task, run);
  if (RunOnce(task, run)) return true;
  return MetClosedLogin(run, transcript()) && LogInAgain() && RunOnce(task, run);
}

bool FtpConnection::Perform(const FtpTask& task) {
  FtpRun run;
  return Perform(task, run);
}

bool FtpConnection::Accepted(const std::string& verb) {
  const FtpExchange& exchange = transcript().Of(verb);
  if (exchange.code / 100 == 2) return true;
  return Refuse(exchange.text);
}

std::string FtpConnection::Below(const std::string& folder, const std::string& name) {
  if (name.empty()) return folder;
  if (folder.empty() || name.front() == '/') return name;
  return folder.back() == '/' ? folder + name : folder + "/" + name;
}

bool FtpConnection::EnterFolder(const std::string& folder) {
  if (!folder.empty() && !CheckName(folder)) return false;
  const std::string target = Below(channel_.entry_folder(), folder);
  if (!Perform({.commands = {"CWD " + target, "PWD"}}) || !Accepted("CWD")) return false;
  const std::string named = QuotedFolder(transcript().Of("PWD").text);
  current_is_fresh_ = !named.empty();
  current_folder_ = current_is_fresh_ ? named : target;
  return true;
}

bool FtpConnection::AskFolder() {
  // The reply to PWD that followed the last CWD is still true: nothing else went out since.
  if (current_is_fresh_) return true;
  FtpTask task{.commands = {"PWD"}};
  if (!current_folder_.empty()) task.commands.insert(task.commands.begin(), "CWD " + current_folder_);
  if (!Perform(task) || !Accepted("PWD")) return false;
  if (!current_folder_.empty() && !Accepted("CWD")) return false;
  current_folder_ = QuotedFolder(transcript().Of("PWD").text);
  return true;
}

bool FtpConnection::RunCommand(const std::string& verb, const std::string& name) {
  return CheckName(name) && Perform({.commands = {verb + " " + Absolute(name)}}) && Accepted(verb);
}

void FtpConnection::SayGoodbye() {
  if (!channel_.LoggedIn()) return;
  static_cast<void>(channel_.Run({.commands = {"QUIT"}, .milliseconds = limits_.goodbye}));
}

}  // namespace corvane
