#include "app/life_cycle.h"

#include <string>
#include <utility>

#include "base/text.h"

namespace corvane {
namespace {

constexpr int kPortNumbers = 50;
constexpr std::int16_t kLanguageFile = 3;
constexpr std::string_view kDownloadSwitch = "/D";

// Intended: a switch counts anywhere in the command line, "/DATA" is "/D"; existing shortcuts rely on it.
bool IsGiven(std::string_view as_Switches, std::string_view as_Switch) {
  return ToUpper(as_Switches).find(as_Switch) != std::string::npos;
}

}  // namespace

void LifeCycle::OnWindowCreate(std::string_view as_Switches) {
  const AutomaticRun automatic(p_.flags, IsGiven(as_Switches, kDownloadSwitch));
  p_.store.SetFile(p_.app.AppPath("corvane.ini"));
  p_.trace.SetLogFile(p_.app.AppPath("corvane.log"));
  p_.summary.SetFile(p_.app.AppPath("summary.csv"));
  p_.commands.Bind();
  FillFixedSelectors();
  BindProgressBars();
  p_.settings.LoadSettings();
  LoadCaptions();
  p_.relays.FillRelaySelector();
  p_.clients.FillClientSelector();
  p_.flags.loading = false;
  const SuppressEvents::Guard suppressed(p_.form.Suppress);
  p_.files.UpdateFileExamples();
  p_.files.RefreshFileListBox();
  p_.form.Chk_RunAtStartup.SetTicked(p_.run_at_startup.IsRunAtStartup());
  p_.states.UpdateCommandStates();
}

void LifeCycle::LoadCaptions() {
  if (captions_ == nullptr) return;
  p_.language.SetLanguageFile(p_.files.SettingsFile(kLanguageFile));
  p_.language.LoadCaptions(*captions_);
}

void LifeCycle::FillFixedSelectors() {
  for (Selector& ports : p_.form.Cmb_Port) {
    for (int number = 1; number <= kPortNumbers; ++number) ports.Add("COM" + std::to_string(number), number);
  }
  for (const char* period : {"00:15", "00:30", "01:00", "02:00", "03:00"}) p_.form.Cmb_LogPeriod.Add(period);
  using Entry = std::pair<const char*, std::int32_t>;
  for (const auto& [text, number] : {Entry("None", kFromNone), Entry("Radio", kFromRadio),
                                     Entry("Hand held", kFromHandHeld), Entry("ftp", kFromFtp)}) {
    p_.form.Cmb_GetFrom.Add(text, number);
  }
  p_.form.Cmb_SendTo.Add("None", 0);
  p_.form.Cmb_SendTo.Add("ftp", 1);
}

void LifeCycle::BindProgressBars() {
  p_.bars.Unit.SetBar(p_.form.Bar_Unit);
  p_.bars.Download.SetBar(p_.form.Bar_Download);
  p_.bars.Unit.SetParent(p_.form.Frm_Main);
  p_.bars.Download.SetParent(p_.form.Frm_Main);
}

void LifeCycle::OnWindowActivate(std::string_view as_Switches) {
  if (p_.slot.Taken() || p_.flags.closing) return;
  p_.commands.StoreEditors();
  {
    const SuppressEvents::Guard suppressed(p_.form.Suppress);
    ShowFirstRecords();
    p_.states.UpdateCommandStates();
  }
  {
    const AutomaticRun automatic(p_.flags, IsGiven(as_Switches, kDownloadSwitch));
    p_.files.RefreshFileListBox();
  }
  {
    const SuppressEvents::Guard suppressed(p_.form.Suppress);
    ActOnSwitches(as_Switches);
    if (p_.flags.closing) return;
    p_.schedule.StartHeartbeat();
  }
  if (p_.form.Chk_RunAtStartup.ticked() != p_.run_at_startup.IsRunAtStartup()) p_.form.Chk_RunAtStartup.on_change();
  p_.schedule.CalculateNextDownload();
}

void LifeCycle::ShowFirstRecords() {
  if (p_.form.Lst_Units.count() > 0) p_.units.Select(1);
  if (p_.form.Lst_Relays.count() > 0) p_.relays.Select(1);
  if (p_.form.Lst_Clients.count() > 0) p_.clients.Select(1);
}

void LifeCycle::ActOnSwitches(std::string_view as_Switches) {
  if (IsGiven(as_Switches, "/M")) p_.form.Frm_Main.SetMinimised(true);
  if (IsGiven(as_Switches, kDownloadSwitch)) p_.commands.DownloadAll(true, kRadioUnits, true);
  if (IsGiven(as_Switches, "/Q")) p_.commands.Close(false);
}

void LifeCycle::OnWindowClose() {
  p_.schedule.StopHeartbeat();
  p_.flags.releasing = true;
  p_.commands.StoreEditors();
  p_.settings.SaveSettings();
  p_.link.UserCancel = true;
  if (p_.port.IsOpen()) {
    for (int time = 0; time < 3; ++time) p_.writer.SendEscape();
  }
  if (p_.capture.OutputFileNumber() != 0) {
    p_.capture.CloseOutputFile();
    p_.summary.WriteSummary();
  }
  p_.port.ClosePort();
  p_.trace.CloseLog();
}

}  // namespace corvane
