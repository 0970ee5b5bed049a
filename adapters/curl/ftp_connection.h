#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "curl/ftp_channel.h"
#include "platform/event_loop.h"
#include "platform/internet_client.h"

namespace corvane {

/// The logged-in connection to one server: its login, its features, its folders, and why the last step failed.
///
/// Steps that return bool leave the reason of a failure in `error` and `response`.
class FtpConnection {
 public:
  FtpConnection(EventLoop& loop, const FtpLimits& limits, const bool& cancelled, InternetSession& session,
                FtpLogin login);

  /// Connects, logs in and asks for the server's features. **Yields.**
  [[nodiscard]] bool LogIn();
  /// Runs `task` on a login that works; one that the server has closed is made anew, once. **Yields.**
  ///
  /// False when the run failed; a refused command of the task's is no failure, see `Accepted`.
  [[nodiscard]] bool Perform(const FtpTask& task, FtpRun& run);
  [[nodiscard]] bool Perform(const FtpTask& task);
  /// True when the server took the last command `verb`; else the step has failed with the server's words.
  [[nodiscard]] bool Accepted(const std::string& verb);
  /// Makes `folder` current, a relative one taken from the folder of the login. **Yields.**
  [[nodiscard]] bool EnterFolder(const std::string& folder);
  /// Learns the current folder from the server; asks when something may have led elsewhere since its last word.
  /// **Yields.**
  [[nodiscard]] bool AskFolder();
  /// Runs one command on a name in the current folder. **Yields.**
  [[nodiscard]] bool RunCommand(const std::string& verb, const std::string& name);
  /// Says QUIT and waits a little for the answer. **Yields.**
  void SayGoodbye();

  /// True for a name that may go to the server; else the step has failed.
  [[nodiscard]] bool CheckName(const std::string& name);
  /// The name as the server knows it from anywhere.
  [[nodiscard]] std::string Absolute(const std::string& name) const { return Below(current_folder_, name); }
  [[nodiscard]] const std::string& current_folder() const { return current_folder_; }
  [[nodiscard]] bool has_mlsd() const { return has_mlsd_; }
  [[nodiscard]] bool has_size() const { return has_size_; }
  [[nodiscard]] const Transcript& transcript() const { return channel_.transcript(); }
  void Report(InternetStatusCode code, const std::string& text = "") { session_.Tell(code, text); }

  /// Fails a step; without `words` the server's last reply is what a person gets to see. Always false.
  bool Fail(int error, const std::string& words = "");
  /// Fails a step for a reason of the adapter's own. Always false.
  bool Refuse(const std::string& words) { return Fail(kInternetExtendedError, words); }
  [[nodiscard]] int error() const { return error_; }
  [[nodiscard]] const std::string& response() const { return response_; }
  /// True when the login was lost and could not be made again.
  [[nodiscard]] bool lost() const { return lost_; }

  /// Keeps the size that a file was just told to have for the fetch that follows: no server is asked twice.
  void RememberSize(const std::string& path, std::int64_t size) { sized_path_ = path, sized_as_ = size; }
  /// Gives that size once; -1 when it is not known.
  [[nodiscard]] std::int64_t TakeSize(const std::string& path) {
    return path == sized_path_ ? std::exchange(sized_as_, -1) : -1;
  }

 private:
  [[nodiscard]] static std::string Below(const std::string& folder, const std::string& name);
  [[nodiscard]] bool CheckLogin();
  [[nodiscard]] bool LogInAgain();
  [[nodiscard]] bool RunInFolder(const FtpTask& task, FtpRun& run);
  [[nodiscard]] bool RunOnce(const FtpTask& task, FtpRun& run);
  void ReadFeatures();

  const FtpLimits limits_;
  InternetSession& session_;
  FtpChannel channel_;
  bool has_mlsd_ = false;
  bool has_size_ = false;
  bool has_utf8_ = false;
  bool lost_ = false;
  std::string current_folder_;    ///< that names are taken from
  bool current_is_told_ = false;  ///< in the server's own words
  std::string server_folder_;     ///< that the server is in; empty when that is not known
  std::string sized_path_;
  std::int64_t sized_as_ = -1;
  int error_ = kInternetNoError;
  std::string response_;
};

}  // namespace corvane
