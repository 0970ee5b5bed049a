#include "setup/setup_server.h"

#include <cstdint>
#include <string>
#include <string_view>

#include "base/text.h"
#include "history/status_texts.h"

namespace corvane {
namespace {

constexpr struct {
  Phrase no_reason{1602, "it does not say why"};
  Phrase cancelled{1603, "The server was not tried to the end: cancelled."};
  Phrase unusable{1604,
                  "The server cannot be used: %1. Check its name, the user, the password, the encryption and the "
                  "folder."};
  Phrase lets_us_in{1605, "The server %1 lets us in; the folder %2 holds %3 and %4."};
  Phrase lets_us_in_there{1606, "The server %1 lets us in; the folder of the login holds %2 and %3."};
  CountPhrase files{{1607, "%1 file"}, {1608, "%1 files"}};
  CountPhrase folders{{1609, "%1 folder"}, {1610, "%1 folders"}};
} kServerSays;

/// What an error's first line says; the others tell handles and names that the person has entered.
std::string FirstLine(std::string_view as_Error, const Phrases& av_Say) {
  constexpr std::string_view kBegin = "FTP:";
  if (as_Error.starts_with(kBegin)) as_Error.remove_prefix(kBegin.size());
  for (std::string_view line : Split(as_Error, '\n')) {
    line = Trim(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
    while (line.ends_with('.')) line = Trim(line.substr(0, line.size() - 1));
    if (!line.empty()) return std::string(line);
  }
  return av_Say.Text(kServerSays.no_reason);
}

}  // namespace

SetupAnswer SetupServer::Try(const SetupPlan& av_Plan, const Phrases& av_Phrases) {
  const Messages::Silence silence(p_.messages);
  // What a session needs besides, labels and traces; that fields of the present settings are empty is no matter here.
  (void)p_.browser.SetUp();
  Enter(av_Plan);
  const SetupAnswer answer = Visit(av_Plan, av_Phrases);
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

SetupAnswer SetupServer::Visit(const SetupPlan& av_Plan, const Phrases& av_Say) {
  const auto failed = [this, &av_Say] {
    if (Cancelled(p_.link, p_.flags)) return SetupAnswer{false, av_Say.Text(kServerSays.cancelled)};
    return SetupAnswer{false, av_Say.Text(kServerSays.unusable, {FirstLine(p_.ftp.LastErrorText(), av_Say)})};
  };
  if (!p_.ftp.Initialise()) return failed();
  if (!p_.ftp.ConnectIfNotConnected() || !p_.ftp.SetRemoteDirectory() || !p_.ftp.GetDirectoryList("")) return failed();
  const std::string folder = p_.ftp.CurrentRemoteDirectory();
  const std::string files = CountText(p_.ftp.Listing().FileCount(), kServerSays.files, av_Say);
  const std::string folders = CountText(p_.ftp.Listing().FolderCount(), kServerSays.folders, av_Say);
  const std::string_view server = Trim(av_Plan.server);
  return {true, folder.empty() ? av_Say.Text(kServerSays.lets_us_in_there, {server, files, folders})
                               : av_Say.Text(kServerSays.lets_us_in, {server, folder, files, folders})};
}

std::vector<Phrase> SetupServerPhrases() {
  return PhrasesIn(kServerSays);
}

}  // namespace corvane
