#include "setup/setup_tries.h"

#include <cstdio>
#include <cstdlib>
#include <optional>

#include "base/files.h"
#include "base/format.h"
#include "base/paths.h"
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

SetupAnswer WriteIn(const std::string& as_Folder) {
  const bool was_there = IsFolder(as_Folder);
  try {
    CreatePath(as_Folder);
  } catch (const RunTimeError& error) {
    return {false, std::string("The backup folder cannot be created: ") + error.what() + "."};
  }
  const std::string file = AddBackslash(as_Folder) + ".corvane-try";
  OutputFile trial;
  Status done = trial.Create(file);
  if (done.ok()) done = trial.Write("Corvane tries whether it may write here.\n");
  if (done.ok()) done = trial.Sync();
  trial.Close();
  (void)RemoveFile(file);
  if (!was_there) (void)std::remove(as_Folder.c_str());
  if (done.ok()) return {true, "A file can be written into " + as_Folder + "."};
  return {false, "The backup folder cannot be used: " + done.text() + ". Choose another, or ask for the right to it."};
}

}  // namespace

SetupAnswer SetupTries::TryPort(const SetupPlan& av_Plan) {
  if (av_Plan.device.empty()) return {false, "No device is chosen: plug the adapter of the base station in."};
  const PlannedPort planned(p_.form, p_.devices, av_Plan);
  p_.form.Lbl_HeaderLine.SetText("");
  const bool answered = p_.finder.TestBaseUnit(0);
  if (p_.link.UserCancel) return {false, "The port was not tested to the end: cancelled."};
  if (p_.link.PortFailed) return {false, p_.form.Lbl_PortProblem.text() + "."};
  if (!answered) return {false, WhySilent()};
  if (p_.finder.FailedHere()) {
    return {false, "The port failed while it was tested: " + p_.finder.Error() +
                       ". Plug the adapter in firmly and test again."};
  }
  const bool is_error = !p_.finder.Error().empty();
  const std::string line(Trim(is_error ? p_.finder.Error() : p_.form.Lbl_HeaderLine.text()));
  if (is_error || SoundsLikeModem(line)) {
    return {false, "Something answers with an error or as modems do (" + Quote(line) +
                       "), which may be no base station: choose another device, or ask a unit for its clock to be "
                       "sure."};
  }
  return {true, line.empty() ? "The base station answers." : "The base station answers: " + line};
}

std::string SetupTries::WhySilent() {
  const std::string silent = "Nothing answers on " + p_.devices.DeviceOf(p_.form.Cmb_Port[0].SelectedItemData());
  if (!p_.port.OpenPort(0)) return p_.form.Lbl_PortProblem.text() + ".";
  p_.port.BeginDiscarding();
  p_.exchange.SendLine(kProbe);
  p_.pauser.Wait(kEchoMilliseconds);
  const bool echoes = p_.port.Discarded() >= kProbe.size();
  p_.port.EndDiscarding();
  p_.port.ClearEverything();
  p_.port.ClosePort();
  if (echoes) {
    return silent +
           " but an echo of what is sent: a plug that joins sending to receiving, or a device that waits for another "
           "command. Check the cable, or choose another device.";
  }
  return silent + ": check that the base station has power and its cable sits, or choose another device.";
}

std::string SetupTries::WhyFailed() const {
  if (p_.link.UserCancel) return "cancelled";
  if (p_.link.Timeout) return "no answer came in time";
  if (p_.link.HalvexError) return p_.link.ResultTextOf(p_.link.ResultCode);
  return {};
}

SetupAnswer SetupTries::Ask(const SetupPlan& av_Plan, std::size_t al_Row, std::int16_t ai_Command) {
  const SetupRecords records = RecordsOf(av_Plan, p_.registry);
  if (al_Row < 1 || al_Row > records.units.size()) return {false, "there is no such unit"};
  const Unit& unit = records.units[al_Row - 1].record;
  if (unit.GetFrom != kFromRadio) return {false, "it is not read by radio"};
  const PlannedPort planned(p_.form, p_.devices, av_Plan);
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
  return ClockOf(Ask(av_Plan, al_Row, kGetDate));
}

SetupClock SetupTries::SetClock(const SetupPlan& av_Plan, std::size_t al_Row) {
  const SetupAnswer set = Ask(av_Plan, al_Row, kSetDate);
  if (!set.well) {
    SetupClock clock;
    clock.text = "The unit's clock could not be set: " + set.text + ".";
    clock.is_off = true;
    return clock;
  }
  return AskClock(av_Plan, al_Row);
}

SetupClock SetupTries::ClockOf(const SetupAnswer& av_Answer) const {
  SetupClock clock;
  if (!av_Answer.well && p_.link.PortFailed) {
    clock.text = av_Answer.text + ".";
    return clock;
  }
  if (!av_Answer.well) {
    clock.text = "The unit did not tell its clock: " + av_Answer.text +
                 ". Check its ID and relay, or that it is in reach and has power.";
    return clock;
  }
  const std::optional<DateTime> time = ParseDate(av_Answer.text);
  if (!time) {
    clock.text = "The unit answers " + Quote(av_Answer.text) + ", which is no date: something else may have answered.";
    return clock;
  }
  const std::int64_t since = (p_.loop.MonotonicMilliseconds() - p_.link.LastLineTime) / 1000;
  clock.seconds_ahead = *time + since - p_.loop.Now();
  clock.is_off = std::abs(clock.seconds_ahead) > kRightSeconds;
  clock.well = !clock.is_off;
  clock.text = "The unit's clock shows " + GeneralDate(*time) + ", ";
  clock.text += clock.is_off ? SpanText(clock.seconds_ahead) + (clock.seconds_ahead > 0 ? " ahead of" : " behind") +
                                   " this computer's clock."
                             : "which is right.";
  return clock;
}

SetupAnswer SetupTries::TryBackup(const SetupPlan& av_Plan, const AppInfo& av_App) {
  const std::string folder = av_App.AppPath(WithSlashes(Trim(av_Plan.backup_folder)));
  SetupAnswer answer;
  // A share that does not answer may keep the disk waiting.
  p_.loop.Aside([&folder, &answer] { answer = WriteIn(folder); });
  return answer;
}

}  // namespace corvane
