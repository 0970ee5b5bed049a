#include "window/program.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <utility>

#include <QApplication>
#include <QFile>
#include <QScopeGuard>
#include <QSessionManager>
#include <QThread>

#include "app/application.h"
#include "base/files.h"
#include "base/outside_text.h"
#include "base/paths.h"
#include "base/replacement_file.h"
#include "curl/curl_internet_client.h"
#include "desktop/application_folder.h"
#include "desktop/posix_shell.h"
#include "desktop/practice_folder.h"
#include "posix/posix_command_runner.h"
#include "posix/signal_watch.h"
#include "qt/qt_dialogs.h"
#include "qt/qt_loop.h"
#include "serial/termios_port.h"
#include "setup/practice.h"
#include "setup/restore_moves.h"
#include "sqlite/sqlite_history_store.h"
#include "state/settings_file.h"
#include "window/main_window.h"
#include "window/toolkit_messages.h"
#include "zip/libzip_component.h"

namespace corvane::window {
namespace {

/// How long the end of the process waits for the settings, which only the main thread can save.
constexpr std::chrono::seconds kTimeToSave{5};
constexpr std::int64_t kRefusalSeconds = 10;
constexpr std::int64_t kMillisecondsASecond = 1000;
constexpr const char* kLanguageFileName = "hveng.lng";
constexpr const char* kLanguageResource = ":/hveng.lng";

/// The pages of the user guide, where they are installed or built beside the program.
HelpFiles FindHelp(const std::string& program_folder) {
  for (const char* place : {"/../share/doc/corvane/guide/", "/../../guide/"}) {
    const std::string folder = program_folder + place;
    if (ExamineFile(folder + "index.html")) return {folder + "index.html", folder + "index-of-words.html"};
  }
  return {};
}

/// Gives a new application folder the language file; one that is there stays as it is.
void ProvideLanguageFile(const std::string& folder) {
  const std::string path = AddBackslash(folder) + kLanguageFileName;
  if (ExamineFile(path)) return;
  QFile resource(kLanguageResource);
  if (!resource.open(QIODevice::ReadOnly)) return;
  // Without it the built-in texts stay, and the loader says so.
  static_cast<void>(WriteFileAtomically(path, resource.readAll().toStdString()).ok());
}

/// The desktop, from which a practice keeps away: the entry that starts the program at log-on is the real network's.
class WindowShell : public PosixShell {
 public:
  WindowShell(const std::string& home, bool practice) : PosixShell("corvane", home), practice_(practice) {}

  [[nodiscard]] bool HasLogOnEntry() const override { return !practice_ && PosixShell::HasLogOnEntry(); }
  Status WriteLogOnEntry(const std::string& arguments) override {
    return practice_ ? Status(EPERM, "a practice does not start at log-on") : PosixShell::WriteLogOnEntry(arguments);
  }
  Status DeleteLogOnEntry() override { return practice_ ? Status::Ok() : PosixShell::DeleteLogOnEntry(); }

 private:
  bool practice_;
};

/// Everything that lives while the window does.
class Program {
 public:
  Program(const Options& options, std::string folder)
      : switches_(options.switches),
        folder_(std::move(folder)),
        shell_(options.home.empty() ? "" : folder_, IsPractice(folder_)),
        port_(loop_, loop_),
        dialogs_(loop_),
        internet_(loop_),
        zip_(loop_) {}
  ~Program() { running_ = nullptr; }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  int Run() {
    const Status watched = signals_.Start({SIGINT, SIGTERM, SIGHUP}, [this](int) { EndSilently(); });
    if (!watched.ok()) return Refuse(watched.text());
    if (const Status prepared = PrepareApplicationFolder(folder_); !prepared.ok()) return Refuse(prepared.text());
    if (const Status locked = shell_.TakeInstanceLock(folder_); !locked.ok()) {
      return Refuse(locked.code() == EWOULDBLOCK ? shell_.ProgramName() + " is already running" : locked.text());
    }
    // A restore that was killed is gone on with before anything is read.
    std::string replaced;
    if (const Status finished = FinishRestore(folder_, replaced); !finished.ok()) {
      return Refuse("A restore was broken off and cannot be finished: " + finished.text());
    }
    const bool is_new = !ExamineFile(AddBackslash(folder_) + std::string(kSettingsFile));
    ProvideLanguageFile(folder_);
    app_ = std::make_unique<Application>(
        Platform{loop_, port_, shell_, dialogs_, internet_, zip_, FindHelp(shell_.ProgramFolder()),
                 PosixShell::ProgramDate(), &history_, &runner_},
        folder_);
    window_ = std::make_unique<MainWindow>(*app_, loop_);
    app_->commands().on_close = [this] { EndMainLoop(); };
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, window_.get(), [this](QSessionManager& session) {
      session.setRestartHint(QSessionManager::RestartNever);
      EndSilently();
    });
    app_->life().SetCaptions(&window_->captions());
    if (!app_->life().OnWindowCreate(switches_)) return kNotStarted;
    WatchForALostDisplay();
    if (!app_->flags().closing) {
      ShowWindow(is_new);
      QApplication::exec();
    }
    return Finish() ? kClosed : kNotSaved;
  }

  /// Says why the program does not start; where nobody may be there the box closes by itself. **Yields.**
  int Refuse(const std::string& why) {
    std::cerr << Printable(why) << "\n";
    bool answered = false;
    BoxContents contents;
    contents.title = kProductName;
    contents.text = why;
    contents.buttons = {"Ok"};
    contents.icon = BoxIcon::Exclamation;
    std::int64_t left = kRefusalSeconds;
    if (StartsDownload(switches_)) contents.count_down = std::to_string(left);
    const Dialogs::BoxId box = dialogs_.OpenBox(contents, [&answered](int) { answered = true; });
    const auto timer = loop_.MakeTimer([&] {
      answered = answered || --left < 1;
      dialogs_.SetCountDown(box, std::to_string(left));
    });
    if (StartsDownload(switches_)) timer->Start(kMillisecondsASecond);
    while (!answered && !ended_) loop_.Yield();
    dialogs_.CloseBox(box);
    return kNotStarted;
  }

 private:
  /// A signal or the end of the session: the program ends in order, whatever it does, and asks nothing.
  void EndSilently() {
    ended_ = true;
    if (app_) app_->commands().Close(true);
  }

  /// The toolkit ends the process when the display is gone.
  ///
  /// To be called after the settings were loaded: tables that are built at the first use after this are gone by then.
  void WatchForALostDisplay() {
    running_ = this;
    std::atexit([] {
      if (running_ != nullptr) running_->SaveWithoutDisplay();
    });
    // A lost Wayland compositor ends the process without its exit handlers, from a thread of the toolkit.
    OnLostConnection([] {
      const auto save_and_end = [] {
        if (running_ != nullptr) running_->SaveWithoutDisplay();
        std::_Exit(EXIT_FAILURE);
      };
      if (QThread::currentThread() == qApp->thread()) save_and_end();
      QMetaObject::invokeMethod(qApp, save_and_end, Qt::QueuedConnection);
      std::this_thread::sleep_for(kTimeToSave);
    });
  }

  void SaveWithoutDisplay() {
    running_ = nullptr;
    app_->form().SetView(nullptr);
    app_->commands().on_close = nullptr;
    app_->commands().Close(true);
    app_->life().OnWindowClose();
    ReplacementFile::RemoveUnfinished();
  }

  /// Where nothing was set up before and a person is there, the assistant opens by itself.
  void ShowWindow(bool is_new) {
    dialogs_.SetParent(window_.get());
    dialogs_.on_box_closed = [this] { OnBoxClosed(); };
    window_->show();
    loop_.Post([this] { Activate(); });
    if (!is_new || !switches_.empty()) return;
    loop_.Post([this] {
      if (!window_->isMinimized() && !app_->flags().closing) window_->OpenAssistant();
    });
  }

  void OnBoxClosed() {
    // One that arises while an operation or another activation runs is dropped.
    if (!app_->slot().Taken() && !activating_ && !app_->flags().closing) loop_.Post([this] { Activate(); });
  }

  void Activate() {
    if (activating_) return;
    activating_ = true;
    const auto done = qScopeGuard([this] { activating_ = false; });
    app_->life().OnWindowActivate(switches_);
  }

  void EndMainLoop() {
    dialogs_.CloseAll();
    window_->CloseDialogs();
    QCoreApplication::exit();
  }

  /// False when the settings could not be saved.
  bool Finish() {
    dialogs_.on_box_closed = nullptr;
    const bool saved = app_->life().OnWindowClose();
    running_ = nullptr;
    OnLostConnection(nullptr);
    window_.reset();
    return saved;
  }

  std::string switches_;
  std::string folder_;
  QtLoop loop_;
  WindowShell shell_;
  TermiosPort port_;
  QtDialogs dialogs_;
  CurlInternetClient internet_;
  LibzipComponent zip_;
  SqliteHistoryStore history_;
  PosixCommandRunner runner_{loop_, loop_};
  SignalWatch signals_{loop_};
  std::unique_ptr<Application> app_;
  std::unique_ptr<MainWindow> window_;
  bool activating_ = false;
  bool ended_ = false;                        ///< by a signal or the session
  static inline Program* running_ = nullptr;  ///< what the end of the process has to save
};

/// Runs the window in a practice, which goes away with it.
int RunPractice(Options options) {
  PracticeFolder ground(PosixShell("corvane").ProgramFolder());
  const Status begun = BeginPractice(ground, PracticeGround::Station::EndsWithUs, options.home);
  if (!begun.ok()) return Program(options, options.home).Refuse(begun.text());
  const int status = Program(options, options.home).Run();
  if (const Status removed = ground.Remove(options.home); !removed.ok()) {
    std::cerr << "corvane: " << Printable(removed.text()) << "\n";
  }
  return status;
}

}  // namespace

int PrintLanguageTemplate() {
  QtLoop loop;
  PosixShell shell("corvane");
  TermiosPort port(loop, loop);
  QtDialogs dialogs(loop);
  CurlInternetClient internet(loop);
  LibzipComponent zip(loop);
  Application app(Platform{loop, port, shell, dialogs, internet, zip, {}}, shell.ProgramFolder());
  app.BindCommands();
  const MainWindow window(app, loop);
  std::cout << window.captions().LanguageTemplate();
  return kClosed;
}

int RunProgram(const Options& options) {
  try {
    if (options.practise) return RunPractice(options);
    return Program(options, ChooseApplicationFolder(options.home, PosixShell("corvane"))).Run();
  } catch (const RunTimeError& error) {
    std::cerr << "corvane: " << Printable(error.what()) << "\n";
    return kNotStarted;
  } catch (const std::bad_alloc&) {
    std::cerr << "corvane: there is not enough memory\n";
    return kNotSaved;
  }
}

}  // namespace corvane::window
