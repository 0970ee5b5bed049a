#include "transfer/ftp_log.h"

#include "base/files.h"
#include "base/format.h"
#include "base/text.h"

namespace corvane {
FtpLog::FtpLog(EventLoop& av_Loop, const AppInfo& av_App, Trace& av_Trace)
    : loop_(av_Loop), app_(av_App), trace_(av_Trace) {}

void FtpLog::SetTraces(bool ab_FilesSent, bool ab_Status, bool ab_Detail) {
  files_sent_ = ab_FilesSent;
  status_ = ab_Status;
  detail_ = ab_Detail;
}

void FtpLog::ShowStatus(std::string_view as_Text, StatusKind av_Kind) {
  if (label_ != nullptr) {
    label_->SetText(as_Text, av_Kind);
    label_->Repaint();
  }
  LogStatus(as_Text);
}

void FtpLog::LogStatus(std::string_view as_Text) {
  if (status_) Append(as_Text);
}

void FtpLog::LogDetail(std::string_view as_Text) {
  if (detail_) Append(as_Text);
}

void FtpLog::Append(std::string_view as_Text) {
  AppendLine(app_.AppPath("ftp.log"),
             FormatDate(loop_.Now(), "d mmm yyyy HH:NN:SS") + "> " + std::string(as_Text) + std::string(kLineBreak));
}

void FtpLog::LogFileSent(std::string_view as_Source, std::string_view as_Destination) {
  if (!files_sent_) return;
  AppendLine(app_.AppPath("FileSent.Log"), GeneralDate(loop_.Now()) + "," + std::string(as_Source) + ", > ," +
                                               std::string(as_Destination) + std::string(kLineBreak));
}

void FtpLog::AppendLine(const std::string& as_Path, const std::string& as_Line) {
  trace_.GoOver(as_Path);
  OutputFile file;
  // A status line may hold the password.
  Status written = file.OpenForAppending(as_Path, kOwnerOnly);
  if (written.ok()) written = file.Write(as_Line);
  if (!written.ok()) {
    if (missing_ == 0) trace_.LogWrite("The FTP log cannot be written. " + written.text());
    ++missing_;
  } else if (missing_ > 0) {
    trace_.LogWrite("The FTP log is written again, lines that are missing: " + std::to_string(missing_));
    missing_ = 0;
  }
}

}  // namespace corvane
