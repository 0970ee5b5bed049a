#include "setup/setup_server.h"

#include <cstdint>
#include <string>
#include <string_view>

#include "base/text.h"

namespace corvane {
namespace {

/// What an error's first line says; the others tell handles and names that the person has entered.
std::string FirstLine(std::string_view as_Error) {
  constexpr std::string_view kBegin = "FTP:";
  if (as_Error.starts_with(kBegin)) as_Error.remove_prefix(kBegin.size());
  for (std::string_view line : Split(as_Error, '\n')) {
    line = Trim(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
    while (line.ends_with('.')) line = Trim(line.substr(0, line.size() - 1));
    if (!line.empty()) return std::string(line);
  }
  return "it does not say why";
}

}  // namespace

SetupAnswer SetupServer::Try(const SetupPlan& av_Plan) {
  const Messages::Silence silence(p_.messages);
  // What a session needs besides, labels and traces; that fields of the present settings are empty is no matter here.
  (void)p_.browser.SetUp();
  Enter(av_Plan);
  const SetupAnswer answer = Visit(av_Plan);
  p_.ftp.Disconnect();
  (void)p_.browser.SetUp();
  return answer;
}

void SetupServer::Enter(const SetupPlan& av_Plan) {
  p_.ftp.SetServer(Trim(av_Plan.server));
  p_.ftp.SetInitialFolder(Trim(av_Plan.server_folder));
  p_.ftp.SetUserName(Trim(av_Plan.user));
  p_.ftp.SetPassword(av_Plan.password);
  p_.ftp.SetAnonymous(av_Plan.anonymous);
  p_.ftp.SetSecurity(av_Plan.encrypted,
                     av_Plan.certificate.empty() ? av_Plan.certificate : p_.app.AppPath(av_Plan.certificate));
}

SetupAnswer SetupServer::Visit(const SetupPlan& av_Plan) {
  const auto failed = [this] {
    if (Cancelled(p_.link, p_.flags)) return SetupAnswer{false, "The server was not tried to the end: cancelled."};
    return SetupAnswer{false, "The server cannot be used: " + FirstLine(p_.ftp.LastErrorText()) +
                                  ". Check its name, the user, the password, the encryption and the folder."};
  };
  if (!p_.ftp.Initialise()) return failed();
  if (!p_.ftp.ConnectIfNotConnected() || !p_.ftp.SetRemoteDirectory() || !p_.ftp.GetDirectoryList("")) return failed();
  const std::string folder = p_.ftp.CurrentRemoteDirectory();
  const auto count = [](std::int64_t number, const std::string& what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
  };
  return {true, "The server " + std::string(Trim(av_Plan.server)) + " lets us in; the folder " +
                    (folder.empty() ? "of the login" : folder) + " holds " +
                    count(p_.ftp.Listing().FileCount(), "file") + " and " +
                    count(p_.ftp.Listing().FolderCount(), "folder") + "."};
}

}  // namespace corvane
