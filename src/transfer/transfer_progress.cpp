#include "transfer/transfer_progress.h"

#include <algorithm>
#include <array>

#include "base/format.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::int64_t kSecondsPerHour = 3600;
// States that a state change is shown for; the report carries the state as its number.
constexpr std::int64_t kStateDisconnected = 2;
constexpr std::int64_t kStateBusy = 16;

struct CodeRow {
  int code;
  std::string_view name;
};
constexpr std::array kCodeNames = {
    CodeRow{kResolvingName, "resolving name"},
    CodeRow{kNameResolved, "name resolved"},
    CodeRow{kConnectingToServer, "connecting"},
    CodeRow{kConnectedToServer, "connected"},
    CodeRow{kSendingRequest, "sending"},
    CodeRow{kRequestSent, "sent"},
    CodeRow{kReceivingResponse, "receiving"},
    CodeRow{kResponseReceived, "received"},
    CodeRow{kClosingConnection, "closing connection"},
    CodeRow{kConnectionClosed, "connection closed"},
    CodeRow{kHandleCreated, "handle created"},
    CodeRow{kHandleClosing, "handle closing"},
    CodeRow{kDetectingProxy, "detecting proxy"},
    CodeRow{kStateChange, "state change"},
    CodeRow{kListingLineSkipped, "line left out"},
    CodeRow{kStoreUnconfirmed, "store unconfirmed"},
};

std::string_view CodeName(int code) {
  const auto* row =
      std::find_if(kCodeNames.begin(), kCodeNames.end(), [code](const CodeRow& each) { return each.code == code; });
  return row == kCodeNames.end() ? "other" : row->name;
}

}  // namespace

std::string RateText(std::string_view as_Prefix, std::int64_t al_Milliseconds, std::int64_t al_Bytes) {
  const std::int64_t seconds = al_Milliseconds / 1000;
  const double rate =
      al_Milliseconds > 0 ? 1000.0 * static_cast<double>(al_Bytes) / static_cast<double>(al_Milliseconds) : 0;
  const std::string elapsed = seconds > kSecondsPerHour
                                  ? DurationText(seconds, true)
                                  : ZeroPadded(seconds / 60 % 60, 2) + ":" + ZeroPadded(seconds % 60, 2);
  return std::string(as_Prefix) + elapsed + " [" + GroupedText(rate) + " bytes/sec]";
}

void TransferProgress::Reset() {
  bytes_this_session_ = 0;
  bytes_this_transfer_ = 0;
}

void TransferProgress::StartTransfer(std::string_view as_File, std::int64_t al_Size, TransferDirection av_Direction) {
  file_ = as_File;
  size_ = al_Size;
  direction_ = av_Direction;
  bytes_this_transfer_ = 0;
  start_ = loop_.MonotonicMilliseconds();
  log_.LogDetail("Start transfer " + GeneralDate(loop_.Now()));
  if (bar_ == nullptr) return;
  bar_->SetRange(0, 100);
  bar_->SetVisible(true);
}

void TransferProgress::EndTransfer() {
  ShowRate();
  GiveUpTransfer();
}

void TransferProgress::GiveUpTransfer() {
  if (bar_ != nullptr) bar_->SetValue(bar_->minimum());
  direction_ = kTransferIdle;
}

void TransferProgress::OnStatus(const InternetStatus& av_Status) {
  log_.LogDetail("StatusChange:" + std::string(CodeName(av_Status.code)) + " Status:" + std::to_string(av_Status.code) +
                 " hInternet:" + std::to_string(av_Status.handle));
  switch (av_Status.code) {
    case 0:
    case 1:
    case kConnectingToServer:
    case kConnectedToServer:
      return log_.ShowStatus(av_Status.text);
    case kResolvingName:
      // Intended: operators know the search for the server's address by these words.
      return log_.ShowStatus("HTTP request redirected to " + av_Status.text);
    case kSendingRequest:
      return OnSending(av_Status.bytes);
    case kRequestSent:
      log_.LogDetail("Request sent: " + std::to_string(av_Status.bytes) + " bytes");
      return Count(av_Status.bytes);
    case kResponseReceived:
      return OnReceived(av_Status.bytes);
    case kClosingConnection:
      return log_.ShowStatus("Closing connection");
    case kConnectionClosed:
      log_.ShowStatus("Connection closed");
      if (connection_closed) connection_closed();
      return;
    case kListingLineSkipped:
      ++skipped_lines_;
      return log_.Append("Line of the listing left out, it is not understood: " + Visible(av_Status.text));
    case kStoreUnconfirmed:
      return log_.Append("Sent, the server does not tell whether all of it is there: " + Visible(av_Status.text));
    case kHandleCreated:
      return log_.LogDetail("Handle created: " + std::to_string(av_Status.handle));
    case kHandleClosing:
      if (direction_ == kDownloading) log_.LogDetail("Download complete: ");
      if (direction_ == kUploading) log_.LogDetail("Upload complete: ");
      direction_ = kTransferIdle;
      return;
    case kDetectingProxy:
      log_.LogDetail("Detecting proxy");
      return log_.ShowStatus("Detecting proxy");
    case kStateChange:
      log_.LogDetail(av_Status.text);
      if (av_Status.bytes == kStateDisconnected || av_Status.bytes == kStateBusy) log_.ShowStatus(av_Status.text);
      return;
    default:
      return;
  }
}

void TransferProgress::Count(std::int64_t al_Bytes) {
  bytes_this_session_ += al_Bytes;
  bytes_this_transfer_ += al_Bytes;
}

void TransferProgress::OnSending(std::int64_t al_Bytes) {
  Count(al_Bytes);
  if (direction_ == kTransferIdle) {
    return log_.LogDetail("ISSR Sending request: " + std::to_string(al_Bytes) + " bytes");
  }
  log_.LogDetail((direction_ == kDownloading ? "ISSR Downloading   " : "ISSR Uploading   ") + ProgressText());
  ShowProgress();
}

void TransferProgress::OnReceived(std::int64_t al_Bytes) {
  Count(al_Bytes);
  if (direction_ == kTransferIdle) {
    return log_.LogDetail("Response received (not up/down): " + std::to_string(al_Bytes) +
                          " bytes  CurrentState: " + std::to_string(direction_));
  }
  log_.LogDetail((direction_ == kDownloading ? "Downloading " : "Uploading ") + ProgressText());
  ShowProgress();
}

std::string TransferProgress::ProgressText() const {
  return std::to_string(bytes_this_transfer_) + " of " + std::to_string(size_);
}

void TransferProgress::ShowRate() {
  const std::int64_t elapsed = loop_.MonotonicMilliseconds() - start_;
  log_.ShowStatus(RateText(std::string(FileNameOf(file_)) + " ", elapsed, bytes_this_transfer_), StatusKind::Detail);
}

void TransferProgress::ShowProgress() {
  ShowRate();
  if (size_ <= 0) return log_.Append("filesize=0");
  if (bar_ == nullptr) return;
  const double percent = 100.0 * static_cast<double>(bytes_this_transfer_) / static_cast<double>(size_);
  if (percent < 100) bar_->SetValue(percent);
}

}  // namespace corvane
