#include "rounds/page_sender.h"

#include <algorithm>

#include "base/paths.h"
#include "base/text.h"
#include "history/network_settings.h"

namespace corvane {

bool PageSender::ServerIsAway() const {
  if (p_.ftp.IsConnected()) return false;
  const auto& all = p_.results.All();
  return std::any_of(all.begin(), all.end(), [](const TransferResult& result) {
    return result.target == Target::Server && !result.problem.empty();
  });
}

void PageSender::Send(const std::string& as_File) {
  const bool wanted = ReadNetworkSettings(p_.form).page_send && !p_.form.Chk_ManualFTP.ticked();
  if (!wanted || Cancelled(p_.link, p_.flags) || ServerIsAway()) return;
  const std::string shown = p_.form.Lbl_Status.text();
  const Messages::Silence silence(p_.messages);
  if (p_.browser.SetUp() && p_.ftp.PutFile(as_File, FileNameOf(as_File))) return p_.form.Lbl_Status.SetText(shown);
  if (Cancelled(p_.link, p_.flags)) return;
  const std::string why = p_.ftp.LastErrorText();
  p_.trace.Status("The page was not sent: " + why.substr(0, why.find(kLineBreak)), StatusKind::Error);
}

}  // namespace corvane
