#pragma once

#include <memory>
#include <optional>
#include <string>

#include "form/form.h"
#include "history/history.h"
#include "history/network_settings.h"
#include "platform/event_loop.h"
#include "platform/history_records.h"
#include "state/app_info.h"
#include "state/run_flags.h"

namespace corvane {

/// Keeps what the history says of the settings, and that somebody holds the folder, up to date while the program runs.
class NetworkWatch {
 public:
  /// All must outlive this object.
  struct Parts {
    const Form& form;
    const RunFlags& flags;
    const AppInfo& app;
    History& history;
    EventLoop& loop;
  };
  explicit NetworkWatch(const Parts& av_Parts) : p_(av_Parts) {}
  ~NetworkWatch() { Close(); }
  NetworkWatch(const NetworkWatch&) = delete;
  NetworkWatch& operator=(const NetworkWatch&) = delete;

  /// Opens the history of the application folder and looks at the settings every minute from now on.
  void Open();
  /// Writes how things stand now.
  void Write();
  /// Closes the history: nobody holds the folder any more.
  void Close();

 private:
  /// Writes what has changed since the last look, and every few minutes that the program is alive.
  void Look();
  [[nodiscard]] NetworkRecord Present(const NetworkSettings& av_Settings) const;

  Parts p_;
  std::unique_ptr<Timer> timer_;  ///< none while no history is kept
  NetworkRecord written_;
};

}  // namespace corvane
