#include "transfer/remote_browser.h"

#include <vector>

#include "base/format.h"
#include "base/paths.h"
#include "base/status.h"
#include "base/text.h"
#include "ui/mouse_pointer.h"

namespace corvane {
namespace {

constexpr char kTab = '\t';
constexpr std::string_view kParent = "[parent]";
constexpr std::string_view kFolder = "[DIR]";

}  // namespace

bool RemoteBrowser::ConfigureFTP() {
  if (SetUp()) return true;
  ++p_.flags.problems;
  p_.messages.ShowTimedMessage(p_.ftp.LastErrorText(), kOkOnly | kExclamationIcon, kProductName);
  return false;
}

bool RemoteBrowser::SetUp() {
  Form& form = p_.form;
  MyFTP& ftp = p_.ftp;
  ftp.SetTraces(form.Chk_FTPTrace[0].ticked(), form.Chk_FTPTrace[1].ticked(), form.Chk_FTPTrace[2].ticked());
  ftp.SetServer(form.Txt_FTPServer.text());
  ftp.SetInitialFolder(form.Txt_FTPFolder.text());
  ftp.SetUserName(form.Txt_FTPUserName.text());
  ftp.SetPassword(form.Txt_FTPPassword.text());
  ftp.SetAnonymous(form.Chk_Anonymous.ticked());
  const std::string& certificate = form.Txt_FTPCertificate.text();
  ftp.SetSecurity(form.Opt_FTPSecurity.GetOptionIndex() != 0,
                  certificate.empty() ? certificate : p_.app.AppPath(certificate));
  ftp.SetAgentName("Ostrel/Corvane");
  ftp.SetProgressBar(form.Bar_Download);
  ftp.SetStatusLabel(form.Lbl_Status);
  return ftp.Initialise();
}

bool RemoteBrowser::RefreshRemoteList() {
  const BusyPointer busy(p_.form.Frm_Main);
  if (!p_.ftp.GetDirectoryList("")) return false;
  FillList();
  p_.form.Lbl_ftpRemoteFolder.SetText(p_.ftp.CurrentRemoteDirectory());
  return true;
}

void RemoteBrowser::FillList() {
  const RemoteListing& listing = p_.ftp.Listing();
  const auto line = [](std::string_view name, std::string_view kind) {
    return std::string(name) + kTab + std::string(kind);
  };
  std::vector<std::string> texts = {line(listing.FolderName(0), kParent)};
  for (std::int64_t i = 1; i <= listing.FolderCount(); ++i) texts.push_back(line(listing.FolderName(i), kFolder));
  const auto first_file = static_cast<std::int64_t>(texts.size());
  for (std::int64_t i = 1; i <= listing.FileCount(); ++i) {
    texts.push_back(listing.File(i).name + kTab + listing.File(i).size_text + kTab + listing.FileTime(i, kLastWritten) +
                    kTab + listing.FileTime(i, kCreated) + kTab + listing.FileTime(i, kLastAccessed));
  }
  List& list = p_.form.Lst_RemoteFiles;
  list.SetRows(std::move(texts));
  for (std::int64_t i = 1; i <= listing.FileCount(); ++i) list.SetNumber(first_file + i - 1, listing.File(i).size);
}

std::string RemoteBrowser::CurrentName() const {
  const List& list = p_.form.Lst_RemoteFiles;
  return std::string(Split(list.text(list.current()), kTab).front());
}

void RemoteBrowser::SelectRemoteEntry(std::string_view as_Name) {
  List& list = p_.form.Lst_RemoteFiles;
  for (std::int64_t row = 0; row < list.count(); ++row) {
    if (Split(list.text(row), kTab).front() == as_Name) return list.SetCurrent(row);
  }
}

std::function<void()> RemoteBrowser::FtpCommand(std::int16_t ai_Command) {
  switch (ai_Command) {
    case 0:
      return NewFolder();
    case 1:
      return Delete();
    case 2:
      return [this] {
        if (ConfigureFTP()) CountProblem(RefreshRemoteList());
      };
    default:
      return [this] { p_.ftp.Disconnect(); };
  }
}

std::function<void()> RemoteBrowser::NewFolder() {
  const auto answer = p_.dialogs.AskText("Folder name", "Name of the remote folder:", "");
  if (!answer || answer->empty()) return {};
  return [this, name = ToLower(*answer), shown = p_.form.Lbl_ftpRemoteFolder.text()] {
    WorkIn(shown, [&] { return p_.ftp.CreateFolder(name); });
    SelectRemoteEntry(name);
  };
}

void RemoteBrowser::WorkIn(const std::string& as_Shown, const std::function<bool()>& av_Operation) {
  if (!as_Shown.empty()) p_.ftp.SetInitialFolder(as_Shown);
  const bool there = p_.ftp.ConnectIfNotConnected() && !Cancelled(p_.link, p_.flags) && p_.ftp.SetRemoteDirectory();
  const bool well = there && av_Operation();
  const std::string problem = p_.form.Lbl_Status.text();
  CountProblem(well);
  if (there && !Cancelled(p_.link, p_.flags)) RefreshRemoteList();
  // What the listing wiped off.
  if (!well) p_.form.Lbl_Status.SetText(problem);
}

std::function<void()> RemoteBrowser::Delete() {
  const List& list = p_.form.Lst_RemoteFiles;
  if (list.current() < 0) {
    p_.messages.Show("Select a file");
    return {};
  }
  // Taken now: the list may be another one when the question is answered.
  const std::string name = CurrentName();
  // Intended: a file of 0 bytes is taken for a folder, and the server refuses to remove it.
  const bool is_folder = list.number(list.current()) == 0;
  if (!p_.messages.Confirm("Delete: '" + name + "'", {}, kSecondDefault)) return {};
  return [this, name, is_folder, shown = p_.form.Lbl_ftpRemoteFolder.text()] {
    WorkIn(shown, [&] { return is_folder ? p_.ftp.DeleteFolder(name) : p_.ftp.DeleteFile(name); });
  };
}

void RemoteBrowser::OpenRemoteEntry() {
  const List& list = p_.form.Lst_RemoteFiles;
  if (list.current() < 0) return;
  const std::vector<std::string_view> columns = Split(list.text(list.current()), kTab);
  if (columns.size() < 2) return;
  if (columns[1] == kParent) return OpenParent();
  if (columns[1] != kFolder) return;
  const std::string& shown = p_.form.Lbl_ftpRemoteFolder.text();
  GoTo(shown + (shown.ends_with('/') ? "" : "/") + std::string(columns[0]));
}

void RemoteBrowser::OpenParent() {
  const std::string& shown = p_.form.Lbl_ftpRemoteFolder.text();
  const std::size_t slash = shown.rfind('/');
  if (slash == std::string::npos) return p_.trace.Status("No delimiter - already at top");
  // Intended: a folder directly below the root has no way up but the folder field.
  if (slash == 0) return p_.trace.Status("Already at root");
  GoTo(shown.substr(0, slash));
}

void RemoteBrowser::GoTo(std::string_view as_Folder) {
  p_.ftp.SetInitialFolder(as_Folder);
  CountProblem(RefreshRemoteList());
}

void RemoteBrowser::CreateRemoteFolders() {
  if (!ConfigureFTP()) return;
  const BusyPointer busy(p_.form.Frm_Main);
  std::vector<std::string> folders;
  for (const Client& client : p_.registry.Clients) folders.push_back(ToLower(WithSlashes(client.Folder)));
  // The initial folder first: the clients' folders belong nowhere else.
  bool well = p_.ftp.ConnectIfNotConnected() && !Cancelled(p_.link, p_.flags) && p_.ftp.SetRemoteDirectory();
  if (!well) return CountProblem(false);
  for (const std::string& folder : folders) {
    well = p_.ftp.CheckRemoteDirectory(folder) && well;
    if (Cancelled(p_.link, p_.flags)) return CountProblem(false);
    if (!p_.ftp.IsConnected()) break;
  }
  CountProblem(well);
  p_.messages.Show(std::to_string(p_.ftp.CreatedFolders()) + " folder(s) created");
}

void RemoteBrowser::CountProblem(bool ab_Well) {
  if (!ab_Well) ++p_.flags.problems;
}

}  // namespace corvane
