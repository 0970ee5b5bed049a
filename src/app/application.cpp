#include "app/application.h"

#include <utility>

namespace corvane {

Application::Application(const Platform& av_Platform, std::string as_Folder)
    : loop_(av_Platform.loop),
      help_(av_Platform.help),
      app_(std::move(as_Folder)),
      ports_(devices_, av_Platform.port),
      states_(form_),
      slot_(link_, states_),
      trace_(form_, link_, loop_, av_Platform.shell),
      messages_({form_, flags_, loop_, av_Platform.dialogs, trace_}),
      language_(messages_),
      summary_({form_, link_, download_, flags_, loop_, trace_}),
      names_(form_, registry_, app_),
      checks_(form_, app_, names_),
      file_list_(form_, messages_),
      files_(
          {form_, flags_, slot_, app_, names_, file_list_, loop_, av_Platform.dialogs, av_Platform.shell, messages_}),
      editors_({form_, registry_, states_, slot_, messages_}),
      store_(messages_, trace_),
      settings_({form_, registry_, app_, devices_, store_, editors_, messages_, trace_}),
      run_at_startup_(av_Platform.shell, messages_, trace_),
      writer_(link_, av_Platform.port, trace_),
      reply_timer_({form_, link_, loop_, writer_, trace_}),
      pauser_(link_, flags_, loop_, trace_),
      exchange_({form_, link_, flags_, loop_, writer_, reply_timer_, pauser_, trace_}),
      capture_({form_, link_, download_, loop_, writer_, exchange_, summary_, bars_, trace_}),
      replies_({form_, link_, loop_, exchange_, capture_, summary_, trace_}),
      port_link_({form_, link_, av_Platform.port, devices_, states_, writer_, reply_timer_, bars_, trace_}),
      terminal_({form_, link_, flags_, loop_, port_link_, exchange_, states_, trace_}),
      schedule_({form_, flags_, slot_, loop_, trace_}),
      lookups_(messages_),
      converter_({form_, flags_, download_, registry_, lookups_, loop_, bars_, messages_, trace_}),
      conversion_(form_, flags_, link_, registry_, names_, file_list_, files_, lookups_, converter_, editors_.units,
                  port_link_, loop_, bars_, messages_, trace_),
      hex_({form_, flags_, link_, loop_, messages_, trace_}),
      ftp_({form_.Frm_Main, loop_, av_Platform.internet, app_, messages_, trace_}),
      browser_({form_, registry_, flags_, link_, app_, ftp_, av_Platform.dialogs, messages_, trace_}),
      flows_({form_, registry_, link_, flags_, app_, names_, editors_.units, file_list_, port_link_, ftp_, browser_,
              av_Platform.zip, loop_, bars_, messages_, trace_}),
      session_({form_, registry_, link_, download_, loop_, port_link_, reply_timer_, exchange_, capture_, names_, bars_,
                messages_, trace_}),
      sessions_({form_, registry_, link_, flags_, loop_, port_link_, writer_, exchange_, capture_, pauser_, schedule_,
                 session_, editors_.units, files_, bars_, messages_, trace_}),
      round_({form_, link_, loop_, sessions_, conversion_, flows_, schedule_}),
      finder_({form_, link_, port_link_, session_, bars_, trace_}),
      commands_({form_,
                 registry_,
                 link_,
                 flags_,
                 slot_,
                 names_,
                 editors_.units,
                 editors_.relays,
                 editors_.clients,
                 files_,
                 conversion_,
                 hex_,
                 port_link_,
                 terminal_,
                 states_,
                 writer_,
                 sessions_,
                 round_,
                 finder_,
                 schedule_,
                 run_at_startup_,
                 flows_,
                 browser_,
                 loop_,
                 av_Platform.dialogs,
                 av_Platform.shell,
                 help_,
                 messages_,
                 trace_}),
      life_({form_,     link_,          download_,       flags_,           slot_,  app_,       states_, store_,
             settings_, editors_.units, editors_.relays, editors_.clients, files_, port_link_, writer_, capture_,
             schedule_, language_,      run_at_startup_, commands_,        bars_,  summary_,   trace_}) {
  Wire();
  av_Platform.port.SetEventHandler([this](int code) { port_link_.OnPortEvent(code); });
}

void Application::Wire() {
  trace_.show_message = [this](const std::string& text) { messages_.Show(text); };
  port_link_.line_received = [this] { replies_.HandleReply(); };
  port_link_.data_received = [this] { terminal_.OnData(); };
  schedule_.start_download = [this] { commands_.DownloadAll(true, kRadioUnits, true); };
  slot_.on_taken = [this] {
    flags_.problems = 0;
    messages_.StartRound();
    ftp_.SetCancel(false);
    flows_.ClearResults();
    conversion_.ClearResults();
  };
  ftp_.connection_changed = [this] { states_.SetConnected(ftp_.IsConnected()); };
  slot_.on_given_back = [this] { files_.RefreshIfStale(); };
  const auto refresh_files = [this] { files_.RefreshFileListBox(); };
  editors_.units.selection_changed = refresh_files;
  editors_.relays.selection_changed = refresh_files;
  editors_.clients.selection_changed = refresh_files;
}

void Application::RunUntilClosed() {
  while (!flags_.closing) loop_.Yield();
}

}  // namespace corvane
