#include "field_year/year.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include <malloc.h>
#include <unistd.h>

#include "protocol.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kTo1970 = 25569 * kSecondsPerDay;  ///< from the day that dates of the program count from
constexpr int kCalmDays = 3;
constexpr std::size_t kMostMemory = 1'000'000;  ///< bytes, after however many days
constexpr std::size_t kMemoryOfUnit = 40'000;   ///< besides
constexpr int kSensors = 3;
constexpr std::size_t kHomeLength = 60;

/// Two o'clock, standard time, on the last Sunday of a month of 31 days.
basestation::Seconds ChangeOfTime(std::int64_t year, int month) {
  const DateTime last = DateTime::FromCivil(year, month, 31, 2, 0, 0);
  return (last - last.ToCivil().weekday * kSecondsPerDay).seconds() - kTo1970;
}

/// A folder in memory. Names of one length give the same years: what a cut leaves of a log depends on it.
std::string HomeFolder() {
  const char* const chosen = std::getenv("TMPDIR");
  const std::string name = std::string(chosen != nullptr ? chosen : "/dev/shm") + "/corvane-year-";
  const std::string number = std::to_string(getpid());
  return name + std::string(kHomeLength - std::min(kHomeLength, name.size() + number.size()), '0') + number;
}

}  // namespace

// The passing of time.

void Year::StartProgram() {
  Note("the program starts");
  started_at_ = Now();
  told_since_start_ = nobody_collects_;
  has_missed_a_round_ =
      ended_at_ > alerts_known_from_ && Now() - ended_at_ > (24 / settings_.rounds_a_day + 2) * kHour * kMilliseconds;
  dialogs_ = std::make_unique<RecordingDialogs>();
  dialogs_->answer_plain_boxes = false;
  zip_ = std::make_unique<LibzipComponent>(loop_);
  history_ = std::make_unique<YearStore>(disk_);
  const Platform machine{loop_, *line_, shell_, *dialogs_, ftp_, *zip_, {}, {}, history_.get(), &runner_};
  program_ = std::make_unique<Application>(machine, home_);
  const std::string switches = std::exchange(starts_with_download_, false) ? "/D" : "";
  program_->life().OnWindowCreate(switches);
  program_->life().OnWindowActivate(switches);
  descriptors_ = 0;
}

void Year::EndProgram() {
  Note("the program ends");
  Disturb();
  const bool disk_is_well = !disk_.is_full && !disk_.is_read_only && disk_.failing_syncs == 0;
  if (Strikes(kCutAtClose, 0.3)) disk_.calls_left = Some(1, 12);
  program_->commands().Close(true);
  const bool saved = program_->life().OnWindowClose();
  loop_.Check();
  if (!saved && disk_is_well) Break("the settings were not saved");
  const std::size_t held = mallinfo2().uordblks;
  program_.reset();
  history_.reset();
  ForgetAlerts();
  const std::size_t freed = held - std::min(held, mallinfo2().uordblks);
  if (freed > kMostMemory + kMemoryOfUnit * rows_.size())
    Break("the program held " + std::to_string(freed) + " bytes of memory");
  line_->Close();
  loop_.DropPosted();
  starts_at_ = std::min(Now() + std::exchange(closed_days_, {}).value_or(0) * kDay * kMilliseconds, calm_from_);
  day_is_regular_ = false;
}

void Year::OnKilled() {
  const bool lost_pages = disk_.power_is_off;
  Note(lost_pages ? "the power is off" : "the program is killed");
  Disturb();
  program_.reset();
  history_.reset();
  ForgetAlerts();
  line_->Close();
  loop_.DropPosted();
  disk_.Restore(lost_pages);
  for (RawBook& row : rows_) {
    if (lost_pages) row.TakeCut();
  }
  JudgeRawFiles();
  kill_in_ = 0;
  killed_ = day_is_regular_ = exchange_is_clean_ = false;
  closed_days_.reset();
  whole_contact_.reset();
  // Where it starts at once it downloads at once, while the unit may still be sending.
  starts_with_download_ = random_.Chance(0.5);
  starts_at_ = Now() + (starts_with_download_ ? Some(1, 20) : Some(60, 4 * kHour)) * kMilliseconds;
  JudgeWholeFiles();
}

/// The program dies at a call to the disk, or at one of its waits.
bool Year::IsDead() {
  if (!program_) return false;
  if (kill_in_ > 0 && --kill_in_ == 0) killed_ = true;
  if (cancel_in_ > 0 && --cancel_in_ == 0) {
    Note("the person cancels");
    loop_.Post([this] {
      Disturb();
      whole_contact_.reset();
      exchange_is_clean_ = false;
      program_->commands().Cancel();
    });
  }
  return killed_ || disk_.power_is_off;
}

bool Year::IsBusy() const {
  return program_ != nullptr && (program_->slot().Taken() || program_->flags().loading);
}

void Year::PassTo(std::int64_t milliseconds) {
  while (Now() < milliseconds) {
    try {
      if (!program_ && Now() < starts_at_) {
        loop_.Advance(std::min(milliseconds, starts_at_) - Now());
        continue;
      }
      if (!program_) StartProgram();
      loop_.Advance(std::clamp<std::int64_t>(milliseconds - Now(), 0, kHour * kMilliseconds));
      loop_.Check();
      if (closed_days_) EndProgram();
    } catch (const Killed&) {
      OnKilled();
    }
  }
}

void Year::PassUnits() {
  const std::int64_t elapsed = Now() / kMilliseconds - std::exchange(passed_, Now() / kMilliseconds);
  if (elapsed == 0) return;
  for (auto& [id, book] : books_) {
    book.owed += static_cast<double>(elapsed) * book.drift;
    const auto more = static_cast<std::int64_t>(std::trunc(book.owed));
    book.owed -= static_cast<double>(more);
    book.PassTime(std::max<std::int64_t>(elapsed + more, 0));
  }
}

bool Year::IsSummer(basestation::Seconds when) {
  const std::int64_t year = DateTime(when + kTo1970).ToCivil().year;
  return when >= ChangeOfTime(year, 3) && when < ChangeOfTime(year, 10);
}

void Year::SetComputerClock() {
  const std::int64_t ahead = IsSummer(TrueTime()) ? kHour : 0;
  loop_.SetNow(DateTime(TrueTime() + kTo1970 + ahead + clock_error_));
  loop_.SetAhead(static_cast<std::int32_t>(ahead));
}

YearOutcome Year::Run() {
  for (day_ = 1; day_ <= settings_.days && outcome_.broken.empty(); ++day_) {
    PlanDay();
    PassTo(day_ * kDay * kMilliseconds);
    JudgeDay();
    outcome_.day = day_;
  }
  if (outcome_.broken.empty()) JudgeEnd();
  for (const RawBook& row : rows_) {
    for (std::size_t i = 0; i < kHeadings.size(); ++i) outcome_.counts[kHeadings[i]] += row.counts[i];
  }
  return std::move(outcome_);
}

// The beginning.

Year::Year(const YearSettings& settings)
    : settings_(settings),
      random_(settings.seed),
      home_(HomeFolder()),
      disk_(home_, settings.seed, [this] { return Now() / kMilliseconds; }) {
  fs::remove_all(home_);
  zips_ = random_.Below(10) == 0;
  // These cost much: eight rounds a day, readings every 15 minutes, everything zipped and backed up each time.
  if (zips_) settings_.days = std::min(settings_.days, 6);
  if (zips_) settings_.rounds_a_day = 8;
  sends_calibrated_ = random_.Chance(0.3);
  repairs_gaps_ = random_.Chance(0.5);
  late_after_ = static_cast<int>(Some(2, 3));
  start_ = *basestation::TimeOf(2027, 1, 1, 0, 0, 0) + Some(0, 365) * kDay;
  calm_from_ = std::max(settings_.days - kCalmDays, 0) * kDay * kMilliseconds;
  for (const std::string& kind : Kinds()) {
    if (random_.Chance(0.6) && !settings_.without.contains(kind)) active_.insert(kind);
  }
  loop_.is_dead = [this] { return IsDead(); };
  MakeRows(zips_ ? kHour / 4 : 6 * kHour);
  WriteHome();
}

Year::~Year() {
  program_.reset();
  if (!settings_.trace) fs::remove_all(home_);
}

/// The last unit of the program is the first one once more, for another client.
void Year::MakeRows(std::int64_t period) {
  std::vector<basestation::Unit> units;
  for (int id = 1; id < settings_.units; ++id) {
    const std::int64_t own_period = id == 3 ? period / 2 : period;
    const basestation::Soil soil(settings_.seed, id, kSensors);
    units.emplace_back(id, id % 3 == 0 ? 0 : 100 + id % 3, soil, start_ - 20 * own_period, own_period, 20);
  }
  station_ = std::make_unique<basestation::Station>(basestation::Station::Settings{true, 0, settings_.seed},
                                                    std::move(units), basestation::FaultPlan(1));
  station_->more_faults = [this](const auto& request, const auto& readings) { return FaultsOf(request, readings); };
  line_ = std::make_unique<RadioLine>(loop_, *station_);
  line_->on_command = [this] { TakeCommand(); };
  line_->on_answer_over = [this] {
    if (exchange_is_clean_) whole_contact_ = asked_;
  };
  line_->spoil = [this](std::string& bytes) { SpoilArriving(bytes); };
  for (int id = 1; id < settings_.units; ++id) {
    UnitBook& book = books_.emplace(id, *station_->Find(id)).first->second;
    book.clock = start_ - 1;  // the readings go on without a gap
    book.unit.SetClock(book.clock);
    book.unit.SetCapacity(Some(96, 600));
    book.drift = static_cast<double>(Some(-100, 200)) * 1e-6;
    book.loss = static_cast<double>(Some(0, 300)) / 100;
    book.Log(false);
    const std::string digits = std::to_string(id);
    rows_.emplace_back(book, home_ + "/c1/" + std::string(5 - digits.size(), '0') + digits + ".epd");
  }
  rows_.emplace_back(books_.at(1), home_ + "/c2/00001.epd");
}

void Year::WriteHome() {
  const auto flag = [](const std::string& key, bool on) { return key + (on ? "=1\r\n" : "=0\r\n"); };
  const int hours = 24 / settings_.rounds_a_day;
  std::string text =
      "[General]\r\nAutomatic=1\r\nFTPServer=ftp.example\r\nFTPUserName=field\r\nFTPPassword=year\r\nLogSize=1\r\n";
  text += "AutomaticInterval=" + (hours == 24 ? "1" : std::to_string(hours) + ":00") + "\r\nInterval=06:00\r\n";
  text += flag("ShowReply", random_.Chance(0.5)) + flag("GoOnPastFailures", settings_.goes_on);
  text += flag("WebFileType", sends_calibrated_) + flag("ZIPFiles", zips_) + flag("Kelvin", random_.Chance(0.5));
  text += flag("WhichReadings", random_.Chance(0.5)) + flag("Average", random_.Chance(0.5));
  text += flag("RepairGaps", repairs_gaps_) + "AlertCommand=tell\r\nLateAfter=" + std::to_string(late_after_) + "\r\n";
  text += "BackupDestination=backup\r\n[Ports]\r\nCOM1=/dev/radio\r\n[Relays]\r\nNumRelays=3\r\nID1=0\r\nID2=101\r\n";
  text += "ID3=102\r\n[Clients]\r\nNumClients=2\r\nFolder1=c1\r\nFolder2=c2\r\n[Units]\r\n";
  text += "NumUnits=" + std::to_string(rows_.size()) + "\r\n";
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const auto line = [row](const char* key, std::size_t value) {
      return key + std::to_string(row + 1) + "=" + std::to_string(value) + "\r\n";
    };
    const basestation::Unit& unit = rows_[row].book.unit;
    text += line("ID", unit.id()) + line("RelayID", unit.relay()) + line("ftpFile", 1);
    text += line("ClientID", row + 1 < rows_.size() ? 1 : 2) + line("MoistureCorrection", row % 5);
  }
  ftp_.folders.insert({"/c1", "/c2"});
  WriteAll(home_ + "/corvane.ini", text);
  WriteAll(home_ + "/moisture.lkp", "0,0\r\n1000,12.5\r\n4000,40\r\n");
  WriteAll(home_ + "/salinity.lkp", "0,0\r\n4000,4\r\n");
  WriteAll(home_ + "/salcorr.lkp", "0,0\r\n10,1\r\n");
}

}  // namespace corvane::test
