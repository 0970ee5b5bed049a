#pragma once

#include <optional>
#include <string>

#include "base/status.h"
#include "form/form.h"
#include "history/history.h"
#include "history/network_status.h"
#include "platform/event_loop.h"
#include "state/app_info.h"
#include "state/file_names.h"
#include "state/records.h"
#include "trace/trace.h"

namespace corvane {

/// A page that was written.
struct WrittenPage {
  std::string file;
  bool behind_files = false;  ///< the last round was one that sends files
};

/// Writes the page behind each round, where the setting `PageFolder` names a folder; else it does nothing.
class PageKeeper {
 public:
  /// All must outlive this object.
  struct Parts {
    const Form& form;
    const Registry& registry;
    const FileNames& names;
    const AppInfo& app;
    History& history;
    EventLoop& loop;
    Trace& trace;
  };
  explicit PageKeeper(const Parts& av_Parts) : p_(av_Parts) {}

  /// Whether there is a folder.
  [[nodiscard]] bool SwitchedOn() const;
  /// Writes the page of a network that stands so; none when it could not be written, which has been told.
  /// **Yields**: raw files are read, and the page written, aside.
  std::optional<WrittenPage> Write(const NetworkStatus& av_Status);

 private:
  Status WriteInto(const std::string& as_Folder, const NetworkStatus& av_Status, WrittenPage& av_Page);

  Parts p_;
};

}  // namespace corvane
