// An FTP client that holds one logged-in control connection.
//
// Everything runs in the loop's thread. Calls marked **Yields** wait for the network: they run the loop meanwhile and
// end by themselves when the server is silent for too long. Status reports arrive only while such a call runs, in the
// loop's thread; a handler must not call back into the client, except for `Cancel`. What a handler throws ends the call
// and is thrown from it; the next call works.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "base/dates.h"

namespace corvane {

/// A session, a connection, or a search; 0 is none.
using InternetHandle = std::int64_t;

/// Error numbers that callers branch on; the texts of all of them are the FTP session's.
enum InternetError : int {
  kInternetNoError = 0,
  kInternetTimeout = 12002,
  kInternetExtendedError = 12003,  ///< refused by the server, or by the adapter: `InternetGetLastResponseInfo` says why
  kInternetInvalidUrl = 12005,
  kInternetNameNotResolved = 12007,
  kInternetWrongUserName = 12013,
  kInternetWrongPassword = 12014,
  kInternetLoginFailure = 12015,
  kInternetCancelled = 12017,
  kInternetWrongHandleType = 12018,
  kInternetCannotConnect = 12029,
  kInternetConnectionAborted = 12030,
  kInternetConnectionReset = 12031,
};

/// Codes of the status reports.
enum InternetStatusCode : int {
  kResolvingName = 10,
  kNameResolved = 11,
  kConnectingToServer = 20,
  kConnectedToServer = 21,
  kSendingRequest = 30,  ///< bytes of an upload that went out since the last report
  kRequestSent = 31,     ///< an upload is out; carries 0 bytes
  kReceivingResponse = 40,
  kResponseReceived = 41,  ///< bytes of a download that came in since the last report
  kClosingConnection = 50,
  kConnectionClosed = 51,  ///< the control connection is gone and could not be made again: both handles are void
  kHandleCreated = 60,     ///< a transfer begins
  kHandleClosing = 70,     ///< a transfer ended, whatever way
  kDetectingProxy = 80,
  kStateChange = 200,
  kListingLineSkipped = 1000,  ///< a line of a listing that nobody can read, at most 100 of one listing
  kStoreUnconfirmed = 1001,    ///< a file was stored, but the server did not tell its size
};

struct InternetStatus {
  InternetHandle handle = 0;
  int code = 0;
  std::string text;        ///< the server's name or address for codes 10 to 21, from 1000 on the line or file and reply
  std::int64_t bytes = 0;  ///< for codes 30, 31 and 41
};

/// Where and how to log in.
struct FtpLogin {
  std::string host;  ///< name or address, without port
  std::int32_t port = 21;
  std::string user;
  std::string password;
  bool encrypted = false;   ///< explicit TLS for commands and data, certificate checked; never clear text instead
  std::string certificate;  ///< full path of a file of CA certificates; empty: those of the system
};

/// One entry of a remote folder.
struct FindRecord {
  std::string name;  ///< bare, the bytes that the server sent
  bool is_folder = false;
  std::int64_t size = 0;  ///< bytes
  // Local time; none where the server does not tell.
  DateTime created;
  DateTime last_accessed;
  DateTime last_written;
};

enum class FindPurpose : std::uint8_t {
  Listing,  ///< all entries of a folder that match a pattern; asked of the server anew
  OneFile,  ///< is this one file there, and how big is it
};

class InternetClient {
 public:
  using StatusHandler = std::function<void(const InternetStatus&)>;
  static constexpr std::int64_t kInvalidCallback = -1;

  virtual ~InternetClient() = default;
  InternetClient() = default;
  InternetClient(const InternetClient&) = delete;
  InternetClient& operator=(const InternetClient&) = delete;

  /// Makes a session; 0 on failure. At most one exists: a former one is closed without ceremony.
  virtual InternetHandle InternetOpen(const std::string& agent) = 0;
  /// Sets the receiver of the status reports (none: an empty function). Returns 0, or `kInvalidCallback` on failure.
  virtual std::int64_t InternetSetStatusCallback(InternetHandle session, StatusHandler handler) = 0;
  /// Connects and logs in, passive mode, binary transfers; 0 on failure. **Yields.**
  virtual InternetHandle InternetConnect(InternetHandle session, const FtpLogin& login) = 0;

  /// Makes `folder` current; a relative one is taken from the folder of the login, not from the current one.
  /// **Yields.**
  [[nodiscard]] virtual bool FtpSetCurrentDirectory(InternetHandle connection, const std::string& folder) = 0;
  /// The server's current folder; asked for unless its last word about it still holds. **Yields.**
  [[nodiscard]] virtual bool FtpGetCurrentDirectory(InternetHandle connection, std::string& folder) = 0;
  /// Stores the file `local` (a full path) as `remote`, a name in or below the current folder, or absolute; fails when
  /// the server then tells another size. **Yields.**
  [[nodiscard]] virtual bool FtpPutFile(InternetHandle connection, const std::string& local,
                                        const std::string& remote) = 0;
  /// Fetches `remote`, of at most `limit` bytes; `local` is written under another name and replaced only when all of it
  /// has come. **Yields.**
  [[nodiscard]] virtual bool FtpGetFile(InternetHandle connection, const std::string& remote, const std::string& local,
                                        std::int64_t limit) = 0;
  /// Looks up `path`: the handle of a search and its first entry in `record`, or 0. **Yields.**
  ///
  /// For a listing `path` is "<folder>/<pattern>" ("*.*" is everything). 0 with `kInternetNoError` means that nothing
  /// matches; for one file that is not there the error is `kInternetExtendedError` with the server's words.
  [[nodiscard]] virtual InternetHandle FtpFindFirstFile(InternetHandle connection, const std::string& path,
                                                        FindPurpose purpose, FindRecord& record) = 0;
  /// The next entry of a search; false when there is none.
  [[nodiscard]] virtual bool InternetFindNextFile(InternetHandle find, FindRecord& record) = 0;
  /// **Yields.**
  [[nodiscard]] virtual bool FtpCreateDirectory(InternetHandle connection, const std::string& folder) = 0;
  /// **Yields.**
  [[nodiscard]] virtual bool FtpRemoveDirectory(InternetHandle connection, const std::string& folder) = 0;
  /// **Yields.**
  [[nodiscard]] virtual bool FtpDeleteFile(InternetHandle connection, const std::string& file) = 0;

  /// Closes a search, a connection (saying good-bye, at most for a second: **Yields**) or a session with all it holds.
  virtual void InternetCloseHandle(InternetHandle handle) = 0;

  /// Why the last call failed (see `InternetError`); `kInternetNoError` after a success.
  [[nodiscard]] virtual int GetLastError() const = 0;
  /// The server's last reply without its number, lines joined by CR LF; after an error of the adapter its own words.
  [[nodiscard]] virtual std::string InternetGetLastResponseInfo() const = 0;
  /// Makes the call that runs end with `kInternetCancelled`, within a second; does nothing when none runs.
  virtual void Cancel() = 0;
};

}  // namespace corvane
