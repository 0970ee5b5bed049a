// The history of a simulated year, held against the books.
#include <algorithm>
#include <map>
#include <numeric>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "base/format.h"
#include "base/text.h"
#include "field_year/year.h"

namespace corvane::test {
namespace {

/// A date of a unit as its line tells it, in whole minutes.
DateTime DateOf(basestation::Seconds seconds) {
  return Moment{seconds / 60 * 60, 0}.Local();
}

std::string TextOf(const GapRecord& gap) {
  return "\n    " + GeneralDate(gap.from) + " to " + GeneralDate(gap.to) + ": " + std::to_string(gap.missing);
}

std::string TextOf(const UnitHealth& health) {
  std::string text;
  for (const HealthLine& line : health.lines) text += "\n    " + line.about + ": " + line.text;
  for (const HealthLine& line : health.take_along) text += "\n    Take along: " + line.about;
  return text;
}

/// All that the history holds, of one unit or of all.
HistoryQuery Everything(std::int64_t unit = 0) {
  HistoryQuery query;
  query.unit = unit;
  query.contacts_since = Moment{1, 0};
  query.days_since = DateTime(1);
  query.gaps = query.scans = true;
  return query;
}

/// Name and value of a line of a JSON document, texts without their quotes.
std::pair<std::string, std::string> MemberOf(const std::string& line) {
  const std::size_t begin = line.find('"');
  const std::size_t end = line.find("\": ");
  if (begin == std::string::npos || end == std::string::npos) return {};
  std::string value = line.substr(end + 3);
  std::erase_if(value, [](char c) { return c == '"' || c == ','; });
  return {line.substr(begin + 1, end - begin - 1), value};
}

}  // namespace

// What people are told.

/// Which of it the program remembers, is known again when it has told it once more.
void Year::ForgetAlerts() {
  ended_at_ = Now();
  TakeAlerts();
  if (!HasTrouble()) return;
  standing_.clear();
  nobody_collects_ = false;
  alerts_known_from_ = Now() + 2 * kDay * kMilliseconds;
}

void Year::TakeAlerts() {
  for (const std::string& document : std::exchange(runner_.told, {})) {
    std::istringstream lines(document);
    std::map<std::string, std::string> members;
    for (std::string line; std::getline(lines, line);) {
      const auto [name, value] = MemberOf(line);
      if (name == "units") members["behind"] = members["relay"];
      if (name == "event") members.clear();
      members[name] = value;
      if (name == "cause" && value == kNobody) {
        nobody_collects_ = members["event"] != "cleared";
        told_since_start_ |= nobody_collects_;
      }
      if (name != "client_id" || members["cause"].empty()) continue;
      const auto row = value == "2" ? rows_.size() - 1 : std::stoul(members["id"]) - 1;
      TakeAlert(members["event"], members["cause"], members["behind"], row);
    }
  }
}

void Year::TakeAlert(const std::string& event, const std::string& cause, const std::string& relay, std::size_t row) {
  // Where a relay is told of, what was told of its units stands no more.
  std::int64_t since = Now();
  for (const bool behind : {false, !relay.empty()}) {
    if (const auto told = standing_.extract({cause, row, behind})) since = std::min(since, told.mapped());
  }
  if (event != "cleared") standing_[{cause, row, !relay.empty()}] = since;
}

void Year::JudgeAlerts() {
  TakeAlerts();
  if (!program_ || IsBusy() || !IsRoundOver() || Now() - started_at_ < kHour * kMilliseconds || HasTrouble()) return;
  if (Now() < alerts_known_from_) return;
  if (std::exchange(has_missed_a_round_, false)) {
    ++outcome_.counts[kNobody];
    if (!told_since_start_) Break("the program started late and did not tell that nobody has collected");
  } else if (nobody_collects_ && day_is_regular_ && regular_days_ > 2) {
    Break("it stands that nobody collects");
  }
  for (std::size_t row = 0; row < rows_.size(); ++row) JudgeAlertsOf(row);
  if (outcome_.broken.empty()) return;
  for (const UnitStatus& unit : program_->history().StatusNow().value_or(NetworkStatus()).units) {
    Note(unit.file + " is " + std::string(NameOf(unit.state)) + " by the status: " + unit.why);
  }
}

/// Two rounds without a sound have to be told, and so have old readings; behind three good rounds nothing stands. What
/// lies between may be either.
void Year::JudgeAlertsOf(std::size_t row) {
  const RawBook& book = rows_[row];
  const auto stands = [&](const char* cause, std::int64_t since) {
    return std::ranges::any_of(standing_, [&](const auto& told) {
      const auto& [what, whose, behind] = told.first;
      return what == cause && whose == row && told.second <= since;
    });
  };
  const auto last = book.LastDate();
  const std::int64_t age = last ? book.book.unit.clock() - *last : 0;
  const std::int64_t interval = 24 / settings_.rounds_a_day * kHour;
  const std::int64_t three_rounds_ago = Now() - (3 * interval - 2 * kHour) * kMilliseconds;
  const bool is_old = age > std::max(late_after_ * interval, 12 * kHour) + 2 * kHour;
  if (book.Shows(RawBook::Sign::Mute, 2, 0)) {
    ++outcome_.counts[kSilent];
    if (!stands(kSilent, Now())) Break(book.path + ": two rounds without an answer, and nobody was told");
  } else if (is_old && book.book.is_clock_known && day_ > 2) {
    ++outcome_.counts[kLate];
    if (!stands(kLate, Now()) && !stands(kSilent, Now()))
      Break(book.path + ": the last reading is old, and nobody was told");
  } else if (book.Shows(RawBook::Sign::Whole, 3, three_rounds_ago) && last && age < (late_after_ - 1) * interval) {
    ++outcome_.counts[kWell];
    // A unit that answers may have nothing: its last rounds were no good ones then.
    if (stands(kSilent, three_rounds_ago) || stands(kLate, three_rounds_ago))
      Break(book.path + ": three good rounds, and it still stands as silent or late");
  }
}

// What is told of a unit before somebody drives there.

void Year::JudgeHealth() {
  const auto status = program_->history().StatusNow();
  if (!status || std::ssize(status->units) != std::ssize(rows_)) return Break("how the network stands is not known");
  for (const UnitStatus& unit : status->units) {
    HistoryContents history;
    if (!program_->history().Read(Everything(unit.key), history).ok())
      return Break("the history of a unit cannot be read");
    JudgeHealthOf(rows_[static_cast<std::size_t>(unit.position - 1)], unit, HealthOf(unit, *status, history));
  }
}

/// Behind the calm days every unit has just answered whole: what is known of it now is what is so.
void Year::JudgeHealthOf(const RawBook& book, const UnitStatus& unit, const UnitHealth& health) {
  const auto check = [&](bool holds, const char* what) {
    if (!holds) Break(book.path + ": what is told of " + what + " is not so" + TextOf(health));
  };
  const auto says = [&health](const char* about, const std::string& text) {
    return std::ranges::any_of(health.lines, [&](const HealthLine& line) {
      return line.about == about && line.text.find(text) != std::string::npos;
    });
  };
  const auto take = [&health](const char* what) {
    return std::ranges::any_of(health.take_along, [&](const HealthLine& thing) { return thing.about == what; });
  };
  const basestation::Unit& device = book.book.unit;
  // A round that a kill has ended tells of the units before the one that was being asked.
  check(!health.contacts.empty() && health.contacts.front().outcome == Outcome::Answered && unit.answers.back(),
        "the last contacts");
  check(says("Relay", device.relay() == 0 ? "reached directly" : "through relay"), "the relay");
  const auto last = std::ranges::find(book.book.readings, book.LastDate(), &LoggedReading::date);
  const double volts = std::stod(Split(last->text, ',')[1].data()) / 1000;
  check(unit.battery && std::abs(*unit.battery - volts) < 0.1, "the battery");
  check(take("a charged battery") == (unit.battery && *unit.battery < 11.5) || unit.battery_days, "what to take");
  const DateTime clock = Moment{device.clock(), 0}.Local();
  const std::int64_t ahead = clock - loop_.NowUtc().Local();
  check(unit.clock_offset && std::abs(*unit.clock_offset - ahead) <= 120, "the clock");
  check(std::abs(ahead) > 500 || !take("a clock to set it by"), "what to take for the clock");
  check(!unit.clock_drift || std::abs(*unit.clock_drift - book.book.drift * kDay) < 6, "the drift of the clock");
}

// What is missing.

HistoryContents Year::ReadHistory() const {
  SqliteHistoryStore store;
  HistoryContents history;
  if (!store.OpenToRead(home_ + "/history.db").ok()) return history;
  static_cast<void>(store.Read(Everything(), history));
  // Which file it was, another run does not know.
  for (ScanRecord& scan : history.scans) scan.inode = 0, scan.modified = 0;
  return history;
}

void Year::JudgeGaps(const HistoryContents& history) {
  if (history.units.size() != rows_.size())
    return Break("the history holds " + std::to_string(history.units.size()) + " units");
  for (const UnitRecord& unit : history.units) {
    if (unit.position < 1 || unit.position > std::ssize(rows_))
      return Break("the history does not know a unit's place");
    std::vector<GapRecord> named;
    for (const GapRecord& gap : history.gaps) {
      if (gap.unit == unit.key && gap.missing > 0) named.push_back(gap);
    }
    JudgeGapsOf(static_cast<std::size_t>(unit.position - 1), std::move(named));
  }
}

/// By itself the program asks for a gap three times at most, which may all have been in bad days.
void Year::RepairByHand() {
  while (IsBusy()) PassTo(Now() + kMilliseconds);
  PassUnits();
  JudgeRawFiles();
  for (const RawBook& row : rows_) {
    for (const BookGap& gap : row.Gaps()) outcome_.counts[kByHand] += gap.held && !gap.clock_set ? gap.missing : 0;
  }
  std::vector<std::int64_t> units(rows_.size());
  std::iota(units.begin(), units.end(), 1);
  program_->commands().RepairUnits(units, DateTime());
  JudgeRawFiles();
}

/// What is named, and what the unit's own book says, between each two readings of the raw file.
void Year::JudgeGapsOf(std::size_t row, std::vector<GapRecord> named) {
  std::string lists;
  bool agree = true;
  for (const BookGap& gap : rows_[row].Gaps()) {
    outcome_.counts[kSkipped] += gap.not_later;
    const auto found = std::ranges::find_if(
        named, [&gap](const GapRecord& each) { return each.from == DateOf(gap.from) && each.to == DateOf(gap.to); });
    GapRecord told;
    told.from = DateOf(gap.from);
    told.to = DateOf(gap.to);
    if (found != named.end()) {
      told = *found;
      named.erase(found);
    }
    if (told.missing > 0 || gap.missing > 0) {
      lists += TextOf(told) + " named, " + std::to_string(gap.missing) + " by the book" +
               (gap.clock_set ? ", clock set forward" : "") + (gap.period_set ? ", period set" : "");
    }
    if (repairs_gaps_ && gap.held && gap.missing > 0 && !gap.clock_set) {
      agree = false;
      lists += " in the unit's memory !";
    } else if (told.missing == gap.missing) {
      outcome_.counts[kNamed] += gap.missing;
    } else if (gap.clock_set) {
      outcome_.counts[kClockForward] += std::abs(told.missing - gap.missing);
    } else {
      agree = false;
      lists += " !";
    }
  }
  for (const GapRecord& each : named) lists += TextOf(each) + " named between readings that are no neighbours !";
  if (!agree || !named.empty()) Break(rows_[row].path + " lacks other readings than the history names:" + lists);
}

}  // namespace corvane::test
