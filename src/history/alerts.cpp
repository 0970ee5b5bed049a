#include "history/alerts.h"

#include <string_view>
#include <utility>

#include "base/text.h"
#include "history/alert_message.h"
#include "history/network_settings.h"

namespace corvane {
namespace {

constexpr std::int64_t kSeconds = 60;                  ///< that a command may take
constexpr std::int64_t kLookMilliseconds = 3'600'000;  ///< between two looks without a round
constexpr std::int64_t kHoldMilliseconds = 3'600'000;  ///< behind a command that failed, without a round
constexpr std::int64_t kJustNow = 600;                 ///< seconds behind a round's end
constexpr std::size_t kLinesInLog = 50;

/// How a command failed; empty when it did not.
std::string WhyFailed(const CommandEnding& ending) {
  if (!ending.status.ok()) return ending.status.text();
  return ending.exit_code == 0 ? "" : "exit status " + std::to_string(ending.exit_code);
}

}  // namespace

Alerts::~Alerts() {
  if (p_.runner != nullptr && p_.runner->Running()) p_.runner->Stop();
}

bool Alerts::SwitchedOn() const {
  return p_.runner != nullptr && !Trim(p_.form.Txt_AlertCommand.text()).empty();
}

void Alerts::AfterRound(const NetworkStatus& av_Status) {
  if (!SwitchedOn()) return;
  held_ = false;
  LookAt(av_Status, true);
}

void Alerts::AfterRoundInTheDark() {
  if (!SwitchedOn()) return;
  held_ = false;
  NetworkStatus status;
  status.now = p_.loop.NowUtc();
  status.sentence = "How the network stands is not known";
  LookAt(status, false);
}

void Alerts::OnHeartbeat() {
  if (!SwitchedOn() || p_.runner->Running()) return;
  const std::int64_t now = p_.loop.MonotonicMilliseconds();
  if (now < next_look_ && !DigestIsDueNow()) return;
  next_look_ = now + kLookMilliseconds;
  held_ = false;
  const auto status = work_out_status();
  if (!status) return;
  // A round of a former run is no news.
  if (last_round_ == kNoRound) last_round_ = status->last.key;
  LookAt(*status, true);
}

bool Alerts::DigestIsDueNow() const {
  if (!read_ || held_ || p_.form.Txt_DigestAt.text().empty()) return false;
  return DigestIsDue(standing_, ReadNetworkSettings(p_.form).digest_at, p_.loop.NowUtc());
}

bool Alerts::RoundHasEnded(const NetworkStatus& av_Status) const {
  const RoundRecord& round = av_Status.last;
  if (round.key == last_round_ || round.ended.IsNone()) return false;
  return last_round_ != kNoRound || av_Status.now - round.ended <= kJustNow;
}

void Alerts::LookAt(const NetworkStatus& av_Status, bool ab_Known) {
  if (p_.runner->Running()) {
    waiting_ = av_Status;
    waiting_is_known_ = ab_Known;
    return;
  }
  if (ab_Known && !std::exchange(read_, true)) ReadStanding();
  const AlertView view{av_Status, history_problem(),        ReadNetworkSettings(p_.form).digest_at,
                       ab_Known,  RoundHasEnded(av_Status), perhaps_told_};
  if (ab_Known) last_round_ = av_Status.last.key;
  AlertStep step = LookAtAlerts(standing_, view);
  const std::vector<AlertEvent> events = std::move(step.events);
  Take(std::move(step));
  if (!events.empty()) Tell(events, av_Status);
}

void Alerts::ReadStanding() {
  standing_ = read_records();
  for (const AlertRecord& record : standing_) {
    if (record.told.IsNone()) perhaps_told_.insert(KeyOf(record));
  }
}

void Alerts::Take(AlertStep&& av_Step) {
  standing_ = std::move(av_Step.standing);
  if (!av_Step.changed.empty()) write_records(av_Step.changed);
}

void Alerts::Tell(const std::vector<AlertEvent>& av_Events, const NetworkStatus& av_Status) {
  for (const AlertEvent& event : av_Events) told_.insert(told_.end(), event.records.begin(), event.records.end());
  p_.trace.LogWrite("Alert: " + AlertSubject(av_Events));
  p_.runner->Start(ReadNetworkSettings(p_.form).alert_command, AlertMessage(av_Events, av_Status), kSeconds,
                   [this](const CommandEnding& ending) { OnEnd(ending); });
}

void Alerts::OnEnd(const CommandEnding& av_Ending) {
  LogOutput(av_Ending.output);
  const auto told = std::exchange(told_, {});
  if (const std::string why = WhyFailed(av_Ending); why.empty()) {
    p_.trace.LogWrite("Alert: told");
    Take(AfterTelling(standing_, told, p_.loop.NowUtc()));
    for (const AlertRecord& record : told) perhaps_told_.erase(KeyOf(record));
  } else {
    held_ = true;
    next_look_ = p_.loop.MonotonicMilliseconds() + kHoldMilliseconds;
    p_.trace.Status("The alert command failed: " + why + ". What it had to tell is told again behind the next round",
                    StatusKind::Error);
  }
  if (!waiting_) return;
  const NetworkStatus status = *std::exchange(waiting_, std::nullopt);
  if (SwitchedOn()) LookAt(status, waiting_is_known_);
}

void Alerts::LogOutput(const std::string& as_Output) {
  std::string_view text = as_Output;
  while (text.ends_with('\n')) text.remove_suffix(1);
  if (text.empty()) return;
  const auto lines = Split(text, '\n');
  for (std::size_t line = 0; line < lines.size() && line < kLinesInLog; ++line) {
    p_.trace.LogWrite("Alert> " + std::string(lines[line]));
  }
  if (lines.size() > kLinesInLog) {
    p_.trace.LogWrite("Alert> and " + std::to_string(lines.size() - kLinesInLog) + " more lines");
  }
}

}  // namespace corvane
