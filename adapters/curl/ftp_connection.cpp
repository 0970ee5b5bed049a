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

FtpConnection::FtpConnection(EventLoop& loop, const FtpLimits& limits, const bool& cancelled, InternetSession& session,
                             FtpLogin login)
    : limits_(limits), session_(session), channel_(loop, limits, cancelled, session, WithPlainHost(std::move(login))) {}

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
  session_.Tell(kResolvingName, channel_.login().host);
  const FtpTask task{.kind = FtpTask::Kind::Login, .commands = {"FEAT"}};
  FtpRun run;
  bool logged_in = RunOnce(task, run);
  if (!logged_in && run.code == CURLE_SSL_CONNECT_ERROR && !run.cancelled && !run.timed_out) {
    channel_.AllowNewestEncryption();
    logged_in = RunOnce(task, run);
  }
  if (!logged_in) return false;
  ReadFeatures();
  current_folder_ = channel_.entry_folder();
  current_is_told_ = !current_folder_.empty();
  return !has_utf8_ || Perform({.commands = {"OPTS UTF8 ON"}});
}

void FtpConnection::ReadFeatures() {
  const FtpExchange& reply = transcript().Of("FEAT");
  if (reply.code / 100 != 2) return;
  for (std::string_view line : Split(reply.text, '\n')) {
    line = Trim(line.substr(0, line.find('\r')));
    has_mlsd_ = has_mlsd_ || StartsWithNoCase(line, "MLST") || StartsWithNoCase(line, "MLSD");
    has_size_ = has_size_ || EqualsNoCase(line, "SIZE");
    has_utf8_ = has_utf8_ || EqualsNoCase(line, "UTF8");
  }
}

bool FtpConnection::LogInAgain() {
  FtpTask task{.kind = FtpTask::Kind::Login, .told = false};
  if (has_utf8_) task.commands = {"OPTS UTF8 ON"};
  FtpRun run;
  lost_ = !RunOnce(task, run);
  return !lost_;
}

bool FtpConnection::RunOnce(const FtpTask& task, FtpRun& run) {
  run = channel_.Run(task);
  if (run.was_login) server_folder_ = channel_.entry_folder();
  if (!transcript().Of("CWD").verb.empty()) server_folder_.clear();
  const FtpFailure failure = FailureOf(run, transcript());
  error_ = failure.error;
  response_ = failure.words.empty() ? transcript().Last().text : failure.words;
  return error_ == kInternetNoError;
}

bool FtpConnection::RunInFolder(const FtpTask& task, FtpRun& run) {
  if (task.kind == FtpTask::Kind::Listing && task.path != server_folder_) {
    if (!RunOnce({.commands = {"CWD " + task.path}}, run) || !Accepted("CWD")) return false;
    server_folder_ = task.path;
  }
  return RunOnce(task, run);
}

bool FtpConnection::Perform(const FtpTask& task, FtpRun& run) {
  if (!channel_.LoggedIn()) return LogInAgain() && RunInFolder(task, run);
  if (RunInFolder(task, run)) return true;
  return MetClosedLogin(run, transcript()) && LogInAgain() && RunInFolder(task, run);
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
  current_is_told_ = !named.empty();
  current_folder_ = server_folder_ = current_is_told_ ? named : target;
  return true;
}

bool FtpConnection::AskFolder() {
  // Nothing has led elsewhere since the server named it, and nobody else can.
  if (current_is_told_ && current_folder_ == server_folder_ && channel_.LoggedIn()) return true;
  FtpTask task{.commands = {"PWD"}};
  if (!current_folder_.empty()) task.commands.insert(task.commands.begin(), "CWD " + current_folder_);
  if (!Perform(task) || !Accepted("PWD")) return false;
  if (!current_folder_.empty() && !Accepted("CWD")) return false;
  current_folder_ = server_folder_ = QuotedFolder(transcript().Of("PWD").text);
  current_is_told_ = !current_folder_.empty();
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
