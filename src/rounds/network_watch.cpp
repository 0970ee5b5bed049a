#include "rounds/network_watch.h"

#include "base/format.h"
#include "link/schedule.h"

namespace corvane {
namespace {

constexpr std::int64_t kLook = 60'000;   ///< milliseconds
constexpr std::int64_t kSayAlive = 900;  ///< seconds

bool SaysTheSame(const NetworkRecord& av_One, const NetworkRecord& av_Other) {
  return av_One.version == av_Other.version && av_One.automatic == av_Other.automatic &&
         av_One.interval == av_Other.interval && av_One.next_download == av_Other.next_download &&
         av_One.goes_on == av_Other.goes_on && av_One.late_after == av_Other.late_after &&
         av_One.battery_limit == av_Other.battery_limit && av_One.repairs_gaps == av_Other.repairs_gaps &&
         av_One.repair_limit == av_Other.repair_limit;
}

}  // namespace

void NetworkWatch::Open() {
  p_.history.Open(p_.app.Folder());
  if (!p_.history.Kept()) return;
  timer_ = p_.loop.MakeTimer([this] { Look(); });
  timer_->Start(kLook);
  Write();
}

NetworkRecord NetworkWatch::Present(const NetworkSettings& av_Settings) const {
  NetworkRecord record;
  record.version = AppInfo::VersionText();
  record.automatic = p_.form.Chk_Automatic.ticked();
  record.interval = AutomaticInterval(p_.form.Txt_AutomaticInterval.text());
  record.next_download = ParseDate(p_.form.Lbl_NextDownload.text()).value_or(DateTime());
  record.goes_on = GoesOn(p_.form, p_.flags);
  record.late_after = av_Settings.late_after;
  record.battery_limit = av_Settings.battery_limit;
  record.repairs_gaps = av_Settings.repairs_gaps;
  record.repair_limit = av_Settings.repair_limit;
  record.alive = p_.loop.NowUtc();
  record.open = true;
  return record;
}

void NetworkWatch::Write() {
  if (timer_ == nullptr) return;
  written_ = Present(ReadNetworkSettings(p_.form));
  p_.history.NoteNetwork(written_);
}

void NetworkWatch::Look() {
  const bool between_rounds = p_.history.Round().key == 0;
  if (between_rounds) p_.history.FollowUnits();
  const NetworkSettings settings = ReadNetworkSettings(p_.form);
  const NetworkRecord present = Present(settings);
  if (!SaysTheSame(present, written_) || present.alive - written_.alive >= kSayAlive) {
    written_ = present;
    p_.history.NoteNetwork(written_);
  } else {
    p_.history.Flush();
  }
  if (between_rounds) p_.history.ForgetBefore(settings.history_years);
}

void NetworkWatch::Close() {
  if (timer_ == nullptr) return;
  timer_.reset();
  p_.history.FollowUnits();
  const NetworkSettings settings = ReadNetworkSettings(p_.form);
  // Programs that run for a round only never look.
  p_.history.ForgetBefore(settings.history_years);
  written_ = Present(settings);
  written_.open = false;
  p_.history.NoteNetwork(written_);
  p_.history.Close();
}

}  // namespace corvane
