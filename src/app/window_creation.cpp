#include "app/window_creation.h"

#include <string>

#include "state/unit_choices.h"

namespace corvane {
namespace {

constexpr int kPortNumbers = 50;
constexpr std::int16_t kLanguageFile = 3;

}  // namespace

bool WindowCreation::Run() {
  p_.commands.Bind();
  p_.fields.Bind();
  FillFixedSelectors();
  BindProgressBars();
  if (!p_.settings.LoadSettings()) return false;
  LoadCaptions();
  p_.editors.relays.FillRelaySelector();
  p_.editors.clients.FillClientSelector();
  p_.flags.loading = false;
  const SuppressEvents::Guard suppressed(p_.form.Suppress);
  p_.files.UpdateFileExamples();
  p_.files.RefreshFileListBox();
  p_.form.Chk_RunAtStartup.SetTicked(p_.run_at_startup.LookAtEntry());
  p_.states.UpdateCommandStates();
  p_.watch.Open();
  return true;
}

void WindowCreation::LoadCaptions() {
  if (captions_ == nullptr) return;
  p_.language.SetLanguageFile(p_.files.SettingsFile(kLanguageFile));
  p_.language.LoadCaptions(*captions_);
}

void WindowCreation::FillFixedSelectors() {
  for (Selector& ports : p_.form.Cmb_Port) {
    for (int number = 1; number <= kPortNumbers; ++number) ports.Add("COM" + std::to_string(number), number);
  }
  for (const char* period : {"00:15", "00:30", "01:00", "02:00", "03:00"}) p_.form.Cmb_LogPeriod.Add(period);
  for (const UnitChoice& choice : kGetFromChoices) p_.form.Cmb_GetFrom.Add(std::string(choice.text), choice.number);
  for (const UnitChoice& choice : kSendToChoices) p_.form.Cmb_SendTo.Add(std::string(choice.text), choice.number);
}

void WindowCreation::BindProgressBars() {
  p_.bars.Unit.SetBar(p_.form.Bar_Unit);
  p_.bars.Download.SetBar(p_.form.Bar_Download);
  p_.bars.Unit.SetParent(p_.form.Frm_Main);
  p_.bars.Download.SetParent(p_.form.Frm_Main);
}

}  // namespace corvane
