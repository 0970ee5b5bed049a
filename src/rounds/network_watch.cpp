#include "rounds/network_watch.h"

#include "base/format.h"
#include "history/network_settings.h"
#include "link/schedule.h"

namespace corvane {
namespace {

constexpr std::int64_t kLook = 60'000;   ///< milliseconds
constexpr std::int64_t kSayAlive = 600;  ///< seconds

bool SaysTheSame(const NetworkRecord& av_One, const NetworkRecord& av_Other) {
  return av_One.version == av_Other.version && av_One.automatic == av_Other.automatic &&
         av_One.interval == av_Other.interval && av_One.next_download == av_Other.next_download &&
         av_One.goes_on == av_Other.goes_on && av_One.late_after == av_Other.late_after &&
         av_One.battery_limit == av_Other.battery_limit && av_One.repairs_gaps == av_Other.repairs_gaps;
}

}  // namespace

void NetworkWatch::Open() {
  p_.history.Open(p_.app.Folder());
  if (!p_.history.Kept()) return;
  timer_ = p_.loop.MakeTimer([this] { Look(); });
  timer_->Start(kLook);
  Write();
}

NetworkRecord NetworkWatch::Present() const {
  const NetworkSettings settings = ReadNetworkSettings(p_.form);
  NetworkRecord record;
  record.version = AppInfo::VersionText();
  record.automatic = p_.form.Chk_Automatic.ticked();
  record.interval = AutomaticInterval(p_.form.Txt_AutomaticInterval.text());
  record.next_download = ParseDate(p_.form.Lbl_NextDownload.text()).value_or(DateTime());
  record.goes_on = GoesOn(p_.form, p_.flags);
  record.late_after = settings.late_after;
  record.battery_limit = settings.battery_limit;
  record.repairs_gaps = settings.repairs_gaps;
  record.alive = p_.loop.NowUtc();
  record.open = true;
  return record;
}

void NetworkWatch::Write() {
  if (timer_ == nullptr) return;
  written_ = Present();
  p_.history.NoteNetwork(written_);
}

void NetworkWatch::Look() {
  if (p_.history.Round().key == 0) p_.history.FollowUnits();
  const NetworkRecord present = Present();
  if (!SaysTheSame(present, written_) || present.alive - written_.alive >= kSayAlive) {
    Write();
  } else {
    p_.history.Flush();
  }
  if (p_.history.Round().key == 0) p_.history.ForgetBefore(ReadNetworkSettings(p_.form).history_years);
}

void NetworkWatch::Close() {
  if (timer_ == nullptr) return;
  timer_.reset();
  p_.history.FollowUnits();
  // Programs that run for a round only never look.
  p_.history.ForgetBefore(ReadNetworkSettings(p_.form).history_years);
  written_ = Present();
  written_.open = false;
  p_.history.NoteNetwork(written_);
  p_.history.Close();
}

}  // namespace corvane
