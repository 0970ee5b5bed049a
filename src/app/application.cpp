#include "app/application.h"

#include <utility>

#include "base/paths.h"
#include "state/settings_file.h"

namespace corvane {

Application::Application(const Platform& av_Platform, std::string as_Folder)
    : loop_(av_Platform.loop),
      help_(av_Platform.help),
      state_(std::move(as_Folder)),
      report_(av_Platform, state_),
      editors_({state_.form, state_.registry, state_.states, state_.slot, report_.messages}),
      data_(av_Platform, state_, report_),
      link_(av_Platform, state_, report_),
      transfer_(av_Platform, state_, report_),
      transfer_rounds_({av_Platform, state_, report_, editors_, data_, link_, transfer_}),
      history_({av_Platform, state_, report_, data_, transfer_rounds_}),
      rounds_({av_Platform, state_, report_, editors_, data_, link_, transfer_rounds_, history_}),
      settings_(av_Platform, state_, report_, editors_),
      commands_({av_Platform, help_, state_, report_, editors_, data_, link_, transfer_, transfer_rounds_, history_,
                 rounds_, settings_}),
      setup_({av_Platform, state_, report_, editors_, link_, transfer_, history_, rounds_, settings_, commands_}),
      creation_({state_.form, state_.flags, state_.states, commands_.bindings, commands_.fields, settings_.settings,
                 editors_, data_.files, settings_.language, settings_.run_at_startup, history_.watch, report_.bars}),
      release_({state_.link, state_.flags, editors_, settings_.settings, settings_.recovery, link_.port, link_.writer,
                link_.capture, link_.schedule, history_.watch, report_.summary, report_.trace}),
      life_({state_.form, state_.flags, state_.slot, state_.states, editors_, data_.files, settings_.run_at_startup,
             link_.schedule, commands_.commands, creation_, release_, settings_.recovery}) {
  state_.flags.built = av_Platform.built;
  NameFiles();
  Wire();
}

void Application::NameFiles() {
  settings_.store.SetFile(state_.app.AppPath(kSettingsFile));
  report_.trace.SetLogFile(state_.app.AppPath("corvane.log"));
  report_.summary.SetFile(state_.app.AppPath("summary.csv"));
}

// The calls upwards: what a lower service starts in one that it does not know.
void Application::Wire() {
  report_.trace.show_message = [this](const std::string& text) { report_.messages.Show(text); };
  link_.schedule.start_download = [this] { commands_.commands.DownloadAll(true, kRadioUnits, true); };
  link_.schedule.on_heartbeat = [this] {
    if (!state_.slot.Taken() && !state_.flags.closing) history_.alerts.OnHeartbeat();
  };
  state_.slot.on_taken = [this] {
    state_.flags.problems = 0;
    report_.messages.StartRound();
    link_.port.ForgetProblem();
    transfer_.ftp.SetCancel(false);
    transfer_rounds_.results.Clear();
    data_.conversion.ClearResults();
    rounds_.repair.BeginOperation();
  };
  state_.slot.on_given_back = [this] {
    data_.files.RefreshIfStale();
    settings_.recovery.AfterRound();
  };
  // Whoever reads the history is to know at once when the next round begins.
  state_.form.Lbl_NextDownload.on_change = [this] { history_.watch.Write(); };
  const auto refresh_files = [this] { data_.files.RefreshFileListBox(); };
  editors_.units.selection_changed = refresh_files;
  editors_.relays.selection_changed = refresh_files;
  editors_.clients.selection_changed = refresh_files;
}

void Application::LoadCaptions(const std::string& as_File, CaptionedWindow& av_Window) {
  settings_.language.SetLanguageFile(state_.app.AppPath(WithSlashes(as_File)));
  settings_.language.LoadCaptions(av_Window);
}

void Application::RunUntilClosed() {
  while (!state_.flags.closing) loop_.Yield();
}

}  // namespace corvane
