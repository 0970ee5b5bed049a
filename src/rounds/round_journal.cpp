#include "rounds/round_journal.h"

#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "base/files.h"
#include "base/format.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "data/raw_file.h"
#include "data/raw_items.h"
#include "data/raw_line.h"
#include "data/raw_repair.h"
#include "link/exchange.h"

namespace corvane {
namespace {

constexpr std::int64_t kHalfMinute = 30;  ///< a header tells whole minutes: this far they are wrong on average
// Intended: 273 and not 273.15; so the units report their temperatures.
constexpr double kKelvinOffset = 273;

std::optional<double> NumberAt(const std::vector<std::string_view>& av_Items, std::size_t al_Item) {
  return al_Item < av_Items.size() ? ParseNumber(av_Items[al_Item]) : std::nullopt;
}

/// Takes battery and ambient value from a header or a reading, where they stand there.
void TakeValues(const std::vector<std::string_view>& av_Items, std::size_t al_Battery, std::size_t al_Ambient,
                ContactRecord& av_Contact) {
  if (const auto battery = NumberAt(av_Items, al_Battery)) av_Contact.battery = *battery / 1000;
  if (const auto ambient = NumberAt(av_Items, al_Ambient)) av_Contact.ambient = *ambient / 100 - kKelvinOffset;
}

RoundStart StartOf(const RunFlags& av_Flags) {
  if (!av_Flags.automatic_run) return RoundStart::ByHand;
  return av_Flags.by_command ? RoundStart::ByCommand : RoundStart::BySchedule;
}

}  // namespace

void RoundJournal::Run(RoundKind ae_Kind, bool ab_All, const std::function<void()>& av_Round) {
  if (!p_.history.Kept() || p_.history.Round().key != 0) return av_Round();
  // Before a command somebody is asked, who may say No.
  waits_for_units_ = ae_Kind == RoundKind::Command;
  all_ = ab_All;
  if (!waits_for_units_) p_.history.BeginRound(ae_Kind, StartOf(p_.flags), ab_All);
  counts_ = {};
  planned_ = 0;
  problems_before_ = p_.flags.problems;
  ending_.clear();
  not_sent_ = false;
  last_readings_.clear();
  try {
    av_Round();
  } catch (const std::exception& error) {
    End(error.what());
    throw;
  }
  End("");
}

void RoundJournal::End(const std::string& as_Error) {
  if (std::exchange(waits_for_units_, false)) return;
  EndContacts();
  counts_.problems += p_.flags.problems - problems_before_;
  counts_.ending = Ending(as_Error);
  p_.history.EndRound(counts_);
  // A failed transfer cancels what follows it, which says nothing about the raw files; a person is not kept waiting.
  if (!p_.link.UserCancel || TransferHasCancelled()) {
    p_.scans.Run();
  } else {
    p_.scans.RunForAsked();
  }
  p_.watch.Write();
  p_.history.TellStatus();
  if (follower.on_round_end) follower.on_round_end();
}

void RoundJournal::Count(const RoundRecord& av_Counts) {
  counts_.asked += av_Counts.asked;
  counts_.answered += av_Counts.answered;
  counts_.stored += av_Counts.stored;
  counts_.problems += av_Counts.problems;
}

std::string RoundJournal::Ending(const std::string& as_Error) const {
  if (!as_Error.empty()) return as_Error;
  if (p_.flags.closing) return "the program was closed";
  if (!p_.link.UserCancel) return ending_;
  if (!TransferHasCancelled()) return "cancelled";
  // What has ended the asking came first.
  return ending_.empty() ? "a file could not be sent" : ending_;
}

bool RoundJournal::TransferHasCancelled() const {
  return not_sent_ && !GoesOn(p_.form, p_.flags);
}

std::string RoundJournal::WhyNotAsked() const {
  if (p_.link.PortFailed) return p_.form.Lbl_PortProblem.text();
  if (p_.link.Timeout) return "a unit did not answer";
  return counts_.asked < planned_ ? "the base station does not answer" : "";
}

void RoundJournal::BeginContacts(UnitSpan av_Units, std::int16_t ai_Command) {
  if (std::exchange(waits_for_units_, false)) p_.history.BeginRound(RoundKind::Command, StartOf(p_.flags), all_);
  if (p_.history.Round().key == 0) return;
  command_ = ai_Command;
  turns_.clear();
  for (std::int64_t index = av_Units.first; index <= av_Units.last; ++index) {
    if (p_.registry.Units[index].Marked) turns_[index].contact.command = ai_Command;
  }
}

void RoundJournal::NoteTry(std::int64_t al_Index, TryEnd ae_End) {
  const auto found = turns_.find(al_Index);
  if (found == turns_.end()) return;
  Turn& turn = found->second;
  const Unit& unit = p_.registry.Units[al_Index];
  const bool sent = p_.link.SendTime.has_value();
  turn.noted = false;
  turn.sent = turn.sent || sent;
  turn.heard = turn.heard || (sent && p_.link.DataPhase);
  turn.contact.tries = unit.Tries;
  if (sent) turn.contact.milliseconds_on_air += p_.link.LastLineTime - *p_.link.SendTime;
  TakeOutcome(turn, ae_End, unit.Brought.problem);
  if (command_ == kDownload) {
    TakeDownload(turn, unit);
  } else if (turn.contact.outcome == Outcome::Answered) {
    TakeAnswer(turn);
  }
  // A unit that did not answer may have taken it all the same.
  if (command_ == kSetLogPeriod && sent)
    turn.contact.period_minutes = LogPeriodMinutes(p_.form.Cmb_LogPeriod.shown_text());
}

void RoundJournal::TakeOutcome(Turn& av_Turn, TryEnd ae_End, const std::string& as_Problem) const {
  ContactRecord& contact = av_Turn.contact;
  const bool unanswered = ae_End == TryEnd::Silent || p_.link.Timeout;
  if (Cancelled(p_.link, p_.flags)) {
    contact.outcome = av_Turn.sent ? Outcome::Failed : Outcome::NotAsked;
    contact.error = "cancelled";
  } else if (unanswered) {
    contact.outcome = av_Turn.heard ? Outcome::Failed : Outcome::Silent;
    contact.error = p_.link.DataPhase ? "the answer broke off" : "no answer";
  } else if (ae_End == TryEnd::Failed) {
    const bool silent = p_.link.ResultCode == kNoResponseResult && !av_Turn.heard;
    contact.outcome = !av_Turn.sent ? Outcome::NotAsked : silent ? Outcome::Silent : Outcome::Failed;
    contact.error = p_.link.ResultTextOf(p_.link.ResultCode);
  } else {
    contact.outcome = Outcome::Answered;
    contact.error = as_Problem;
  }
}

void RoundJournal::TakeDownload(Turn& av_Turn, const Unit& av_Unit) const {
  const DownloadTally& tally = av_Unit.Brought;
  ContactRecord& contact = av_Turn.contact;
  if (tally.announced > 0) contact.announced = tally.announced;
  contact.stored = av_Unit.Stored;
  av_Turn.rejected += tally.rejected;
  contact.rejected = av_Turn.rejected + tally.passed_over + tally.kept_aside;
  if (p_.link.SendTime && !p_.download.HeaderLine.empty()) TakeHeader(av_Turn);
}

void RoundJournal::TakeHeader(Turn& av_Turn) const {
  const std::vector<std::string_view> items = Split(p_.download.HeaderLine, ',');
  // What another unit says of its clock and battery is nothing of this one.
  const auto& own = p_.download.OwnSiteID;
  const std::string asked = std::to_string(p_.download.AskedID);
  const bool is_its = items.size() > header_item::kSiteID && (IsSameSiteID(items[header_item::kSiteID], asked) ||
                                                              (own && IsSameSiteID(items[header_item::kSiteID], *own)));
  if (!is_its) return;
  TakeValues(items, header_item::kBattery, header_item::kAmbient, av_Turn.contact);
  const auto clock = items.size() > header_item::kDate ? ParseReadingDate(items[header_item::kDate]) : std::nullopt;
  if (clock) av_Turn.clock_ahead = *clock + kHalfMinute - Moment{p_.download.HeaderTime.utc, 0}.Local();
}

void RoundJournal::TakeAnswer(Turn& av_Turn) const {
  const Moment now = p_.loop.NowUtc();
  if (command_ == kSetDate) av_Turn.clock_ahead = now.ahead;
  if (command_ != kGetDate) return;
  const auto clock = ParseDate(p_.form.Lbl_HeaderLine.text());
  if (!clock) return;
  const std::int64_t since = (p_.loop.MonotonicMilliseconds() - p_.link.LastLineTime) / 1000;
  av_Turn.clock_ahead = *clock + since - Moment{now.utc, 0}.Local();
}

void RoundJournal::TakeLastReading(Turn& av_Turn, std::int64_t al_Index) {
  ContactRecord& contact = av_Turn.contact;
  const std::string file = p_.names.DataFileName(static_cast<std::int32_t>(al_Index), false);
  contact.last_reading = p_.history.Of(p_.history.KeyOf(al_Index)).scan.last;
  if (command_ != kDownload || !av_Turn.sent || p_.download.OutputFileName != file) return;
  contact.last_reading = p_.download.LastDate;
  if (contact.stored > 0) {
    const LastDateResult last = ReadLastDate(file, [] { return true; });
    contact.last_reading = last.last_date;
    TakeValues(Split(last.line_text, ','), reading_item::kBattery, reading_item::kAmbient, contact);
  }
  last_readings_[al_Index] = contact.last_reading;
}

void RoundJournal::BeginTurn(std::int64_t al_Index) const {
  if (follower.on_asking) follower.on_asking(al_Index);
}

void RoundJournal::EndTurn(std::int64_t al_Index) {
  NoteTurn(al_Index);
  BeginTurn(0);
  if (follower.on_contact) follower.on_contact(al_Index);
}

void RoundJournal::NoteTurn(std::int64_t al_Index) {
  const auto found = turns_.find(al_Index);
  if (found == turns_.end() || found->second.noted) return;
  Turn& turn = found->second;
  try {
    TakeLastReading(turn, al_Index);
  } catch (const RunTimeError&) {
    // Its scan says what is wrong with the file.
    last_readings_.erase(al_Index);
  }
  turn.noted = true;
  // The contact is of now: summer time may have begun or ended since the unit told its clock.
  if (turn.clock_ahead) turn.contact.clock_offset = *turn.clock_ahead - p_.loop.NowUtc().ahead;
  p_.history.NoteContact(al_Index, turn.contact);
}

void RoundJournal::EndContacts() {
  if (turns_.empty()) return;
  for (auto& [index, turn] : turns_) {
    if (!turn.noted && turn.contact.tries == 0 && p_.link.PortFailed) {
      turn.contact.outcome = Outcome::NoPort;
      turn.contact.error = p_.form.Lbl_PortProblem.text();
    }
    EndTurn(index);
    const Outcome outcome = turn.contact.outcome;
    ++planned_;
    counts_.asked += outcome == Outcome::NotAsked || outcome == Outcome::NoPort ? 0 : 1;
    counts_.answered += outcome == Outcome::Answered ? 1 : 0;
    counts_.stored += turn.contact.stored;
  }
  turns_.clear();
  ending_ = WhyNotAsked();
}

DateTime RoundJournal::LastReadingOf(std::int64_t al_Index) {
  const auto known = last_readings_.find(al_Index);
  if (known != last_readings_.end() && p_.history.Round().key != 0) return known->second;
  try {
    return ReadLastDate(p_.names.DataFileName(static_cast<std::int32_t>(al_Index), false), [] { return true; })
        .last_date;
  } catch (const RunTimeError&) {
    return {};
  }
}

void RoundJournal::NoteTransfer(const TransferResult& av_Result) {
  if (!p_.history.Kept() || av_Result.nothing) return;
  DeliveryRecord delivery;
  delivery.target = av_Result.target;
  delivery.file = av_Result.file;
  delivery.problem = av_Result.problem;
  if (av_Result.problem.empty()) {
    const auto info = ExamineFile(av_Result.local);
    if (info) delivery.bytes = info->size;
    if (av_Result.target == Target::Fetched) last_readings_.erase(av_Result.unit);
    if (!p_.names.TransfersCalibrated()) {
      delivery.last_reading = LastReadingOf(av_Result.unit);
    } else if (av_Result.target != Target::Fetched) {
      delivery.last_reading = p_.history.DeliveredTo(av_Result.unit, Target::Calibrated);
    }
  } else if (av_Result.target == Target::Server) {
    not_sent_ = true;
  }
  p_.history.NoteDelivery(av_Result.unit, delivery, av_Result.problem.empty());
}

void RoundJournal::NoteConversion(const ConversionResult& av_Result, const std::string& as_RawFile) {
  const auto unit = static_cast<std::int32_t>(av_Result.unit);
  if (!p_.history.Kept() || as_RawFile != p_.names.DataFileName(unit, false)) return;
  DeliveryRecord delivery;
  delivery.target = Target::Calibrated;
  delivery.file = p_.names.DataFileName(unit, true);
  if (!av_Result.readings) {
    delivery.problem = "not converted";
  } else if (av_Result.bad_lines > 0) {
    delivery.problem = std::to_string(av_Result.bad_lines) + " line(s) could not be converted";
  }
  if (const auto info = ExamineFile(delivery.file)) delivery.bytes = info->size;
  delivery.last_reading = LastReadingOf(av_Result.unit);
  p_.history.NoteDelivery(av_Result.unit, delivery, av_Result.readings.has_value());
}

}  // namespace corvane
