#include "rounds/gap_exchange.h"

#include "base/files.h"
#include "base/line_reader.h"
#include "base/scoped_value.h"
#include "base/status.h"
#include "history/network_settings.h"

namespace corvane {
namespace {

constexpr const char* kDamaged = "damaged lines came";

/// A file that is there for one exchange only.
class PassingFile {
 public:
  explicit PassingFile(std::string as_Name) : name_(std::move(as_Name)) { Remove(); }
  ~PassingFile() { Remove(); }
  PassingFile(const PassingFile&) = delete;
  PassingFile& operator=(const PassingFile&) = delete;
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  void Remove() const { static_cast<void>(RemoveFile(name_)); }

  std::string name_;
};

std::string OutOf(std::int64_t al_Added, std::int64_t al_Missing) {
  return std::to_string(al_Added) + " of " + std::to_string(al_Missing) + " readings";
}

}  // namespace

GapAnswer GapExchange::Ask(std::int64_t al_Unit, const GapRecord& av_Gap) {
  p_.units.ReselectUnit(al_Unit);
  const std::string raw_file = p_.names.DataFileName(static_cast<std::int32_t>(al_Unit), false);
  const PassingFile sent(raw_file + std::string(RawKeeper::kRepairFile));
  const ScopedValue<std::optional<GapDownload>> gap(
      p_.download.Gap, GapDownload{av_Gap.from, av_Gap.to, ReadNetworkSettings(p_.form).repair_limit});
  p_.session.ProcessUnit(kDownload);
  GapAnswer answer;
  if (!Cancelled(p_.link, p_.flags)) answer = Judge(raw_file, Gather(sent.name()), av_Gap);
  if (Cancelled(p_.link, p_.flags) && answer.added == 0) answer = {GapState::Found, 0, "cancelled", p_.link.DataPhase};
  EndExchange();
  return answer;
}

GapExchange::Gathered GapExchange::Gather(const std::string& as_File) const {
  const DownloadTally& tally = p_.session.Tally();
  Gathered gathered;
  gathered.whole = tally.rejected == 0 && tally.passed_over == 0 && p_.link.OverunCount == 0;
  LineReader reader;
  std::string_view line;
  // Nothing was stored, or the header is all that came.
  if (!reader.Open(as_File).ok() || !reader.Next(line)) return gathered;
  for (DateTime last = p_.download.Gap->from; reader.Next(line) && reader.terminated();) {
    const auto date = DateOfReading(line);
    if (date && *date > last && *date < p_.download.Gap->to) {
      last = *date;
      gathered.readings.emplace_back(line);
    } else {
      gathered.whole = false;
    }
  }
  gathered.whole = gathered.whole && reader.status().ok();
  return gathered;
}

GapAnswer GapExchange::Heard() const {
  const bool failed_here = p_.link.HalvexError && p_.link.ResultCode == kCommsErrorResult;
  const bool replied = p_.link.HalvexError && !failed_here;
  const bool too_many = p_.download.Gap->too_many;
  GapAnswer answer;
  answer.heard = p_.link.DataPhase || (replied && p_.link.ResultCode != kNoResponseResult);
  answer.silent = !answer.heard && !replied;
  if (!answer.heard || failed_here || too_many) answer.state = GapState::Found;
  if (too_many) answer.announced = p_.session.Tally().announced;
  return answer;
}

GapAnswer GapExchange::Judge(const std::string& as_RawFile, const Gathered& av_Gathered, const GapRecord& av_Gap) {
  GapAnswer answer = Heard();
  SpliceResult put;
  const auto go_on = [this] {
    p_.loop.Poll();
    return !Cancelled(p_.link, p_.flags);
  };
  try {
    put = SpliceReadings(as_RawFile, {av_Gap.from, av_Gap.to}, av_Gathered.readings, go_on);
    answer.added = put.added;
    if (!put.synced.ok())
      p_.trace.AErrorReport(as_RawFile + " may be as before after a power cut: " + put.synced.text());
    if (put.outcome == SpliceOutcome::NotTogether || put.outcome == SpliceOutcome::Changed) {
      answer.state = GapState::Found;
      answer.result = "the file has changed meanwhile: nothing was put in";
      return answer;
    }
  } catch (const RunTimeError& error) {
    p_.trace.AErrorReport(error.what());
    answer.state = GapState::Found;
    answer.result = std::string("nothing was put in: ") + error.what();
    return answer;
  }
  if (answer.added >= av_Gap.missing) {
    answer.state = GapState::Filled;
    answer.result = "filled";
  } else if (!p_.download.Gap->reached_the_end) {
    answer.result = WhyNotReached();
  } else if (!av_Gathered.whole) {
    answer.result = kDamaged;
  } else if (put.outcome == SpliceOutcome::NothingNew) {
    answer.state = GapState::Lost;
    answer.result = av_Gathered.readings.empty() ? "lost: the unit does not hold them"
                                                 : "lost: the file has elsewhere what the unit holds";
  } else {
    answer.result = "the unit sent no more";
  }
  if (answer.added > 0 && answer.state != GapState::Filled) {
    answer.result = OutOf(answer.added, av_Gap.missing) + ", then: " + answer.result;
  }
  return answer;
}

std::string GapExchange::WhyNotReached() const {
  if (p_.download.Gap->too_many) {
    return "not asked: the unit would send " + std::to_string(p_.session.Tally().announced) +
           " lines, more than the limit of " + std::to_string(p_.download.Gap->most_lines);
  }
  if (const std::string& problem = p_.session.Tally().problem; !problem.empty()) return problem;
  if (p_.link.Timeout && !p_.link.DataPhase) return "no answer";
  if (p_.link.Timeout) return p_.link.AbortTimedOut ? kDamaged : "the answer broke off";
  // The unit's word that it was stopped.
  if (p_.link.HalvexError && p_.link.ResultCode == kCancelledResult) return kDamaged;
  if (p_.link.HalvexError) return p_.link.ResultTextOf(p_.link.ResultCode);
  return "the unit holds nothing behind the gap";
}

void GapExchange::EndExchange() {
  p_.link.Timeout = false;
  p_.attempts.LetUnitRest();
  // What the unit was told to stop may still be on its way: while the error stands nobody takes it for an answer.
  if (!Cancelled(p_.link, p_.flags)) p_.attempts.AwaitQuiet();
  p_.link.HalvexError = false;
}

}  // namespace corvane
