#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "form/form.h"
#include "platform/event_loop.h"
#include "platform/internet_client.h"
#include "transfer/ftp_log.h"

namespace corvane {

/// What the FTP session is moving at the moment.
enum TransferDirection : std::int32_t { kTransferIdle = 0, kDownloading = 3, kUploading = 5 };

/// Counts the bytes of the file that is under way and shows them; the receiver of the client's status reports.
class TransferProgress {
 public:
  TransferProgress(EventLoop& av_Loop, FtpLog& av_Log) : loop_(av_Loop), log_(av_Log) {}

  /// The bar that shows the percentage; must outlive this object.
  void SetProgressBar(ProgressBar& av_Bar) { bar_ = &av_Bar; }
  /// Sets the counters to zero: a session begins.
  void Reset();
  /// A file of `al_Size` bytes begins to move.
  void StartTransfer(std::string_view as_File, std::int64_t al_Size, TransferDirection av_Direction);
  void EndTransfer();
  /// As `EndTransfer`, without a word about the rate.
  void GiveUpTransfer();
  /// Handles one report of the client.
  void OnStatus(const InternetStatus& av_Status);

  [[nodiscard]] TransferDirection Direction() const { return direction_; }
  /// Lines of listings that were left out since the last call.
  [[nodiscard]] std::int64_t TakeSkippedLines() { return std::exchange(skipped_lines_, 0); }

  /// The server's connection is gone; set by the session.
  std::function<void()> connection_closed;

 private:
  void Count(std::int64_t al_Bytes);
  void OnSending(std::int64_t al_Bytes);
  void OnReceived(std::int64_t al_Bytes);
  void ShowRate();
  void ShowProgress();
  [[nodiscard]] std::string ProgressText() const;

  EventLoop& loop_;
  FtpLog& log_;
  ProgressBar* bar_ = nullptr;
  TransferDirection direction_ = kTransferIdle;
  std::string file_;
  std::int64_t size_ = 0;
  std::int64_t bytes_this_session_ = 0;
  std::int64_t bytes_this_transfer_ = 0;
  std::int64_t skipped_lines_ = 0;
  std::int64_t start_ = 0;  ///< monotonic milliseconds
};

/// `as_Prefix`, the time that passed and the bytes per second, such as "Log.zip 00:12 [1,204 bytes/sec]".
///
/// Up to an hour the time is minutes and seconds, beyond it hours too.
[[nodiscard]] std::string RateText(std::string_view as_Prefix, std::int64_t al_Milliseconds, std::int64_t al_Bytes);

}  // namespace corvane
