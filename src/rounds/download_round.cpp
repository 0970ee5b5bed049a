#include "rounds/download_round.h"

#include "base/format.h"

namespace corvane {
namespace {

constexpr std::int32_t kAnyClient = -1;

}  // namespace

DownloadRound::DownloadRound(Form& av_Form, const LinkState& av_Link, EventLoop& av_Loop, Sessions& av_Sessions,
                             BatchConversion& av_Conversion, TransferFlows& av_Flows, Schedule& av_Schedule)
    : form_(av_Form),
      link_(av_Link),
      loop_(av_Loop),
      sessions_(av_Sessions),
      conversion_(av_Conversion),
      flows_(av_Flows),
      schedule_(av_Schedule) {}

void DownloadRound::DownloadAllUnits(bool ab_All, std::int16_t ai_Mode) {
  conversion_.ResetCounters();
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
  sessions_.ProcessAllUnits(ab_All, kFromRadio, kDownload);
  if (!link_.ContinueOk()) return flows_.LeaveBackupOut();
  conversion_.ConvertAllUnits(ab_All, kFromRadio, kAnyClient);
  if (link_.ContinueOk() && !form_.Chk_ManualFTP.ticked()) {
    FetchEverything(ab_All);
    SendEverything(ab_All, kFromRadio);
  }
  if (!link_.ContinueOk()) return flows_.LeaveBackupOut();
  form_.Lbl_LastDownload.SetText(FormatDate(loop_.Now(), kShownDatePattern));
  schedule_.CalculateNextDownload();
  flows_.DoBackup();
}

void DownloadRound::HandHeldRound(bool ab_All) {
  sessions_.ProcessAllUnits(ab_All, kFromHandHeld, kDownload);
  if (!link_.ContinueOk()) return flows_.LeaveBackupOut();
  conversion_.ConvertAllUnits(ab_All, kFromHandHeld, kAnyClient);
  if (link_.ContinueOk() && !form_.Chk_ManualFTP.ticked()) SendEverything(ab_All, kFromHandHeld);
  if (!link_.ContinueOk()) return flows_.LeaveBackupOut();
  flows_.DoBackup();
}

void DownloadRound::CurrentUnitRound() {
  sessions_.ProcessAllUnits(false, kFromRadio, kDownload);
  if (link_.ContinueOk()) sessions_.ProcessAllUnits(false, kFromHandHeld, kDownload);
  if (link_.ContinueOk() && !form_.Chk_ManualFTP.ticked()) FetchEverything(false);
}

void DownloadRound::FetchEverything(bool ab_All) {
  const bool by_ftp = flows_.FetchAllUnits(ab_All, kFromFtp);
  const bool by_web_data = link_.ContinueOk() && flows_.FetchAllUnits(ab_All, kFromWebData);
  if (by_ftp) ConvertFetched(ab_All, kFromFtp);
  if (by_web_data) ConvertFetched(ab_All, kFromWebData);
}

void DownloadRound::FetchAndConvert(bool ab_All, std::int32_t al_Source) {
  if (flows_.FetchAllUnits(ab_All, al_Source)) ConvertFetched(ab_All, al_Source);
}

void DownloadRound::ConvertFetched(bool ab_All, std::int32_t al_Source) {
  const bool raw = form_.Opt_WebFileType.GetOptionIndex() == 0;
  if (raw && link_.ContinueOk()) conversion_.ConvertAllUnits(ab_All, al_Source, kAnyClient);
}

void DownloadRound::SendEverything(bool ab_All, std::int32_t al_GetFrom) {
  if (!link_.ContinueOk()) return;
  flows_.ftpAllUnits(ab_All, al_GetFrom, kToFtp);
  if (link_.ContinueOk()) flows_.ftpAllUnits(ab_All, al_GetFrom, kToWebData);
}

}  // namespace corvane
