#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

#include <curl/curl.h>

#include "curl/ftp_task.h"

namespace corvane {

struct FreeList {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

/// All that lasts as long as one run of the channel.
///
/// "Curl's thread" is the one that drives curl and in which its callbacks run: the loop's own, or in encrypted
/// connections that of a step that runs aside. While a step does, the loop's thread touches no member of curl's thread
/// but `data`.
struct RunUnderWay {
  // Written before curl begins.
  const FtpTask& task;
  const std::int64_t began;         ///< monotonic milliseconds, as all times here
  const std::int64_t taken_before;  ///< bytes from the control connection in former runs
  std::unique_ptr<curl_slist, FreeList> commands{};

  // Written by the loop's thread.
  bool ended_early = false;   ///< by a cancel or a limit
  bool connected = false;     ///< was reported
  std::int64_t reported = 0;  ///< bytes
  std::int64_t report_due = 0;
  std::int64_t sign = 0;           ///< what had moved at `last_sign`
  std::int64_t last_sign = began;  ///< when something moved
  std::int64_t stretch_began = 0;  ///< of a transfer, see `FtpLimits::trickle`; 0 before it
  std::int64_t stretch_moved = 0;  ///< bytes at that time

  // Written by curl's thread; `address` by the loop's too, between the steps.
  char error[CURL_ERROR_SIZE] = {};  ///< its own words
  std::string address{};             ///< that is being connected to and was not reported
  bool had_address = false;
  std::int64_t received = 0;     ///< bytes of a download or listing
  std::int64_t parsed = 0;       ///< bytes of replies that curl has read
  bool draining = false;         ///< curl is done with the data connection, the kernel is not
  std::exception_ptr problem{};  ///< thrown in a callback
  std::atomic<curl_socket_t> data = CURL_SOCKET_BAD;
};

}  // namespace corvane
