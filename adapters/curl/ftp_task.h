#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <curl/curl.h>

namespace corvane {

/// The far side of a transfer: where the bytes of an upload come from, or those of a download or listing go.
///
/// Called in the thread that drives curl, which is not always the loop's.
class FtpData {
 public:
  virtual ~FtpData() = default;
  FtpData() = default;
  FtpData(const FtpData&) = delete;
  FtpData& operator=(const FtpData&) = delete;

  /// A run begins: a transfer may be tried again from its start.
  virtual void Begin() {}
  /// Fills the buffer with the next bytes of an upload; below 0 ends it.
  virtual std::ptrdiff_t Read(char* /*buffer*/, std::size_t /*length*/) { return -1; }
  /// Takes the next bytes of a download or listing; false ends it.
  virtual bool Write(std::string_view /*bytes*/) { return false; }
};

/// What one run of the channel does: first the commands, then the transfer if there is one.
struct FtpTask {
  enum class Kind : std::uint8_t {
    Commands,
    Login,
    Examine,  ///< asks for the size of a file
    Upload,
    Download,
    Listing,  ///< of the folder that is current
  };

  Kind kind = Kind::Commands;
  std::string path{};                   ///< of the file, absolute; of a listing: the folder to make current before
  std::vector<std::string> commands{};  ///< one that is refused does not end the run
  std::string list_command{};           ///< instead of LIST
  std::int64_t size = -1;               ///< of the file, where it is known; a download without it asks the server
  std::int64_t milliseconds = 0;        ///< the longest the whole run may take; 0: as long as something moves
  bool told = true;                     ///< the steps of a login are reported
  FtpData* data = nullptr;              ///< of a transfer
};

/// How a run ended.
struct FtpRun {
  CURLcode code = CURLE_FAILED_INIT;
  long os_error = 0;
  bool was_login = false;
  bool had_address = false;  ///< the server's name did resolve
  bool cancelled = false;
  bool timed_out = false;
  bool moved = false;                ///< some bytes of a transfer did move
  std::int64_t announced_size = -1;  ///< of a download, when the server told it
  std::string words;                 ///< curl's own, for failures
};

}  // namespace corvane
