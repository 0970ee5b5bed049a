#include "rounds/download_round.h"

#include "base/format.h"

namespace corvane {

void DownloadRound::DownloadAllUnits(bool ab_All, std::int16_t ai_Mode) {
  p_.journal.Run(RoundKind::Download, ab_All, [&] { RunMode(ab_All, ai_Mode); });
}

void DownloadRound::RunMode(bool ab_All, std::int16_t ai_Mode) {
  p_.conversion.ResetCounters();
  if (ab_All) {
    for (const std::string& sentence : p_.names.SharedRawFiles(true)) p_.trace.Status(sentence);
  }
  switch (ai_Mode) {
    case kHandHeldUnits:
      return HandHeldRound(ab_All);
    case kRadioUnits:
      return RadioRound(ab_All);
    case kCurrentUnit:
      return CurrentUnitRound();
    default:
      return;
  }
}

void DownloadRound::RadioRound(bool ab_All) {
  p_.sessions.ProcessAllUnits(ab_All, kFromRadio, kDownload);
  if (!p_.link.ContinueOk()) return p_.backup.LeaveOut();
  p_.conversion.ConvertAllUnits(ab_All, kFromRadio, kAny);
  if (p_.link.ContinueOk() && !p_.form.Chk_ManualFTP.ticked()) {
    FetchEverything(ab_All);
    SendEverything(ab_All, kFromRadio);
  }
  if (!p_.link.ContinueOk()) return p_.backup.LeaveOut();
  p_.schedule.RecordDownload();
  p_.backup.DoBackup();
}

void DownloadRound::CollectUnits(const std::vector<std::int64_t>& av_Units,
                                 const std::function<void(std::int64_t)>& av_Select) {
  p_.journal.Run(RoundKind::Download, false, [&] {
    p_.sessions.ProcessUnits(av_Units, kFromRadio, kDownload);
    AfterRepair(av_Units, av_Select);
  });
}

void DownloadRound::AfterRepair(const std::vector<std::int64_t>& av_Units,
                                const std::function<void(std::int64_t)>& av_Select) {
  p_.conversion.ResetCounters();
  for (const std::int64_t unit : av_Units) {
    if (!p_.link.ContinueOk()) return;
    av_Select(unit);
    p_.conversion.ConvertAllUnits(false, kFromRadio, kAny);
    if (!p_.form.Chk_ManualFTP.ticked()) SendEverything(false, kFromRadio);
  }
}

void DownloadRound::HandHeldRound(bool ab_All) {
  p_.sessions.ProcessAllUnits(ab_All, kFromHandHeld, kDownload);
  if (!p_.link.ContinueOk()) return p_.backup.LeaveOut();
  p_.conversion.ConvertAllUnits(ab_All, kFromHandHeld, kAny);
  if (p_.link.ContinueOk() && !p_.form.Chk_ManualFTP.ticked()) SendEverything(ab_All, kFromHandHeld);
  if (!p_.link.ContinueOk()) return p_.backup.LeaveOut();
  p_.backup.DoBackup();
}

void DownloadRound::CurrentUnitRound() {
  p_.sessions.ProcessAllUnits(false, kFromRadio, kDownload);
  if (p_.link.ContinueOk()) p_.sessions.ProcessAllUnits(false, kFromHandHeld, kDownload);
  if (p_.link.ContinueOk() && !p_.form.Chk_ManualFTP.ticked()) FetchEverything(false);
}

void DownloadRound::FetchEverything(bool ab_All) {
  const bool by_ftp = p_.transfers.FetchAllUnits(ab_All, kFromFtp);
  const bool by_web_data = p_.link.ContinueOk() && p_.transfers.FetchAllUnits(ab_All, kFromWebData);
  if (by_ftp) ConvertFetched(ab_All, kFromFtp);
  if (by_web_data) ConvertFetched(ab_All, kFromWebData);
}

void DownloadRound::FetchAndConvert(bool ab_All, std::int32_t al_Source) {
  p_.journal.Run(RoundKind::Fetch, ab_All, [&] {
    if (p_.transfers.FetchAllUnits(ab_All, al_Source)) ConvertFetched(ab_All, al_Source);
  });
}

void DownloadRound::ConvertFetched(bool ab_All, std::int32_t al_Source) {
  const bool raw = p_.form.Opt_WebFileType.GetOptionIndex() == 0;
  if (raw && p_.link.ContinueOk()) p_.conversion.ConvertAllUnits(ab_All, al_Source, kAny);
}

void DownloadRound::SendEverything(bool ab_All, std::int32_t al_GetFrom) {
  if (!p_.link.ContinueOk()) return;
  p_.transfers.ftpAllUnits(ab_All, al_GetFrom, kToFtp);
  if (p_.link.ContinueOk()) p_.transfers.ftpAllUnits(ab_All, al_GetFrom, kToWebData);
}

}  // namespace corvane
