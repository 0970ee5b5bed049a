#include "history/history.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <set>
#include <tuple>
#include <utility>

#include "history/history_reading.h"
#include "history/waiting_records.h"

namespace corvane {
namespace {

constexpr std::int64_t kHoldOff = 30'000;  ///< milliseconds without another try: each may take a tenth of a second
constexpr std::int64_t kSecondsPerYear = 31'557'600;
constexpr Moment kEver{1, 0};
constexpr Moment kNever{std::numeric_limits<std::int64_t>::max(), 0};

}  // namespace

void History::Open(const std::string& as_Folder) {
  if (p_.store == nullptr) return;
  file_ = HistoryFile(as_Folder);
  clock_steps_.Start(ClockBase());
  FollowUnits();
}

void History::Close() {
  if (!Kept()) return;
  next_try_ = 0;
  Flush();
  p_.store->Close();
  file_.clear();
  problem_.clear();
}

bool History::TryAgainNow() const {
  return p_.loop.MonotonicMilliseconds() >= next_try_;
}

bool History::IsReady() {
  if (!Kept() || !TryAgainNow()) return false;
  if (p_.store->IsOpen()) return true;
  const Status opened = OpenStore();
  if (!opened.ok()) Report("written", opened);
  return opened.ok();
}

Status History::OpenStore() {
  std::string set_aside;
  if (Status opened = p_.store->OpenToWrite(file_, set_aside); !opened.ok()) return opened;
  if (!set_aside.empty()) p_.trace.Status(set_aside, StatusKind::Error);
  HistoryQuery query;
  query.contacts_since = kNever;
  query.rounds = BelievedTime::kRounds;
  query.gaps = true;
  query.scans = true;
  HistoryContents stored;
  if (Status read = p_.store->Read(query, stored); !read.ok()) {
    p_.store->Close();
    return read;
  }
  Adopt(stored);
  return Status::Ok();
}

void History::Adopt(const HistoryContents& av_Stored) {
  const auto changed = units_.Adopt(av_Stored.units);
  const std::int64_t stored_round = av_Stored.rounds.empty() ? 0 : av_Stored.rounds.back().key;
  Renumber(changed, keys_are_known_ ? 0 : stored_round);
  keys_are_known_ = true;
  last_round_ = std::max(last_round_, stored_round);
  believed_.TakeRounds(av_Stored.rounds);
  clock_steps_.Forget();
  TakeSteps(av_Stored.rounds);
  TakeSteps(waiting_.rounds);
  // What the file does not know of the units that are known here.
  if (!waiting_.units.empty() || !changed.empty() || av_Stored.units.empty()) waiting_.units = units_.All();
  memory_.Adopt(av_Stored, changed);
  for (const GapRecord& gap : waiting_.gaps) memory_.Take(gap);
  for (const DeliveryRecord& each : av_Stored.deliveries) deliveries_.try_emplace({each.unit, each.target}, each);
}

void History::Renumber(const std::map<std::int64_t, std::int64_t>& av_Units, std::int64_t al_Rounds) {
  RenumberRecords(waiting_, av_Units, al_Rounds);
  if (round_.key != 0) round_.key += al_Rounds;
  last_round_ += al_Rounds;
  auto deliveries = std::exchange(deliveries_, {});
  for (auto& [key, delivery] : deliveries) {
    const auto found = av_Units.find(key.first);
    if (found != av_Units.end()) delivery.unit = found->second;
    deliveries_[{delivery.unit, key.second}] = delivery;
  }
}

Status History::BeginAnew() {
  p_.store->Close();
  Status opened = OpenStore();
  if (!opened.ok()) return opened;
  if (round_.key != 0) waiting_.rounds.insert(waiting_.rounds.begin(), round_);
  Status written = p_.store->Write(waiting_);
  if (written.ok()) waiting_ = {};
  return written;
}

void History::Flush() {
  if (CountOf(waiting_) == 0 || !IsReady()) return DropOldest();
  Status written = p_.store->Write(waiting_);
  if (written.code() == HistoryStore::kDamaged) written = BeginAnew();
  if (!written.ok()) {
    Report("written", written);
    return DropOldest();
  }
  waiting_ = {};
  dropped_ = false;
  problem_.clear();
}

void History::Write(const HistoryContents& av_Changes) {
  if (!Kept()) return;
  Append(waiting_, av_Changes);
  Flush();
}

void History::Report(const std::string& as_CannotBe, const Status& av_Failure) {
  problem_ = av_Failure.text();
  next_try_ = p_.loop.MonotonicMilliseconds() + kHoldOff;
  if (std::exchange(reported_, true)) return;
  p_.trace.Status("The history cannot be " + as_CannotBe + ": " + av_Failure.text() +
                      ". Rounds go on; what happens meanwhile is written later",
                  StatusKind::Error);
}

void History::GiveUp(const std::string& as_CannotBe, const Status& av_Failure) {
  // Set aside now: the next start would not come upon the damage when it opens the file.
  if (av_Failure.code() == HistoryStore::kDamaged) static_cast<void>(BeginAnew());
  Report(as_CannotBe, av_Failure);
}

void History::DropOldest() {
  if (!KeepNewest(waiting_) || std::exchange(dropped_, true)) return;
  p_.trace.Status("The history could not be written for long: the oldest of what waits is lost", StatusKind::Error);
}

void History::BeginRound(RoundKind ae_Kind, RoundStart ae_Start, bool ab_All) {
  if (!Kept()) return;
  reported_ = false;
  FollowUnits();
  round_ = {};
  round_.key = ++last_round_;
  round_.kind = ae_Kind;
  round_.start = ae_Start;
  round_.all = ab_All;
  round_.began = p_.loop.NowUtc();
  clock_steps_.BeginRound(ClockBase());
  HistoryContents change;
  change.rounds.push_back(round_);
  Write(change);
}

void History::EndRound(const RoundRecord& av_Counts) {
  if (!Kept() || round_.key == 0) return;
  RoundRecord ended = av_Counts;
  ended.key = round_.key;
  ended.kind = round_.kind;
  ended.start = round_.start;
  ended.all = round_.all;
  ended.began = round_.began;
  ended.ended = p_.loop.NowUtc();
  ended.clock_step = clock_steps_.EndRound();
  round_ = {};
  HistoryContents change;
  change.rounds.push_back(ended);
  // First: where writing opens the file, the steps are taken anew, from what it holds and what waits.
  TakeSteps(change.rounds);
  Write(change);
}

void History::TakeJump(std::int64_t al_Position, ContactRecord av_Contact) {
  // Reading the file may give units and rounds other keys.
  if (!av_Contact.clock_offset || !IsReady() || KeyOf(al_Position) == 0) return;
  const UnitMemory& unit = WithClock(KeyOf(al_Position));
  if (!unit.clock_read) return;
  av_Contact.round = round_.key;
  const auto jump = unit.clock.JumpTo(av_Contact, clock_steps_.clock());
  if (jump) clock_steps_.TakeJump(al_Position, *jump, av_Contact.command == kSetDate);
}

std::int64_t History::ClockBase() const {
  return p_.loop.NowUtc().utc - p_.loop.MonotonicMilliseconds() / 1000;
}

void History::TakeSteps(const std::vector<RoundRecord>& av_Rounds) {
  if (clock_steps_.Take(av_Rounds, round_.key)) memory_.ForgetClocks();
}

void History::FollowUnits() {
  if (!Kept()) return;
  // Where it can be, the file is opened first: it has the keys.
  static_cast<void>(IsReady());
  if (!units_.MayBeBehind(p_.registry, p_.names)) return;
  std::vector<std::string> sentences;
  HistoryContents change;
  change.units = units_.Follow(PresentUnits(p_.registry, p_.names), p_.loop.NowUtc(), sentences);
  for (const std::string& sentence : sentences) p_.trace.LogWrite(sentence);
  if (change.units.empty()) return;
  // Which entries of the list are one station may have changed, and so whose contacts tell of whose clock.
  memory_.ForgetClocks();
  Write(change);
}

std::vector<std::int64_t> History::PositionsOf(const std::vector<std::int64_t>& av_Keys) const {
  const std::set<std::int64_t> wanted(av_Keys.begin(), av_Keys.end());
  std::vector<std::int64_t> positions;
  for (std::int64_t position = 1; position <= Positions(); ++position) {
    if (const std::int64_t key = KeyOf(position); key != 0 && wanted.contains(key)) positions.push_back(position);
  }
  return positions;
}

UnitMemory& History::WithClock(std::int64_t al_Key) {
  if (UnitMemory& unit = memory_.Of(al_Key); unit.clock_read) return unit;
  std::vector<ContactRecord> former;
  bool read = true;
  for (const std::int64_t entry : units_.EntriesOf(al_Key)) read = ReadContacts(entry, former) && read;
  UnitMemory& unit = memory_.Of(al_Key);
  if (!read) return unit;
  std::stable_sort(former.begin(), former.end(), [](const ContactRecord& one, const ContactRecord& other) {
    return std::tuple(one.round, one.at.utc) < std::tuple(other.round, other.at.utc);
  });
  unit.clock = {};
  for (const ContactRecord& contact : former) {
    unit.clock.Take(contact, clock_steps_.clock(), contact.unit == al_Key);
  }
  unit.clock_read = true;
  return unit;
}

bool History::ReadContacts(std::int64_t al_Key, std::vector<ContactRecord>& av_Contacts) {
  HistoryQuery query;
  query.unit = al_Key;
  query.contacts_since = kEver;
  query.lists = false;
  HistoryContents former;
  if (!Read(query, former).ok()) return false;
  for (const auto* const contacts : {&former.contacts, &waiting_.contacts}) {
    std::copy_if(contacts->begin(), contacts->end(), std::back_inserter(av_Contacts),
                 [al_Key](const ContactRecord& contact) { return contact.unit == al_Key; });
  }
  return true;
}

void History::NoteContact(std::int64_t al_Position, ContactRecord av_Contact) {
  if (!Kept() || round_.key == 0) return;
  av_Contact.at = p_.loop.NowUtc();
  // What the unit's clock was held against may have been another time.
  if (av_Contact.command != kSetDate && !clock_steps_.IsSteady(ClockBase())) av_Contact.clock_offset.reset();
  TakeJump(al_Position, av_Contact);
  UnitRecord* unit = units_.Find(KeyOf(al_Position));
  if (unit == nullptr) return;
  av_Contact.round = round_.key;
  av_Contact.unit = unit->key;
  av_Contact.get_from = unit->get_from;
  HistoryContents change;
  const bool asked = av_Contact.outcome != Outcome::NotAsked && av_Contact.outcome != Outcome::NoPort;
  if (asked) unit->last_asked = av_Contact.at;
  if (av_Contact.outcome == Outcome::Answered) unit->last_answered = av_Contact.at;
  if (asked) change.units.push_back(*unit);
  if (const std::int64_t step = clock_steps_.StepSoFar(); step != round_.clock_step) {
    round_.clock_step = step;
    change.rounds.push_back(round_);
  }
  UnitMemory& memory = memory_.Of(unit->key);
  for (const std::int64_t entry : units_.EntriesOf(unit->key)) {
    UnitMemory& each = memory_.Of(entry);
    if (each.clock_read) each.clock.Take(av_Contact, clock_steps_.clock(), entry == unit->key);
  }
  memory.contacted = memory.contacted || av_Contact.outcome == Outcome::Answered || av_Contact.stored > 0;
  change.contacts.push_back(std::move(av_Contact));
  Write(change);
}

void History::NoteDelivery(std::int64_t al_Position, DeliveryRecord av_Delivery, bool ab_Arrived) {
  const std::int64_t key = KeyOf(al_Position);
  if (!Kept() || key == 0) return;
  DeliveryRecord& known = deliveries_[{key, av_Delivery.target}];
  av_Delivery.unit = key;
  av_Delivery.tried = p_.loop.NowUtc();
  if (ab_Arrived) {
    av_Delivery.done = av_Delivery.tried;
  } else {
    av_Delivery.done = known.done;
    av_Delivery.bytes = known.bytes;
    av_Delivery.last_reading = known.last_reading;
  }
  known = std::move(av_Delivery);
  HistoryContents change;
  change.deliveries.push_back(known);
  Write(change);
}

void History::NoteGaps(std::int64_t al_Position, const std::vector<GapRecord>& av_Gaps) {
  const std::int64_t key = KeyOf(al_Position);
  if (!Kept() || key == 0) return;
  HistoryContents change;
  for (GapRecord gap : av_Gaps) {
    gap.unit = key;
    gap.changed = p_.loop.NowUtc();
    if (gap.found.IsNone()) gap.found = gap.changed;
    memory_.Take(gap);
    change.gaps.push_back(gap);
  }
  Write(change);
}

bool History::NoteScan(std::int64_t al_Key, const RawScan& av_Scan, const std::vector<GapRecord>& av_Gaps) {
  // What waits is older than what the scan has found, and would replace it later.
  Flush();
  if (CountOf(waiting_) > 0 || !IsReady()) return false;
  HistoryContents change;
  change.scans.push_back(av_Scan.scan);
  change.scans.back().unit = al_Key;
  change.days = av_Scan.days;
  for (DayRecord& day : change.days) day.unit = al_Key;
  change.gaps = av_Gaps;
  for (GapRecord& gap : change.gaps) gap.unit = al_Key;
  const Status written = p_.store->Replace(al_Key, av_Scan.changed_from, change);
  if (!written.ok()) {
    GiveUp("written", written);
    return false;
  }
  memory_.Take(change.scans.back(), change.gaps, av_Scan.changed_from);
  return true;
}

void History::NoteNetwork(const NetworkRecord& av_Network) {
  HistoryContents change;
  change.network = av_Network;
  Write(change);
}

DateTime History::DeliveredTo(std::int64_t al_Position, Target ae_Target) const {
  const auto found = deliveries_.find({KeyOf(al_Position), ae_Target});
  return found == deliveries_.end() ? DateTime() : found->second.last_reading;
}

void History::ForgetBefore(std::int64_t al_Years) {
  const Moment now = p_.loop.NowUtc();
  // A clock that was ahead has been set right.
  if (forgotten_ > now) forgotten_ = {};
  if (!Kept() || now - forgotten_ < kSecondsPerDay || !IsReady()) return;
  forgotten_ = now;
  const Moment today = believed_.Today(now, memory_.LastReadings());
  const Moment before{today.utc - al_Years * kSecondsPerYear, today.ahead};
  if (const Status forgot = p_.store->Forget(before); !forgot.ok()) GiveUp("written", forgot);
}

Status History::Read(const HistoryQuery& av_Query, HistoryContents& av_Result) {
  if (!IsReady()) return {HistoryStore::kBusy, problem_.empty() ? "no history is kept" : problem_};
  const Status read = p_.store->Read(av_Query, av_Result);
  // What has just been begun anew holds too little yet to be told as the history.
  if (!read.ok()) GiveUp("read", read);
  return read;
}

std::optional<NetworkStatus> History::StatusNow() {
  const Moment now = p_.loop.NowUtc();
  HistoryContents contents;
  if (!Read(StatusQuery(now), contents).ok()) return std::nullopt;
  return WorkOutStatus(contents, now, Holder::Somebody);
}

void History::TellStatus() {
  if (!Kept() || (wants_status && !wants_status())) return;
  if (const auto status = StatusNow()) {
    if (after_round) after_round(*status);
  } else if (in_the_dark) {
    in_the_dark();
  }
}

}  // namespace corvane
