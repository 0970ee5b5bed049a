#include "trace/trace.h"

#include "base/file_numbers.h"
#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"
#include "state/app_info.h"

namespace corvane {
namespace {

constexpr std::int64_t kMostTraceRows = 32000;
constexpr std::int64_t kRetryMilliseconds = 1000;
constexpr double kMegabyte = 1e6;
constexpr int kKeptLogs = 5;

/// Writes the one code above 127 that `Visible` lets through as the character of that code, so that the log is UTF-8.
void EncodeHighCode(std::string& line) {
  for (auto at = line.find('\x80'); at != std::string::npos; at = line.find('\x80', at + 2)) line.insert(at, 1, '\xC2');
}

}  // namespace

Trace::Trace(Form& av_Form, const LinkState& av_Link, EventLoop& av_Loop, Shell& av_Shell)
    : form_(av_Form), link_(av_Link), loop_(av_Loop), shell_(av_Shell) {}

void Trace::SetLogFile(std::string_view as_Path) {
  CloseLog();
  log_path_ = as_Path;
  missing_ = 0;
  next_try_ = 0;
}

void Trace::Status(std::string_view as_Text, StatusKind av_Kind) {
  const std::string line = "Status: " + std::string(as_Text);
  if (form_.Chk_Trace[kTraceStatus].ticked()) {
    LogLine(line, kStatusRow);
  } else {
    TraceDecision(line);
  }
  form_.Lbl_Status.SetText(as_Text, av_Kind);
  form_.Lbl_Status.Repaint();
}

void Trace::ErrorReport(std::string_view as_Where, std::string_view as_Description) {
  SwitchOnAllTrace("Error!", 1);
  LogWrite("Error! " + std::string(as_Where) + " [" + std::string(as_Description) + "]");
  shell_.Beep();
  if (show_message) show_message(std::string(as_Where) + std::string(kLineBreak) + std::string(as_Description));
}

void Trace::AErrorReport(std::string_view as_Text) {
  shell_.Beep();
  SwitchOnAllTrace("A-Error: " + std::string(as_Text), 0);
  LogWrite("A-error: " + std::string(as_Text) + StateDump());
}

std::string Trace::StateDump() const {
  std::string dump = " UserCancel:";
  dump += TrueFalse(link_.UserCancel);
  dump += " Timeout:";
  dump += TrueFalse(link_.Timeout);
  dump += " HalvexError:";
  dump += TrueFalse(link_.HalvexError);
  dump += " State:" + std::to_string(link_.State);
  dump += " OverunCount:" + std::to_string(link_.OverunCount);
  return dump;
}

void Trace::TraceSend(std::string_view as_Text) {
  if (form_.Chk_Trace[kTraceSend].ticked()) LogWrite(as_Text);
}

void Trace::TraceReceive(std::string_view as_Line) {
  if (form_.Chk_Trace[kTraceReceive].ticked()) LogWrite("R>" + Visible(as_Line));
}

void Trace::TraceReceiveDetail(std::string_view as_Text) {
  if (form_.Chk_Trace[kTraceDetail].ticked()) LogWrite("R>" + Visible(as_Text));
}

void Trace::TraceDecision(std::string_view as_Text) {
  if (TracesDecisions()) LogWrite("D>" + StateDump() + std::string(as_Text));
}

void Trace::LogWrite(std::string_view as_Text) {
  LogLine(as_Text, 0);
}

void Trace::LogLine(std::string_view as_Text, std::int64_t al_RowNumber) {
  ShowOnScreen(as_Text, al_RowNumber);
  if (!OpenLog() || !AppendLogLine(as_Text)) ++missing_;
}

void Trace::ShowOnScreen(std::string_view as_Text, std::int64_t al_RowNumber) {
  if (!form_.Chk_ShowTrace.ticked() || !form_.Chk_ShowReply.ticked()) return;
  List& list = form_.Lst_Debug;
  if (list.count() > kMostTraceRows) list.Clear();
  list.Add(Visible(as_Text), al_RowNumber);
  list.SetCurrent(list.count() - 1);
}

bool Trace::OpenLog() {
  if (GoOver(log_path_)) log_.Close();
  if (log_.IsOpen()) return true;
  if (log_path_.empty() || loop_.MonotonicMilliseconds() < next_try_) return false;
  if (const corvane::Status opened = log_.OpenForAppending(log_path_); !opened.ok()) {
    GiveUpLog(opened);
    return false;
  }
  return WriteFirstLines();
}

bool Trace::WriteFirstLines() {
  std::string line(kProductName);
  line += " Version: ";
  line += AppInfo::VersionText();
  version_written_ = version_written_ || (AppendLogLine("============") && AppendLogLine(line));
  if (!version_written_ || missing_ == 0) return version_written_;
  line = "Lines that could not be written here: " + std::to_string(missing_) + ". " + failure_;
  if (!AppendLogLine(line)) return false;
  missing_ = 0;
  return true;
}

void Trace::GiveUpLog(const corvane::Status& av_Failure) {
  log_.Close();
  next_try_ = loop_.MonotonicMilliseconds() + kRetryMilliseconds;
  failure_ = av_Failure.text();
  if (missing_ == 0) form_.Lbl_Status.SetText("The log cannot be written: " + failure_);
}

bool Trace::AppendLogLine(std::string_view as_Text) {
  const DateTime now = loop_.Now();
  if (now != stamp_time_ || stamp_.empty()) {
    stamp_time_ = now;
    stamp_ = GeneralDate(now) + ": ";
  }
  line_ = stamp_;
  AppendVisible(line_, as_Text);
  EncodeHighCode(line_);
  line_ += kLineBreak;
  if (const corvane::Status written = log_.Write(line_); !written.ok()) {
    GiveUpLog(written);
    return false;
  }
  return true;
}

bool Trace::GoOver(const std::string& as_Path) const {
  const double limit = LeadingNumber(form_.LogSize) * kMegabyte;
  if (limit <= 0) return false;
  const auto existing = ExamineFile(as_Path);
  return existing && static_cast<double>(existing->size) >= limit && RotateFile(as_Path, kKeptLogs).ok();
}

void Trace::SwitchOnAllTrace(std::string_view as_Reason, std::int16_t ai_Kind) {
  if (form_.chk_AutoTrace[0].ticked()) {
    form_.Chk_Trace[kTraceStatus].SetTicked(true);
    form_.Chk_Trace[kTraceSend].SetTicked(true);
  }
  if (ai_Kind > 0 && form_.chk_AutoTrace[1].ticked()) form_.Chk_Trace[kTraceReceive].SetTicked(true);
  if (form_.chk_AutoTrace[2].ticked()) {
    form_.Chk_Trace[kTraceDecision].SetTicked(true);
    form_.Chk_Trace[kTraceDetail].SetTicked(true);
  }
  TraceDecision("SwitchOnAllTrace because: " + std::string(as_Reason));
}

void Trace::CloseLog() {
  // The last chance to say what is missing.
  next_try_ = 0;
  if (missing_ > 0) (void)OpenLog();
  log_.Close();
  version_written_ = false;
}

int Trace::LogFileNumber() const {
  return log_.IsOpen() ? kLogFile : kNoFile;
}

}  // namespace corvane
