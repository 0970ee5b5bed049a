#include "rounds/unit_session.h"

#include "base/format.h"
#include "base/numbers.h"
#include "base/status.h"
#include "data/raw_repair.h"

namespace corvane {
namespace {

constexpr std::string_view kStampPattern = "yymmddHHNNSS";

}  // namespace

void UnitSession::ProcessUnit(std::int16_t ai_Command) {
  p_.download.Tally = {};
  p_.link.SendTime.reset();
  try {
    Run(ai_Command);
  } catch (const NoRawFile& error) {
    p_.download.Tally.one_try_only = true;
    FailHere(error.what());
  } catch (const RunTimeError& error) {
    FailHere(error.what());
  }
  p_.capture.SummariseAtClose();
  p_.exchange.SetStateFinished();
  p_.port.EndExchange();
  CloseOutputFile("Finish 'ProcessUnit' - closing output file: ");
  if (ai_Command != kDownload || p_.download.Gap) return;
  if (p_.link.ContinueOk() && !p_.link.HalvexError) p_.keeper.CheckFirstLine();
}

void UnitSession::CloseOutputFile(std::string_view as_Trace) {
  p_.trace.TraceDecision(std::string(as_Trace) + std::to_string(p_.capture.OutputFileNumber()) + " just in case");
  p_.capture.CloseOutputFile();
}

void UnitSession::ReleasePort() {
  p_.capture.CloseOutputFile();
  p_.port.ClearEverything();
  p_.exchange.SetStateFinished();
  p_.port.ClosePort();
}

void UnitSession::FailHere(const std::string& as_Error) {
  p_.link.Fail(as_Error);
  p_.trace.AErrorReport(as_Error);
  p_.trace.Status(as_Error, StatusKind::Error);
}

std::string UnitSession::Caption(std::int16_t ai_Command) const {
  if (ai_Command == kTestBaseStation) return "Test " + p_.form.Cmb_Port[p_.port.LastIndex() == 1 ? 1 : 0].shown_text();
  std::string caption = std::string(CommandOf(ai_Command).name) + ": ";
  if (p_.download.Gap) caption = "Repair: ";
  caption += p_.registry.Units[p_.form.Lst_Units.current() + 1].Name;
  if (p_.download.Gap) return caption;
  const std::string& tries = p_.form.Lbl_Try.text();
  if (LeadingNumber(tries) > 1) caption += " (" + tries + "/" + p_.form.Txt_MaxRetries.text() + ")";
  return caption;
}

void UnitSession::Run(std::int16_t ai_Command) {
  const std::int64_t index = p_.form.Lst_Units.current() + 1;
  if (ai_Command != kTestBaseStation && !p_.registry.Units.Has(index)) throw RunTimeError("Choose a unit");
  const std::string caption = Caption(ai_Command);
  p_.port.ClearBeforeCommand(caption);
  p_.link.OverunCount = 0;
  p_.link.OverunFlag = false;
  p_.trace.Status(caption);
  p_.bars.Unit.SetProcessText(caption);
  p_.bars.Download.SetProcessText(caption);

  const std::string parameters = ai_Command == kDownload ? PrepareDownload() : Parameters(ai_Command);
  if (ai_Command == kDownload && !p_.link.ContinueOk()) return;
  const Unit unit = ai_Command == kTestBaseStation ? Unit() : p_.registry.Units[index];
  p_.exchange.SendCommand(BuildCommandLine(p_.registry, unit, ai_Command, parameters));
  p_.exchange.SetState(ai_Command);
  p_.exchange.WaitForChangeOfState();
}

std::string UnitSession::PrepareDownload() {
  const auto unit = static_cast<std::int32_t>(p_.form.Lst_Units.current() + 1);
  p_.download.HeaderLine.clear();
  p_.download.FramedHeader.clear();
  if (p_.download.Gap) {
    p_.keeper.PrepareGap(unit);
  } else {
    p_.keeper.Prepare(unit);
  }
  const std::string parameters = DownloadParameters(p_.download.LastDate);
  if (!p_.link.ContinueOk()) return parameters;
  p_.download.SavingData = true;
  if (p_.download.LastDate.IsNone()) {
    p_.trace.TraceDecision("Dump all data - parameters: " + parameters);
  } else {
    p_.trace.TraceDecision("Dump data after: " + FormatDate(p_.download.LastDate, "d mmm yyyy HHNN") +
                           " Command: " + parameters);
  }
  return parameters;
}

std::string UnitSession::Parameters(std::int16_t ai_Command) {
  switch (ai_Command) {
    case kSetDate:
      return FormatDate(p_.loop.Now(), kStampPattern);
    case kSetLogPeriod:
      return LogPeriodParameters(p_.form.Cmb_LogPeriod.shown_text());
    case kSetMode:
      return p_.form.Lbl_Mode.text();
    case kSetDelays:
      return p_.form.Txt_Delays.text();
    default:
      return {};
  }
}

}  // namespace corvane
