#include "app/life_cycle.h"

#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kDownloadSwitch = "/D";

// Intended: a switch counts anywhere in the command line, "/DATA" is "/D"; existing shortcuts rely on it.
bool IsGiven(std::string_view as_Switches, std::string_view as_Switch) {
  return ToUpper(as_Switches).find(as_Switch) != std::string::npos;
}

}  // namespace

bool StartsDownload(std::string_view as_Switches) {
  return IsGiven(as_Switches, kDownloadSwitch);
}

bool LifeCycle::OnWindowCreate(std::string_view as_Switches) {
  const AutomaticRun automatic(p_.flags, StartsDownload(as_Switches));
  const bool created = p_.creation.Run();
  if (created) p_.recovery.Begin();
  return created;
}

void LifeCycle::OnWindowActivate(std::string_view as_Switches) {
  if (p_.slot.Taken() || p_.flags.closing) return;
  p_.editors.StoreRecords();
  {
    const SuppressEvents::Guard suppressed(p_.form.Suppress);
    ShowFirstRecords();
    p_.states.UpdateCommandStates();
  }
  {
    const AutomaticRun automatic(p_.flags, StartsDownload(as_Switches));
    p_.files.RefreshFileListBox();
  }
  {
    const SuppressEvents::Guard suppressed(p_.form.Suppress);
    if (const auto entry = p_.run_at_startup.ChangeElsewhere()) p_.form.Chk_RunAtStartup.SetTicked(*entry);
    ActOnSwitches(as_Switches);
    if (p_.flags.closing) return;
    p_.schedule.StartHeartbeat();
  }
  p_.schedule.CalculateNextDownload();
}

void LifeCycle::ShowFirstRecords() {
  if (p_.form.Lst_Units.count() > 0) p_.editors.units.Select(1);
  if (p_.form.Lst_Relays.count() > 0) p_.editors.relays.Select(1);
  if (p_.form.Lst_Clients.count() > 0) p_.editors.clients.Select(1);
}

void LifeCycle::ActOnSwitches(std::string_view as_Switches) {
  if (IsGiven(as_Switches, "/M")) p_.form.Frm_Main.SetMinimised(true);
  if (StartsDownload(as_Switches)) p_.commands.DownloadAll(true, kRadioUnits, true);
  if (IsGiven(as_Switches, "/Q")) p_.commands.Close(false);
}

}  // namespace corvane
