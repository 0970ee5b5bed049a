#pragma once

#include <memory>
#include <string>

#include "app/settings.h"
#include "app/settings_store.h"
#include "form/form.h"
#include "platform/event_loop.h"
#include "state/operation_slot.h"
#include "state/run_flags.h"
#include "trace/trace.h"

namespace corvane {

/// Keeps beside the settings file what was entered since it was read: the file itself is written at the close only.
class RecoveryCopy {
 public:
  /// What is watched and written; all must outlive this object.
  struct Parts {
    Form& form;
    const RunFlags& flags;
    const OperationSlot& slot;
    Settings& settings;
    SettingsStore& store;
    Trace& trace;
    EventLoop& loop;
  };
  explicit RecoveryCopy(const Parts& av_Parts) : p_(av_Parts) {}
  ~RecoveryCopy() { Stop(); }
  RecoveryCopy(const RecoveryCopy&) = delete;
  RecoveryCopy& operator=(const RecoveryCopy&) = delete;

  /// Watches the settings from now on: two seconds behind an edit they are written. Called once they are loaded.
  void Begin();
  /// Writes what an operation has changed; does nothing before `Begin`.
  void AfterRound();
  /// Ends the watch; a copy that is offered stays so when nothing was entered since `Begin`.
  void End();

 private:
  void OnChange(const Control& av_Control, Aspect av_Aspect);
  void OnTimer();
  void Stop();
  /// The settings as they would be saved, without what changes by itself.
  [[nodiscard]] std::string Present();
  void Write();

  Parts p_;
  std::unique_ptr<Timer> timer_;  ///< none outside the watch
  bool waits_ = false;            ///< an edit is to be written
  bool failed_ = false;           ///< the last copy could not be written, which was logged
  std::string kept_;              ///< `Present` of what the file, or the copy, holds
  std::string entered_;           ///< `Present` at `Begin`, without the last download
};

}  // namespace corvane
