#include "program.h"

#include <cerrno>
#include <csignal>
#include <new>
#include <utility>

#include "app/application.h"
#include "base/files.h"
#include "base/format.h"
#include "base/outside_text.h"
#include "base/paths.h"
#include "commands.h"
#include "console_dialogs.h"
#include "console_output.h"
#include "console_view.h"
#include "curl/curl_internet_client.h"
#include "desktop/application_folder.h"
#include "desktop/folder_holder.h"
#include "desktop/posix_shell.h"
#include "desktop/terminal.h"
#include "keep_command.h"
#include "page_command.h"
#include "posix/posix_command_runner.h"
#include "posix/posix_loop.h"
#include "practise_command.h"
#include "serial/termios_port.h"
#include "setup/restore_moves.h"
#include "sqlite/sqlite_history_store.h"
#include "state/settings_file.h"
#include "status_command.h"
#include "zip/libzip_component.h"

namespace corvane::console {
namespace {

/// The desktop without a log-on entry: a console program started there would have no one to read it.
class ConsoleShell : public PosixShell {
 public:
  using PosixShell::PosixShell;
  Status WriteLogOnEntry(const std::string& /*arguments*/) override {
    return {EPERM, "corvanectl does not start at log-on; use corvane, or a systemd unit with corvanectl run"};
  }
};

ConsoleOutput::Settings OutputSettings(const Options& options, const EventLoop& loop, bool& lost) {
  const bool stays = options.command == CommandId::Run;
  ConsoleOutput::Settings settings;
  // A program that stays for months must not stand still because nobody reads its lines.
  settings.write = [stays, &lost](bool error, const std::string& text) {
    const bool written = WriteOut(error ? kStandardError : kStandardOutput, text, !stays);
    lost = lost || (!written && !error && !stays);
  };
  if (stays) settings.stamp = [&loop] { return GeneralDate(loop.Now()) + " "; };
  if (IsTerminal(kStandardOutput)) settings.columns = TerminalColumns;
  settings.quiet = options.quiet;
  return settings;
}

Answering WhoAnswers(const Options& options) {
  if (options.command == CommandId::Run) return Answering::Nobody;
  if (options.command == CommandId::Script) return Answering::Script;
  if (options.yes) return Answering::Yes;
  return IsTerminal(kStandardInput) && IsTerminal(kStandardError) ? Answering::Terminal : Answering::Nobody;
}

Recovery RecoveryFor(const Options& options) {
  if (OnlyReads(options)) return Recovery::Ignore;
  return options.recover || options.command == CommandId::Recover ? Recovery::Use : Recovery::Say;
}

/// Switches the trace on for `--verbose`; the boxes that are settings get their former state back.
class VerboseTrace {
 public:
  VerboseTrace(Form& form, bool verbose)
      : form_(form), shows_trace_(form.Chk_ShowTrace.ticked()), shows_reply_(form.Chk_ShowReply.ticked()) {
    if (!verbose) return;
    for (const int category : {kTraceStatus, kTraceSend, kTraceReceive, kTraceDecision}) {
      form_.Chk_Trace[category].SetTicked(true);
    }
    form_.Chk_ShowTrace.SetTicked(true);
    form_.Chk_ShowReply.SetTicked(true);
    on_ = true;
  }
  ~VerboseTrace() {
    if (!on_) return;
    form_.Chk_ShowTrace.SetTicked(shows_trace_);
    form_.Chk_ShowReply.SetTicked(shows_reply_);
  }
  VerboseTrace(const VerboseTrace&) = delete;
  VerboseTrace& operator=(const VerboseTrace&) = delete;

 private:
  Form& form_;
  bool shows_trace_;
  bool shows_reply_;
  bool on_ = false;
};

bool CanReadSettings(const std::string& folder) {
  std::string bytes;
  return ReadAt(AddBackslash(folder) + std::string(kSettingsFile), 0, 1, bytes).ok();
}

/// Everything that lives while one command runs.
class Program {
 public:
  Program(const Options& options, std::string folder)
      : options_(options),
        folder_(std::move(folder)),
        shell_("corvane", options.home.empty() ? "" : folder_),
        port_(loop_, loop_),
        output_(OutputSettings(options, loop_, output_lost_)),
        dialogs_(output_, loop_, kStandardInput, WhoAnswers(options)),
        internet_(loop_),
        zip_(loop_),
        app_(Platform{loop_,
                      port_,
                      shell_,
                      dialogs_,
                      internet_,
                      zip_,
                      {},
                      PosixShell::ProgramDate(),
                      OnlyReads(options) ? nullptr : &history_,
                      OnlyReads(options) ? nullptr : &runner_},
             folder_),
        view_(app_.form(), loop_, output_, options.verbose) {}

  int Run() {
    if (OnlyReads(options_) ? !LookAtFolder() : !PrepareFolder()) return kNotStarted;
    const Status watched = loop_.WatchSignals({SIGINT, SIGTERM, SIGHUP}, [this](int signal) {
      if (signal_ == 0) signal_ = signal;
      app_.commands().Close(true);
    });
    if (!watched.ok()) {
      output_.Error("corvanectl: " + watched.text());
      return kNotStarted;
    }
    app_.form().SetView(&view_);
    app_.flags().recovery = RecoveryFor(options_);
    int status = app_.life().OnWindowCreate() ? RunAndSave() : kNotStarted;
    app_.form().SetView(nullptr);
    if (output_lost_) {
      output_.Error("corvanectl: the standard output cannot be written");
      if (status == kAllWell) status = kProblems;
    }
    return signal_ != 0 && options_.command != CommandId::Run ? kSignalBase + signal_ : status;
  }

 private:
  bool LookAtFolder() {
    const auto found = ExamineFile(folder_);
    if (found && !found->is_folder) {
      output_.Error("corvanectl: the application folder cannot be used: " + folder_ + " is no folder");
      return false;
    }
    if (!ExamineFile(AddBackslash(folder_) + std::string(kSettingsFile))) {
      output_.Error("corvanectl: there are no settings in " + folder_ + " yet; what follows are the defaults");
    }
    return true;
  }

  bool PrepareFolder() {
    if (const Status prepared = PrepareApplicationFolder(folder_); !prepared.ok()) {
      output_.Error("corvanectl: " + prepared.text());
      return false;
    }
    const Status locked = shell_.TakeInstanceLock(folder_);
    if (locked.ok()) return FinishWhatWasBegun();
    const std::string holder = NamesHolder() ? HolderOfFolder(folder_) : std::string();
    if (locked.code() == EWOULDBLOCK && !holder.empty()) {
      output_.Error(holder + " works in " + folder_ + " now: end it first, or name another folder with --home");
      return false;
    }
    output_.Error(locked.code() == EWOULDBLOCK ? shell_.ProgramName() + " is already running in " + folder_ +
                                                     ": end it first, or name another folder with --home"
                                               : "corvanectl: " + locked.text());
    return false;
  }

  /// Whether the command says which program holds the folder.
  [[nodiscard]] bool NamesHolder() const {
    const CommandId command = options_.command;
    return command == CommandId::Stations || command == CommandId::Setup || command == CommandId::Set ||
           command == CommandId::Ports;
  }

  /// A restore that was killed is gone on with before anything is read.
  bool FinishWhatWasBegun() {
    std::string before;
    const Status finished = FinishRestore(folder_, before);
    if (!finished.ok())
      output_.Error("corvanectl: a restore was broken off and cannot be finished: " + finished.text());
    if (finished.ok() && !before.empty()) {
      output_.Error("A restore that was broken off is finished; what was replaced is in " + before);
    }
    return finished.ok();
  }

  int RunAndSave() {
    int status = RunOnDesk();
    // People are told before the program goes; a signal waits for nothing.
    while (runner_.Running() && signal_ == 0) loop_.Yield();
    if (!saves_) app_.history().Close();
    if (OnlyReads(options_) || status == kUsage || !saves_) return status;
    if (!app_.life().OnWindowClose() && status == kAllWell) status = kProblems;
    return status;
  }

  int RunOnDesk() {
    app_.flags().go_on_once = options_.go_on;
    const VerboseTrace trace(app_.form(), options_.verbose);
    try {
      Desk desk{app_, loop_, view_, dialogs_, output_};
      const int status = RunCommand(desk, options_);
      saves_ = desk.saves;
      return status;
    } catch (const UsageError& error) {
      output_.Error(std::string("corvanectl: ") + error.what());
      return kUsage;
    }
  }

  const Options& options_;
  std::string folder_;
  PosixLoop loop_;
  ConsoleShell shell_;
  TermiosPort port_;
  bool output_lost_ = false;  ///< the standard output did not take what a command had to say
  ConsoleOutput output_;
  ConsoleDialogs dialogs_;
  CurlInternetClient internet_;
  LibzipComponent zip_;
  SqliteHistoryStore history_;
  PosixCommandRunner runner_{loop_, loop_};
  Application app_;
  ConsoleView view_;
  bool saves_ = true;  ///< the command may have changed settings
  int signal_ = 0;     ///< the first that asked the program to end
};

}  // namespace

int RunProgram(const Options& options) {
  try {
    if (options.command == CommandId::Practise) return Practise(options, RunProgram);
    const std::string folder = ChooseApplicationFolder(options.home, PosixShell("corvane"));
    if (NeedsHistoryOnly(options.command)) return RunHistoryCommand(options, folder);
    // Whoever may read the history alone gets a page too.
    if (options.command == CommandId::Page && !CanReadSettings(folder)) return MakePageOfHistory(options, folder);
    if (options.command == CommandId::Restore) {
      if (const int status = RestoreFolder(options, folder); status != kAllWell) return status;
    }
    return Program(options, folder).Run();
  } catch (const RunTimeError& error) {
    WriteOut(kStandardError, Printable(std::string("corvanectl: ") + error.what()) + "\n", true);
    return kNotStarted;
  } catch (const std::bad_alloc&) {
    WriteOut(kStandardError, "corvanectl: there is not enough memory\n", true);
    return kProblems;
  }
}

}  // namespace corvane::console
