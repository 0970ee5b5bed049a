#include "app/remote_commands.h"

#include <functional>

namespace corvane {
namespace {

constexpr const char* kAllFiles = "All files(*.*)|*.*";

}  // namespace

void RemoteCommands::RunCommand(std::int16_t ai_Command) {
  p_.operations.BeginCommand();
  const std::function<void()> operation = p_.browser.FtpCommand(ai_Command);
  // An automatic download may have begun while the question was open.
  if (operation && !p_.operations.RunOperation("FTP", operation)) p_.trace.Status("Not done: another operation runs");
}

void RemoteCommands::OpenEntry() {
  p_.operations.RunOperation("FTP", [&] { p_.browser.OpenRemoteEntry(); });
}

void RemoteCommands::CreateFolders() {
  p_.operations.RunOperation("Create remote folders", [&] { p_.browser.CreateRemoteFolders(); });
}

void RemoteCommands::GetCertificate() {
  const auto file =
      p_.dialogs.ChooseFile("Choose the certificate of the FTP server's authority", kAllFiles, p_.names.DataFolder());
  if (file) p_.form.Txt_FTPCertificate.SetText(*file);
}

}  // namespace corvane
