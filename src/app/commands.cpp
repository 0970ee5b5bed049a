#include "app/commands.h"

#include <exception>

#include "base/status.h"

namespace corvane {
namespace {

constexpr std::int16_t kCreateLocalFolders = 4;
constexpr const char* kAllFiles = "All files(*.*)|*.*";
constexpr const char* kHexFilter = "Hex files(*.hex)|*.hex|All files(*.)|*.*";

}  // namespace

void Commands::StoreEditors() {
  p_.units.StoreRecord();
  p_.relays.StoreRecord();
  p_.clients.StoreRecord();
}

bool Commands::RunOperation(std::string_view as_Name, const std::function<void()>& av_Operation) {
  if (p_.slot.Taken() || p_.flags.closing) return false;
  StoreEditors();
  return p_.slot.Run([&] {
    try {
      av_Operation();
    } catch (const std::exception& error) {
      ++p_.flags.problems;
      p_.trace.ErrorReport(as_Name, error.what());
    }
  });
}

void Commands::RunCommand(std::string_view as_Name, const std::function<void()>& av_Command) {
  StoreEditors();
  if (!p_.slot.Taken()) p_.messages.StartRound();
  try {
    av_Command();
  } catch (const RunTimeError& error) {
    p_.trace.ErrorReport(as_Name, error.what());
  }
}

bool Commands::DownloadAll(bool ab_All, DownloadMode av_Mode, bool ab_Automatic) {
  // Also for what follows when the slot is given back.
  const AutomaticRun automatic(p_.flags, ab_Automatic);
  return RunOperation("Download", [&] { p_.round.DownloadAllUnits(ab_All, av_Mode); });
}

bool Commands::Process(bool ab_All, std::int16_t ai_Command) {
  return RunOperation(CommandOf(ai_Command).name, [&] {
    const std::int64_t selected = p_.units.Selected();
    const bool by_radio = ab_All || !p_.registry.Units.Has(selected);
    p_.sessions.ProcessAllUnits(ab_All, by_radio ? kFromRadio : p_.registry.Units[selected].GetFrom, ai_Command);
  });
}

bool Commands::ConvertAll(bool ab_All) {
  return RunOperation("Convert", [&] {
    p_.conversion.ResetCounters();
    p_.conversion.ConvertAllUnits(ab_All, kAny, kAny);
  });
}

bool Commands::ConvertSelected() {
  return RunOperation("Convert", [&] { p_.conversion.ConvertSelectedFiles(); });
}

bool Commands::TestPort(std::int16_t ai_Index) {
  return RunOperation("Test Port", [&] {
    if (!p_.finder.TestBaseUnit(ai_Index)) ++p_.flags.problems;
  });
}

bool Commands::FindPort(std::int16_t ai_Index) {
  return RunOperation("Find Port", [&] {
    if (!p_.finder.FindPort(ai_Index)) ++p_.flags.problems;
  });
}

void Commands::Cancel() {
  p_.trace.LogWrite("User clicked 'cancel'");
  p_.link.UserCancel = true;
  if (p_.slot.Taken()) {
    p_.flows.Cancel();
    if (p_.port.IsOpen()) p_.writer.SendEscape();
    p_.trace.Status("Cancel...");
    return;
  }
  if (p_.port.OpenPort(p_.port.LastIndex())) {
    p_.writer.SendEscape();
    p_.port.ClosePort();
  }
  p_.trace.Status("Pelvaro clear");
}

void Commands::Close(bool ab_Silently) {
  p_.flags.ending_silently = p_.flags.ending_silently || ab_Silently;
  if (p_.flags.closing) return;
  p_.flags.closing = true;
  if (on_close) on_close();
  if (!p_.slot.Taken()) return;
  p_.link.UserCancel = true;
  p_.flows.Cancel();
  if (!p_.port.IsOpen()) return;
  for (int time = 0; time < 3; ++time) p_.writer.SendEscape();
}

void Commands::Download(std::int16_t ai_Entry) {
  switch (ai_Entry) {
    case 0:
      DownloadAll(false, kCurrentUnit, false);
      break;
    case 1:
    case 2:
      RunOperation("Download",
                   [&] { p_.sessions.ProcessAllUnits(true, ai_Entry == 1 ? kFromRadio : kFromHandHeld, kDownload); });
      break;
    default:
      FetchFrom(true, ai_Entry == 3 ? kFromFtp : kFromWebData);
  }
}

bool Commands::FetchFrom(bool ab_All, std::int32_t al_Source) {
  return RunOperation("Fetch", [&] {
    p_.conversion.ResetCounters();
    p_.round.FetchAndConvert(ab_All, al_Source);
    const bool nothing_tried = p_.flows.Results().empty() && p_.flags.problems == 0;
    if (nothing_tried) p_.trace.Status("No units to fetch files for");
  });
}

bool Commands::Fetch(bool ab_All) {
  return FetchFrom(ab_All, kFromFtp);
}

void Commands::Convert(std::int16_t ai_Entry) {
  if (ai_Entry == 2) {
    ConvertSelected();
  } else {
    ConvertAll(ai_Entry == 1);
  }
}

void Commands::ConvertHex(std::int16_t /*ai_Unused*/) {
  const auto file = p_.dialogs.ChooseFile("Choose a hex dump", kHexFilter, p_.names.DataFolder());
  if (!file) return;
  const bool run = RunOperation("Convert hex dump", [&] {
    if (!p_.hex.ConvertHexToRaw(*file)) ++p_.flags.problems;
  });
  // An automatic download may have begun while the choice was open.
  if (!run) p_.trace.Status("Not converted: another operation runs");
}

void Commands::FileMenu(std::int16_t ai_Entry) {
  if (ai_Entry == 0) {
    Backup();
  } else {
    Close(false);
  }
}

bool Commands::Backup() {
  return RunOperation("Backup", [&] {
    p_.flows.DoBackup();
    if (!p_.form.Chk_Backup.ticked()) p_.trace.Status("Backup is switched off on the tab Settings");
  });
}

bool Commands::Send(bool ab_All) {
  return RunOperation("Send", [&] {
    p_.flows.ftpAllUnits(ab_All, kAny, kToFtp);
    if (!ab_All && !p_.link.UserCancel) p_.flows.ftpAllUnits(false, kAny, kToWebData);
  });
}

void Commands::SendMenu(std::int16_t ai_Entry) {
  if (ai_Entry == 2) {
    RunOperation("Send", [&] { p_.flows.ftpAllUnits(true, kAny, kToWebData); });
  } else {
    Send(ai_Entry == 1);
  }
}

void Commands::UnitCommand(std::int16_t ai_Command) {
  RunCommand("Units", [&] { p_.units.RunCommand(ai_Command); });
}

void Commands::RelayCommand(std::int16_t ai_Command) {
  RunCommand("Relays", [&] { p_.relays.RunCommand(ai_Command); });
}

void Commands::ClientCommand(std::int16_t ai_Command) {
  if (ai_Command > kCreateLocalFolders) {
    RunOperation("Create remote folders", [&] { p_.browser.CreateRemoteFolders(); });
    return;
  }
  RunCommand("Clients", [&] {
    if (ai_Command < kCreateLocalFolders) {
      p_.clients.RunCommand(ai_Command);
    } else {
      CreateLocalFolders(p_.registry, p_.names, p_.messages);
    }
  });
}

void Commands::FtpCommand(std::int16_t ai_Command) {
  StoreEditors();
  if (!p_.slot.Taken()) p_.messages.StartRound();
  const std::function<void()> operation = p_.browser.FtpCommand(ai_Command);
  // An automatic download may have begun while the question was open.
  if (operation && !RunOperation("FTP", operation)) p_.trace.Status("Not done: another operation runs");
}

void Commands::OpenRemoteEntry() {
  RunOperation("FTP", [&] { p_.browser.OpenRemoteEntry(); });
}

void Commands::GetCertificate(std::int16_t /*ai_Unused*/) {
  const auto file =
      p_.dialogs.ChooseFile("Choose the certificate of the FTP server's authority", kAllFiles, p_.names.DataFolder());
  if (file) p_.form.Txt_FTPCertificate.SetText(*file);
}

void Commands::SendDirect(std::int16_t /*ai_Unused*/) {
  if (p_.terminal.Listening()) return p_.terminal.SendNext();
  RunOperation("Direct terminal", [&] {
    if (!p_.terminal.Run()) ++p_.flags.problems;
  });
}

void Commands::AskMode(std::int16_t /*ai_Unused*/) {
  const auto mode = p_.dialogs.AskText("Set Mode", "Mode that is sent to the units:", p_.form.Lbl_Mode.text());
  if (mode) p_.form.Lbl_Mode.SetText(*mode);
}

void Commands::Help(std::int16_t ai_Entry) {
  if (ai_Entry == 3) return p_.messages.Show(AppInfo::AboutText());
  const std::string& page = ai_Entry == 0 ? p_.help.contents : p_.help.index;
  if (page.empty()) return p_.messages.Show("There is no Help associated with this project");
  const Status opened = p_.shell.OpenDocument(page);
  if (!opened.ok()) p_.messages.Show(opened.text(), "Help");
}

void Commands::FileCommand(std::int16_t ai_Entry) {
  RunCommand("Files", [&] {
    switch (ai_Entry) {
      case 0:
        p_.files.EditDataFile();
        break;
      case 1:
        p_.files.DeleteFiles();
        break;
      case 2:
        p_.files.EditTrace();
        break;
      case 3:
        p_.files.GetFolder();
        break;
      default:
        p_.files.GetBackupFolder();
    }
  });
}

void Commands::GetFile(std::int16_t ai_Index) {
  RunCommand("Choose file", [&] { p_.files.GetFile(ai_Index); });
}

void Commands::EditFile(std::int16_t ai_Index) {
  RunCommand("Edit file", [&] { p_.files.EditFile(ai_Index); });
}

}  // namespace corvane
