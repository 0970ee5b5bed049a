#pragma once

#include <string>

#include "form/form.h"
#include "rounds/file_results.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "transfer/my_ftp.h"
#include "transfer/remote_browser.h"
#include "ui/messages.h"

namespace corvane {

/// Sends the page for a browser behind the units' files, where the setting `PageSend` is on.
class PageSender {
 public:
  /// All must outlive this object.
  struct Parts {
    Form& form;
    const LinkState& link;
    const RunFlags& flags;
    RemoteBrowser& browser;
    MyFTP& ftp;
    const FileResults& results;
    Messages& messages;
    Trace& trace;
  };
  explicit PageSender(const Parts& av_Parts) : p_(av_Parts) {}

  /// Sends a file into the folder on the server in which the client folders lie, under its own name. **Yields.**
  ///
  /// Tried once, without a box; a failure is one line in the log and no problem of the round. Left out where the round
  /// was cancelled, sends nothing by itself or could not reach the server.
  void Send(const std::string& as_File);

 private:
  /// A file of the round could not be sent, and no connection is left.
  [[nodiscard]] bool ServerIsAway() const;

  Parts p_;
};

}  // namespace corvane
