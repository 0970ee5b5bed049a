#include "setup/setup_tries.h"

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "base/files.h"
#include "base/format.h"
#include "base/paths.h"
#include "base/scoped_value.h"
#include "base/status.h"
#include "base/text.h"
#include "history/status_texts.h"
#include "setup/field_rules.h"
#include "setup/setup_records.h"

namespace corvane {
namespace {

constexpr std::int64_t kRightSeconds = 60;
constexpr int kTries = 3;
constexpr std::int64_t kEchoMilliseconds = 1000;
constexpr std::string_view kProbe = "corvane";
constexpr std::string_view kStampPattern = "yymmddHHNNSS";

constexpr struct {
  Phrase no_device{1580, "No device is chosen: plug the adapter of the base station in."};
  Phrase port_cancelled{1581, "The port was not tested to the end: cancelled."};
  Phrase port_failed{1582, "The port failed while it was tested: %1. Plug the adapter in firmly and test again."};
  Phrase no_base_station{1583,
                         "Something answers with an error or as modems do (%1), which may be no base station: choose "
                         "another device, or ask a unit for its clock to be sure."};
  Phrase answers{1584, "The base station answers."};
  Phrase answers_with{1585, "The base station answers: %1"};
  Phrase echoes{
      1586,
      "Nothing answers on %1 but an echo of what is sent: a plug that joins sending to receiving, or a device "
      "that waits for another command. Check the cable, or choose another device."};
  Phrase silent{1587,
                "Nothing answers on %1: check that the base station has power and its cable sits, or choose another "
                "device."};
  Phrase cancelled{1588, "cancelled"};
  Phrase too_late{1589, "no answer came in time"};
  Phrase no_unit{1590, "there is no such unit"};
  Phrase not_by_radio{1591, "it is not read by radio"};
  Phrase clock_not_set{1592, "The unit's clock could not be set: %1."};
  Phrase clock_not_told{1593,
                        "The unit did not tell its clock: %1. Check its ID and relay, or that it is in reach and has "
                        "power."};
  Phrase no_date{1594, "The unit answers %1, which is no date: something else may have answered."};
  Phrase clock_right{1595, "The unit's clock shows %1, which is right."};
  Phrase clock_ahead{1596, "The unit's clock shows %1, %2 ahead of this computer's clock."};
  Phrase clock_behind{1597, "The unit's clock shows %1, %2 behind this computer's clock."};
  Phrase not_created{1598, "The backup folder cannot be created: %1."};
  Phrase can_write{1599, "A file can be written into %1."};
  Phrase cannot_write{1600, "The backup folder cannot be used: %1. Choose another, or ask for the right to it."};
} kTrySays;

/// Lets the radio port stand for the plan's device as long as it lives.
class PlannedPort {
 public:
  PlannedPort(Form& form, PortDevices& devices, const SetupPlan& plan)
      : form_(form),
        devices_(devices),
        number_(plan.port),
        chosen_(form.Cmb_Port[0].SelectedItemData()),
        assigned_(devices.AssignedTo(plan.port)) {
    if (devices_.DeviceOf(number_) != plan.device) devices_.Assign(number_, plan.device);
    form_.Cmb_Port[0].SelectByItemData(number_);
  }
  ~PlannedPort() {
    devices_.Assign(number_, assigned_);
    form_.Cmb_Port[0].SelectByItemData(chosen_);
  }
  PlannedPort(const PlannedPort&) = delete;
  PlannedPort& operator=(const PlannedPort&) = delete;

 private:
  Form& form_;
  PortDevices& devices_;
  int number_;
  std::int32_t chosen_;
  std::string assigned_;
};

/// What a modem says to whatever it hears.
bool SoundsLikeModem(std::string_view as_Answer) {
  for (const std::string_view word : {"OK", "ERROR", "NO CARRIER", "CONNECT", "RING", "NO DIALTONE", "BUSY", "AT"}) {
    if (EqualsNoCase(as_Answer, word)) return true;
  }
  return StartsWithNoCase(as_Answer, "AT+") || StartsWithNoCase(as_Answer, "+CME");
}

SetupAnswer WriteIn(const std::string& as_Folder, const Phrases& av_Say) {
  const bool was_there = IsFolder(as_Folder);
  try {
    CreatePath(as_Folder);
  } catch (const RunTimeError& error) {
    return {false, av_Say.Text(kTrySays.not_created, {error.what()})};
  }
  const std::string file = AddBackslash(as_Folder) + ".corvane-try";
  OutputFile trial;
  Status done = trial.Create(file);
  if (done.ok()) done = trial.Write("Corvane tries whether it may write here.\n");
  if (done.ok()) done = trial.Sync();
  trial.Close();
  (void)RemoveFile(file);
  if (!was_there) (void)std::remove(as_Folder.c_str());
  if (done.ok()) return {true, av_Say.Text(kTrySays.can_write, {as_Folder})};
  return {false, av_Say.Text(kTrySays.cannot_write, {done.text()})};
}

}  // namespace

SetupAnswer SetupTries::TryPort(const SetupPlan& av_Plan) {
  if (av_Plan.device.empty()) return {false, say_.Text(kTrySays.no_device)};
  const PlannedPort planned(p_.form, p_.devices, av_Plan);
  const ScopedValue<std::string> asked(p_.link.Asked, "Base station");
  p_.form.Lbl_HeaderLine.SetText("");
  const bool answered = p_.finder.TestBaseUnit(0);
  if (p_.link.UserCancel) return {false, say_.Text(kTrySays.port_cancelled)};
  if (p_.link.PortFailed) return {false, p_.form.Lbl_PortProblem.text() + "."};
  if (!answered) return {false, WhySilent()};
  if (p_.finder.FailedHere()) return {false, say_.Text(kTrySays.port_failed, {p_.finder.Error()})};
  const bool is_error = !p_.finder.Error().empty();
  const std::string line(Trim(is_error ? p_.finder.Error() : p_.form.Lbl_HeaderLine.text()));
  if (is_error || SoundsLikeModem(line)) return {false, say_.Text(kTrySays.no_base_station, {Quote(line)})};
  return {true, line.empty() ? say_.Text(kTrySays.answers) : say_.Text(kTrySays.answers_with, {line})};
}

std::string SetupTries::WhySilent() {
  if (!p_.port.OpenPort(0)) return p_.form.Lbl_PortProblem.text() + ".";
  p_.port.BeginDiscarding();
  p_.exchange.SendLine(kProbe);
  p_.pauser.Wait(kEchoMilliseconds);
  const bool echoes = p_.port.Discarded() >= kProbe.size();
  p_.port.EndDiscarding();
  p_.port.ClearEverything();
  p_.port.ClosePort();
  return say_.Text(echoes ? kTrySays.echoes : kTrySays.silent,
                   {p_.devices.DeviceOf(p_.form.Cmb_Port[0].SelectedItemData())});
}

std::string SetupTries::WhyFailed() const {
  if (p_.link.UserCancel) return say_.Text(kTrySays.cancelled);
  if (p_.link.Timeout) return say_.Text(kTrySays.too_late);
  if (p_.link.HalvexError) return p_.link.ResultTextOf(p_.link.ResultCode);
  return {};
}

SetupAnswer SetupTries::Ask(const SetupPlan& av_Plan, std::size_t al_Row, std::int16_t ai_Command) {
  const SetupRecords records = RecordsOf(av_Plan, p_.registry);
  if (al_Row < 1 || al_Row > records.units.size()) return {false, say_.Text(kTrySays.no_unit)};
  const Unit& unit = records.units[al_Row - 1].record;
  if (unit.GetFrom != kFromRadio) return {false, say_.Text(kTrySays.not_by_radio)};
  const PlannedPort planned(p_.form, p_.devices, av_Plan);
  const ScopedValue<std::string> asked(p_.link.Asked, unit.Name);
  if (!p_.port.OpenPort(0)) return {false, p_.form.Lbl_PortProblem.text()};
  p_.attempts.AwaitQuiet();
  SetupAnswer answer;
  for (int attempt = 1; attempt <= kTries && !answer.well && !p_.link.UserCancel; ++attempt) {
    p_.port.ClearBeforeCommand(CommandOf(ai_Command).name);
    p_.form.Lbl_HeaderLine.SetText("");
    const std::string stamp = ai_Command == kSetDate ? FormatDate(p_.loop.Now(), kStampPattern) : "";
    p_.exchange.SendCommand(BuildCommandLine(p_.registry, unit, ai_Command, stamp));
    p_.exchange.SetState(ai_Command);
    p_.exchange.WaitForChangeOfState();
    p_.exchange.SetStateFinished();
    p_.port.EndExchange();
    answer.text = WhyFailed();
    answer.well = answer.text.empty();
    if (answer.well) answer.text = Trim(p_.form.Lbl_HeaderLine.text());
    p_.attempts.LetUnitRest();
    if (p_.link.Timeout || !p_.port.IsOpen()) break;
  }
  p_.port.ClearEverything();
  p_.port.ClosePort();
  return answer;
}

SetupClock SetupTries::AskClock(const SetupPlan& av_Plan, std::size_t al_Row) {
  SetupClock clock = ClockOf(Ask(av_Plan, al_Row, kGetDate));
  clock.unit = al_Row;
  return clock;
}

SetupClock SetupTries::SetClock(const SetupPlan& av_Plan, std::size_t al_Row) {
  const SetupAnswer set = Ask(av_Plan, al_Row, kSetDate);
  if (!set.well) {
    SetupClock clock;
    clock.text = say_.Text(kTrySays.clock_not_set, {set.text});
    clock.is_off = true;
    clock.unit = al_Row;
    return clock;
  }
  SetupClock clock = AskClock(av_Plan, al_Row);
  clock.was_set = true;
  return clock;
}

SetupClock SetupTries::ClockOf(const SetupAnswer& av_Answer) const {
  SetupClock clock;
  if (!av_Answer.well && p_.link.PortFailed) {
    clock.text = av_Answer.text + ".";
    return clock;
  }
  if (!av_Answer.well) {
    clock.text = say_.Text(kTrySays.clock_not_told, {av_Answer.text});
    return clock;
  }
  const std::optional<DateTime> time = ParseDate(av_Answer.text);
  if (!time) {
    clock.text = say_.Text(kTrySays.no_date, {Quote(av_Answer.text)});
    return clock;
  }
  const std::int64_t since = (p_.loop.MonotonicMilliseconds() - p_.link.LastLineTime) / 1000;
  clock.seconds_ahead = *time + since - p_.loop.Now();
  clock.is_off = std::abs(clock.seconds_ahead) > kRightSeconds;
  clock.well = !clock.is_off;
  const Phrase& how = !clock.is_off             ? kTrySays.clock_right
                      : clock.seconds_ahead > 0 ? kTrySays.clock_ahead
                                                : kTrySays.clock_behind;
  clock.text = say_.Text(how, {GeneralDate(*time), SpanText(clock.seconds_ahead, say_)});
  return clock;
}

SetupAnswer SetupTries::TryBackup(const SetupPlan& av_Plan, const AppInfo& av_App) {
  const std::string folder = av_App.AppPath(WithSlashes(Trim(av_Plan.backup_folder)));
  SetupAnswer answer;
  // A share that does not answer may keep the disk waiting.
  p_.loop.Aside([this, &folder, &answer] { answer = WriteIn(folder, say_); });
  return answer;
}

std::vector<Phrase> SetupTryPhrases() {
  return PhrasesIn(kTrySays);
}

}  // namespace corvane
