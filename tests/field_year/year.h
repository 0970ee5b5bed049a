// A simulated year: the whole application on a machine, a network and a person that fail it, in virtual time.
//
// Everything follows from the seed. What was to come about is decided from the units' own books and the files, never
// from what the program says of itself.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "app/application.h"
#include "field_year/books.h"
#include "field_year/disk.h"
#include "field_year/ftp_site.h"
#include "field_year/radio_line.h"
#include "field_year/year_loop.h"
#include "field_year/year_store.h"
#include "history/unit_health.h"
#include "station.h"
#include "support/recorders.h"
#include "zip/libzip_component.h"

namespace corvane::test {

struct YearSettings {
  std::uint64_t seed = 1;
  int days = 365;
  int units = 10;
  int rounds_a_day = 2;
  bool goes_on = false;
  bool trace = false;             ///< prints all events and leaves the program's folder
  std::set<std::string> without;  ///< kinds of faults and deeds that do not come
};

/// Readings by heading, faults and deeds by kind.
using Counts = std::map<std::string, std::int64_t>;

struct YearOutcome {
  std::string broken;              ///< the first broken promise, empty when all were kept
  int day = 0;                     ///< the last one
  std::deque<std::string> events;  ///< the last ones
  Counts counts;
  std::string digest;       ///< of all files at the end but the history
  HistoryContents history;  ///< at the end
};

class Year {
 public:
  explicit Year(const YearSettings& settings);
  ~Year();
  Year(const Year&) = delete;
  Year& operator=(const Year&) = delete;

  [[nodiscard]] YearOutcome Run();
  /// The names of all kinds of faults and deeds.
  [[nodiscard]] static std::vector<std::string> Kinds();

  /// What becomes of readings that are missing between those of a raw file. There is nothing else.
  static constexpr const char* kNamed = "named as missing";
  static constexpr const char* kClockForward = "clock set forward";
  static constexpr const char* kSkipped = "skipped, dated not later than the last";
  static constexpr const char* kByHand = "asked for by the person on the last evening, and filled";
  static constexpr std::array<const char*, 4> kGapHeadings = {kNamed, kClockForward, kSkipped, kByHand};
  /// Evenings on which something had to be told, or nothing.
  static constexpr const char* kSilent = "silent";
  static constexpr const char* kLate = "late";
  static constexpr const char* kNobody = "nobody collects";
  static constexpr const char* kWell = "neither silent nor late";
  static constexpr std::array<const char*, 4> kAlertHeadings = {kSilent, kLate, kNobody, kWell};

 private:
  /// What comes to pass at some time of a day, to one unit or to all: how often in a day, and within how many seconds
  /// it is right again, 0 for at once.
  struct Deed {
    const char* name;
    double rate;
    std::int64_t seconds;
    void (*act)(Year& year, UnitBook& book, bool on);
  };
  [[nodiscard]] static const std::vector<Deed>& Deeds();
  using Faults = std::vector<basestation::Fault>;
  /// Commands to the units that follow upon one another.
  struct Round {
    std::int64_t began = 0;         ///< milliseconds
    std::int64_t last_command = 0;  ///< likewise
    std::set<std::size_t> asked;    ///< rows
    bool may_end = true;            ///< what strikes the command under way may end the round
    bool was_disturbed = false;     ///< what has struck may end it anywhere
    bool downloads = false;         ///< and sends behind it; else units get another command
  };

  void MakeRows(std::int64_t period);
  void WriteHome();

  void StartProgram();
  void EndProgram();
  void OnKilled();
  [[nodiscard]] bool IsDead();
  [[nodiscard]] bool IsBusy() const;
  void PassTo(std::int64_t milliseconds);
  void PassUnits();
  void SetComputerClock();
  /// Whether summer time holds on this computer.
  [[nodiscard]] static bool IsSummer(basestation::Seconds when);
  [[nodiscard]] std::int64_t Now() const { return loop_.MonotonicMilliseconds(); }
  [[nodiscard]] basestation::Seconds TrueTime() const { return start_ + Now() / 1000; }
  [[nodiscard]] bool IsCalm() const { return Now() >= calm_from_; }

  [[nodiscard]] bool Strikes(const char* kind, double rate);
  [[nodiscard]] std::int64_t Some(std::int64_t least, std::int64_t span);
  void PlanDay();
  void Do(const Deed& deed);
  void SetClockError(std::int64_t seconds);
  void SetTrouble(bool& trouble, bool on);
  void LogInFuture(UnitBook& book);
  void EndFuture(UnitBook& book);
  void ChangeUnits(std::int16_t command);
  [[nodiscard]] Faults FaultsOf(const basestation::Request& request, const basestation::Selection& readings);
  void AddDownloadFaults(UnitBook& book, const basestation::Selection& readings, double loss, Faults& faults);
  void SpoilArriving(std::string& bytes);

  void Note(const std::string& event);
  void Break(const std::string& promise);
  void PromoteWholeContact();
  void TakeCommand();
  void BeginRound();
  void Disturb();
  [[nodiscard]] bool HasTrouble() const;
  [[nodiscard]] bool IsRoundOver() const { return Now() - round_.last_command > kRoundPause; }
  void JudgeRound();
  void JudgeDay();
  void JudgeRawFiles();
  void JudgeProgram();
  void JudgeWholeFiles();
  void JudgeEnd();
  void JudgeServer();
  void TakeAlerts();
  void TakeAlert(const std::string& event, const std::string& cause, const std::string& relay, std::size_t row);
  void JudgeAlerts();
  void JudgeAlertsOf(std::size_t row);
  void ForgetAlerts();
  void RepairByHand();
  void JudgeHealth();
  void JudgeHealthOf(const RawBook& book, const UnitStatus& unit, const UnitHealth& health);
  void JudgeGaps(const HistoryContents& history);
  void JudgeGapsOf(std::size_t row, std::vector<GapRecord> named);
  [[nodiscard]] HistoryContents ReadHistory() const;
  void JudgeUnit();
  void JudgeSent(const RawBook& row);
  void JudgeCalibrated(const std::vector<std::size_t>& rows);
  void JudgeConvertedApart(std::size_t units);
  [[nodiscard]] std::string Digest() const;

  static constexpr std::int64_t kDay = 86400;
  static constexpr std::int64_t kHour = 3600;
  static constexpr std::int64_t kMilliseconds = 1000;
  static constexpr std::int64_t kRoundPause = 120 * kMilliseconds;  ///< longer than any within a round
  static constexpr std::int64_t kLongHangUp = 9 * kMilliseconds;    ///< the program may give up the port
  static constexpr const char* kOverrun = "overrun";
  static constexpr const char* kCutAtClose = "power-cut-at-close";
  static constexpr const char* kCutAtFirst = "power-cut-at-first-download";
  static constexpr const char* kSummerTime = "summer-time";

  YearSettings settings_;
  basestation::Random random_;
  YearOutcome outcome_;
  std::string home_;
  basestation::Seconds start_ = 0;
  std::int64_t calm_from_ = 0;  ///< milliseconds; from then on nothing strikes
  bool zips_ = false;
  bool sends_calibrated_ = false;
  bool repairs_gaps_ = false;
  int late_after_ = 2;            ///< intervals
  std::set<std::string> active_;  ///< kinds of this seed
  YearLoop loop_;
  Disk disk_;
  std::unique_ptr<basestation::Station> station_;
  std::map<int, UnitBook> books_;  ///< by ID
  std::vector<RawBook> rows_;      ///< by the program's units, from 0
  std::unique_ptr<RadioLine> line_;
  FtpSite ftp_{loop_};

  // The program while it runs.
  std::unique_ptr<RecordingDialogs> dialogs_;
  FakeShell shell_;
  std::unique_ptr<LibzipComponent> zip_;
  std::unique_ptr<YearStore> history_;
  YearRunner runner_{loop_};
  std::unique_ptr<Application> program_;
  bool killed_ = false;
  std::optional<std::int64_t> closed_days_;  ///< the person wants to end it, for so long
  std::int64_t kill_in_ = 0;                 ///< waits, 0 for never
  std::int64_t cancel_in_ = 0;               ///< waits, 0 for never
  bool starts_with_download_ = false;
  std::int64_t starts_at_ = 0;   ///< milliseconds, while no program runs
  std::size_t descriptors_ = 0;  ///< open on the first evening of this run of the program, 0 before it
  std::size_t timers_ = 0;
  std::size_t log_size_ = 0;

  // What people were told.
  /// Cause, row, and whether of a relay; since when, in milliseconds.
  std::map<std::tuple<std::string, std::size_t, bool>, std::int64_t> standing_;
  bool nobody_collects_ = false;        ///< was told, and stands
  bool told_since_start_ = false;       ///< that nobody collects
  std::int64_t alerts_known_from_ = 0;  ///< milliseconds; before it is not known what the program remembers
  std::int64_t ended_at_ = 0;           ///< milliseconds
  std::int64_t started_at_ = 0;         ///< milliseconds
  bool has_missed_a_round_ = false;     ///< while no program ran

  // The state of the world.
  int day_ = 0;
  int regular_days_ = 0;         ///< in a row
  bool day_is_regular_ = false;  ///< no clock was set, and the program ran on
  std::int64_t opens_before_ = 0;
  Round round_;
  std::int64_t last_deed_ = 0;  ///< milliseconds
  std::int64_t passed_ = 0;     ///< seconds that the units have lived
  std::map<int, bool> is_relay_down_;
  std::int64_t clock_error_ = 0;  ///< seconds that this computer is ahead
  std::size_t asked_ = 0;         ///< the row whose unit is being asked
  std::int64_t logged_when_asked_ = 0;
  std::vector<std::int64_t> damaged_;  ///< readings that the answer under way brings damaged, -1 for other lines
  bool exchange_is_clean_ = false;
  std::optional<std::size_t> whole_contact_;  ///< the row whose whole answer has just gone out
};

}  // namespace corvane::test
