// What comes to pass in a simulated year.
#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>

#include "field_year/year.h"
#include "protocol.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;
using basestation::Fault;
using basestation::FaultKind;

/// A kind of fault of an answer: how often it comes, and how much of it.
struct AnswerFault {
  const char* name;
  double rate;
  FaultKind kind;
  std::int64_t least = -1;
  std::int64_t span = 1;
};
constexpr AnswerFault kAnswerFaults[] = {{"noise", 0.05, FaultKind::Noise, 1, 40},
                                         {"silence", 0.02, FaultKind::Silence},
                                         {"error-reply", 0.05, FaultKind::Error, 1, 6},
                                         {"late-reply", 0.02, FaultKind::Delay, 5000, 60000},
                                         {"hang-up", 0.005, FaultKind::HangUp, 500, 20000}};
constexpr AnswerFault kDownloadFaults[] = {{"missing-ok", 0.02, FaultKind::NoOk},
                                           {"header-cut", 0.02, FaultKind::Header},
                                           {"stranger", 0.004, FaultKind::Header}};
constexpr AnswerFault kLineFaults[] = {{"bad-line", 0.05, FaultKind::BadChecksum},
                                       {"wrong-items", 0.01, FaultKind::WrongItems},
                                       {"bad-date", 0.01, FaultKind::BadDate}};

/// The reading on a line of an answer, from 1; -1 when there is none.
std::int64_t NumberAt(const basestation::Selection& readings, std::int64_t line) {
  for (const basestation::Stretch& stretch : readings.stretches()) {
    if (line >= 1 && line <= stretch.count) return stretch.first_number + line - 1;
    line -= stretch.count;
  }
  return -1;
}

}  // namespace

const std::vector<Year::Deed>& Year::Deeds() {
  using Mood = FtpSite::Mood;
  static const std::vector<Deed> deeds = {
      {"relay-down", 0.05, kDay, [](Year& y, UnitBook& b, bool on) { y.is_relay_down_[b.unit.relay()] = on; }},
      {"lossy-hours", 0.2, kDay / 2, [](Year&, UnitBook& b, bool on) { b.is_lossy = on; }},
      {"poison", 0.01, 5 * kDay, [](Year&, UnitBook& b, bool on) { b.poison = on ? b.unit.readings() : -1; }},
      {"future-reading", 0.01, 8 * kDay, [](Year& y, UnitBook& b, bool on) { on ? y.LogInFuture(b) : y.EndFuture(b); }},
      {"sensor-added", 0.004, 0,
       [](Year& y, UnitBook& b, bool) {
         b.unit.Clear();  // its memory takes lines of one width only
         b.unit.SetSoil(basestation::Soil(y.settings_.seed, b.unit.id(), b.unit.soil().sensors() % 5 + 1));
       }},
      {"same-minute", 0.02, 0,
       [](Year& y, UnitBook& b, bool) { b.unit.SetClock(std::max(b.unit.last_reading(), y.start_) - 1); }},
      {"sends-again", 0.02, 20 * kDay, [](Year&, UnitBook& b, bool on) { b.unit.SetOverlap(on ? 6 * kHour : 0); }},
      {"memory-cleared", 0.004, 0, [](Year&, UnitBook& b, bool) { b.unit.Clear(); }},
      {"unplugged", 0.05, kDay / 2, [](Year& y, UnitBook&, bool on) { y.line_->SetUnplugged(on); }},
      {"power-cut", 0.05, 0, [](Year& y, UnitBook&, bool) { y.disk_.calls_left = y.Some(1, 400); }},
      {"program-killed", 0.05, 0, [](Year& y, UnitBook&, bool) { y.kill_in_ = y.Some(1, 800); }},
      {"office-closed", 0.01, 0, [](Year& y, UnitBook&, bool) { y.closed_days_ = y.Some(1, 8); }},
      {"failed-sync", 0.02, 0, [](Year& y, UnitBook&, bool) { y.disk_.failing_syncs = y.Some(1, 3); }},
      {"full-disk", 0.01, kDay, [](Year& y, UnitBook&, bool on) { y.SetTrouble(y.disk_.is_full, on); }},
      {"read-only", 0.01, kDay / 4, [](Year& y, UnitBook&, bool on) { y.SetTrouble(y.disk_.is_read_only, on); }},
      {"clock-forward", 0.01, kDay,
       [](Year& y, UnitBook&, bool on) { y.SetClockError(on ? y.Some(kHour, 3 * kDay) : 0); }},
      {"clock-back", 0.01, kDay,
       [](Year& y, UnitBook&, bool on) { y.SetClockError(on ? -y.Some(kHour, 3 * kDay) : 0); }},
      {"server-away", 0.03, kDay, [](Year& y, UnitBook&, bool on) { y.ftp_.mood = on ? Mood::Away : Mood::Well; }},
      {"server-refuses", 0.02, kDay,
       [](Year& y, UnitBook&, bool on) { y.ftp_.mood = on ? Mood::Refuses : Mood::Well; }},
      {"server-drops", 0.03, kDay, [](Year& y, UnitBook&, bool on) { y.ftp_.mood = on ? Mood::Drops : Mood::Well; }},
      {"server-full", 0.02, kDay, [](Year& y, UnitBook&, bool on) { y.ftp_.mood = on ? Mood::Full : Mood::Well; }},
      {"server-loses", 0.02, kDay, [](Year& y, UnitBook&, bool on) { y.ftp_.mood = on ? Mood::Loses : Mood::Well; }},
      {"person-edits", 0.05, 0,
       [](Year& y, UnitBook&, bool) {
         y.program_->units().Select(1);
         y.program_->form().Txt_UnitName.SetText("Hill, day " + std::to_string(y.day_));
         y.program_->form().Txt_UnitName.Leave();
       }},
      {"person-cancels", 0.05, 0, [](Year& y, UnitBook&, bool) { y.cancel_in_ = y.Some(1, 800); }},
      {"person-deletes", 0.01, 0,
       [](Year& y, UnitBook&, bool) {
         RawBook& row = y.rows_[y.random_.Below(y.rows_.size())];
         fs::remove(row.path);
         row.TakeDeletion();
       }},
      {"person-sets-period", 0.01, 0, [](Year& y, UnitBook&, bool) { y.ChangeUnits(kSetLogPeriod); }},
      {"person-sets-clocks", 0.03, 0, [](Year& y, UnitBook&, bool) { y.ChangeUnits(kSetDate); }},
      {"person-restarts", 0.02, 0, [](Year& y, UnitBook&, bool) { y.closed_days_ = 0; }}};
  return deeds;
}

std::vector<std::string> Year::Kinds() {
  std::vector<std::string> kinds = {kOverrun, kSummerTime, kCutAtClose, kCutAtFirst};
  for (const auto& fault : kAnswerFaults) kinds.emplace_back(fault.name);
  for (const auto& fault : kDownloadFaults) kinds.emplace_back(fault.name);
  for (const auto& fault : kLineFaults) kinds.emplace_back(fault.name);
  for (const Deed& deed : Deeds()) kinds.emplace_back(deed.name);
  return kinds;
}

bool Year::Strikes(const char* kind, double rate) {
  if (IsCalm() || !active_.contains(kind) || !random_.Chance(rate)) return false;
  ++outcome_.counts[kind];
  return true;
}

std::int64_t Year::Some(std::int64_t least, std::int64_t span) {
  return least + static_cast<std::int64_t>(random_.Below(static_cast<std::uint64_t>(span)));
}

void Year::PlanDay() {
  day_is_regular_ = program_ != nullptr && !HasTrouble();
  opens_before_ = line_->opens;
  if (IsCalm()) kill_in_ = cancel_in_ = disk_.calls_left = disk_.failing_syncs = 0;
  SetComputerClock();
  if (IsSummer(TrueTime()) != IsSummer(TrueTime() + kDay)) {
    ++outcome_.counts[kSummerTime];
    day_is_regular_ = false;
    loop_.After(2 * kHour * kMilliseconds, [this] { SetComputerClock(); });
  }
  for (const Deed& deed : Deeds()) {
    if (Strikes(deed.name, deed.rate)) loop_.After(Some(0, kDay * kMilliseconds), [this, &deed] { Do(deed); });
  }
  // The person backs up every month, and in the last days.
  if (program_) program_->form().Chk_Backup.SetTicked(zips_ || day_ % 30 == 0 || IsCalm());
}

void Year::Do(const Deed& deed) {
  const bool is_persons = std::string_view(deed.name).starts_with("person-");
  if (IsCalm() || (is_persons && !program_)) return;
  if (is_persons && IsBusy()) return loop_.After(kHour / 6 * kMilliseconds, [this, &deed] { Do(deed); });
  PassUnits();
  whole_contact_.reset();
  exchange_is_clean_ = false;
  Note(deed.name);
  Disturb();
  UnitBook& book = books_.at(static_cast<int>(Some(1, std::ssize(books_))));
  deed.act(*this, book, true);
  if (deed.seconds == 0) return;
  // Everything is right again before the calm days.
  const std::int64_t left = std::max<std::int64_t>(calm_from_ - Now(), 0);
  loop_.After(std::min(Some(60, deed.seconds) * kMilliseconds, left), [this, &deed, &book] {
    Disturb();
    deed.act(*this, book, false);
  });
}

/// Something strikes that may end the round under way, or change what it has brought.
void Year::Disturb() {
  last_deed_ = Now();
  if (IsRoundOver()) {
    if (!IsBusy()) return;
    BeginRound();  // no unit has been asked yet
  }
  round_.was_disturbed = true;
  for (const std::size_t row : round_.asked) rows_[row].heard.back().sign = RawBook::Sign::Unsure;
}

bool Year::HasTrouble() const {
  return disk_.is_full || disk_.is_read_only || disk_.failing_syncs > 0 || clock_error_ != 0;
}

void Year::SetClockError(std::int64_t seconds) {
  clock_error_ = seconds;
  alerts_known_from_ = Now() + 2 * kDay * kMilliseconds;
  day_is_regular_ = false;
  SetComputerClock();
}

void Year::SetTrouble(bool& trouble, bool on) {
  trouble = on;
  alerts_known_from_ = Now() + 2 * kDay * kMilliseconds;
  day_is_regular_ = false;
}

void Year::LogInFuture(UnitBook& book) {
  if (book.future >= 0) return;
  book.future = book.unit.readings();
  const basestation::Seconds now = book.unit.clock();
  book.unit.SetClock(now + 20 * 365 * kDay);
  book.unit.PassReadings(1);
  book.Log(true);
  book.unit.SetClock(now);
}

/// The person takes the reading out of the unit and out of the raw files.
void Year::EndFuture(UnitBook& book) {
  if (IsBusy()) return loop_.After(kHour / 6 * kMilliseconds, [this, &book] { EndFuture(book); });
  const std::int64_t future = std::exchange(book.future, -1);
  if (future < 0) return;
  Disturb();
  book.unit.Forget(future);
  book.is_clock_known = false;  // nor is the end of the file, until the next round
  const std::string line = book.readings[static_cast<std::size_t>(future)].text + "\r\n";
  for (const RawBook& row : rows_) {
    std::string contents = ReadAll(row.path);
    const std::size_t at = contents.find(line);
    if (at != std::string::npos) WriteAll(row.path, contents.erase(at, line.size()));
  }
}

void Year::ChangeUnits(std::int16_t command) {
  if (clock_error_ != 0) return;
  program_->form().Cmb_LogPeriod.SetShownText(random_.Chance(0.5) ? "04:00" : "03:00");
  dialogs_->answers = {1, 1};
  program_->commands().Process(true, command);
  dialogs_->answers.clear();
}

Year::Faults Year::FaultsOf(const basestation::Request& request, const basestation::Selection& readings) {
  Faults faults;
  const bool is_probe = request.unit == 0;
  const bool is_download = request.command == basestation::Command::Download;
  asked_ = static_cast<std::size_t>(program_->form().Lst_Units.current());
  UnitBook& book = rows_[asked_].book;
  logged_when_asked_ = book.unit.readings();
  if (!is_probe && is_relay_down_[request.relay]) {
    const bool says_so = random_.Chance(0.8);
    faults.push_back({says_so ? FaultKind::Error : FaultKind::Silence, -1, basestation::kNoResponse, {}});
  }
  const double loss = is_probe ? 0 : book.loss * (book.is_lossy ? 5 : 1);
  for (const AnswerFault& fault : kAnswerFaults) {
    if (!Strikes(fault.name, std::min(loss * fault.rate, 0.5))) continue;
    faults.push_back({fault.kind, Some(-1, readings.size() + 3), Some(fault.least, fault.span), {}});
  }
  if (is_download) AddDownloadFaults(book, readings, loss, faults);
  if (is_download && !fs::exists(rows_[asked_].path) && Strikes(kCutAtFirst, 0.1)) {
    loop_.After(Some(1, 30) * kMilliseconds, [this] { disk_.power_is_off = program_ != nullptr; });
  }
  damaged_.clear();
  for (const Fault& fault : faults) {
    damaged_.push_back(NumberAt(readings, fault.line));
    round_.was_disturbed |= fault.kind == FaultKind::HangUp && fault.amount > kLongHangUp;
  }
  // What fills a gap is no part of the round. Of it nothing is promised: it is stopped, the rest comes another time.
  const bool is_repair = program_->history().Round().kind == RoundKind::Repair;
  if (!is_probe && !is_repair) {
    const bool is_mute = is_relay_down_[request.relay] && faults.size() == 1;
    auto& heard = rows_[asked_].heard;
    if (round_.asked.insert(asked_).second) heard.push_back({RawBook::Sign::Mute, Now()});
    if (!is_mute) heard.back().sign = RawBook::Sign::Unsure;
    round_.downloads |= is_download;
  }
  if (!is_repair) round_.may_end = !settings_.goes_on && (!faults.empty() || HasTrouble());
  const bool is_silenced = book.future >= 0 && !settings_.goes_on;
  exchange_is_clean_ = is_download && faults.empty() && !is_silenced && !is_repair && !HasTrouble();
  return faults;
}

void Year::AddDownloadFaults(UnitBook& book, const basestation::Selection& readings, double loss, Faults& faults) {
  for (const AnswerFault& fault : kDownloadFaults) {
    if (!Strikes(fault.name, std::min(loss * fault.rate, 0.5))) continue;
    std::string header;
    basestation::AppendFramed(header, "V2,09999,4," + std::to_string(3 * book.unit.soil().sensors()) + "," +
                                          std::to_string(readings.size()) + ",2027/3/12 10:00,12500,29310,100");
    faults.push_back({fault.kind, 0, -1, header.substr(0, fault.name[0] == 's' ? header.size() - 2 : 12)});
  }
  for (std::int64_t line = 1; line <= readings.size(); ++line) {
    for (const AnswerFault& fault : kLineFaults) {
      if (Strikes(fault.name, std::min(loss * fault.rate, 0.3))) faults.push_back({fault.kind, line, -1, {}});
    }
    const std::int64_t number = NumberAt(readings, line);
    if (number != book.poison) continue;
    faults.push_back({kLineFaults[number % std::ssize(kLineFaults)].kind, line, -1, {}});
    book.readings[static_cast<std::size_t>(number)].is_poison = true;
  }
}

/// The adapter overruns and loses a part of a line.
void Year::SpoilArriving(std::string& bytes) {
  if (!Strikes(kOverrun, 0.01)) return;
  exchange_is_clean_ = false;
  round_.may_end = !settings_.goes_on;
  UnitBook& book = rows_[asked_].book;
  const std::size_t begin = bytes.find("\n$");
  const std::size_t end = begin == std::string::npos ? begin : bytes.find('*', begin);
  if (end != std::string::npos) {
    damaged_.push_back(book.NumberOf(bytes.substr(begin + 2, end - begin - 2)));
    if (damaged_.back() >= 0) bytes.erase(end - 6, 3);
  }
  // The next damaged line is dropped, whatever has damaged it.
  for (const std::int64_t number : damaged_) {
    if (number >= 0) book.readings[static_cast<std::size_t>(number)].is_behind_overrun = true;
  }
  line_->TellOverrun();
}

}  // namespace corvane::test
