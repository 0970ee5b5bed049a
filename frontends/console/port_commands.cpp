#include "port_commands.h"

#include "base/scoped_value.h"
#include "list_commands.h"
#include "units.h"

namespace corvane::console {
namespace {

std::int16_t PortIndexOf(const Options& options) {
  return !options.arguments.empty() && options.arguments[0] == "hand-held" ? 1 : 0;
}

std::string PortText(Application& app, int index) {
  const Selector& ports = app.form().Cmb_Port[index];
  const std::string device = app.devices().DeviceOf(ports.SelectedItemData());
  return ports.shown_text() + " (" + (device.empty() ? "no device" : device) + ")";
}

/// The download that the schedule starts, with the table of its results behind it.
std::function<void()> WithTable(Desk& desk) {
  return [&desk, download = desk.app.schedule().start_download] {
    UnitResults results(desk.app, UnitResults::Kind::Download);
    OperateOn(desk, results, ActiveUnits(desk.app.registry(), kFromRadio), download);
    static_cast<void>(Report(desk, results));
  };
}

}  // namespace

int TestPort(Desk& desk, const Options& options) {
  const std::int16_t index = PortIndexOf(options);
  Operate(desk, [&desk, index] { desk.app.commands().TestPort(index); });
  if (desk.problems == 0) {
    desk.output.Line(PortText(desk.app, index) + ": answered");
  } else {
    desk.output.Error(PortText(desk.app, index) + ": no answer");
  }
  return StatusOf(desk);
}

int FindPort(Desk& desk, const Options& options) {
  const std::int16_t index = PortIndexOf(options);
  Operate(desk, [&desk, index] { desk.app.commands().FindPort(index); });
  if (desk.problems == 0) desk.output.Line("Kept in the settings: " + PortText(desk.app, index));
  return StatusOf(desk);
}

int KeepSchedule(Desk& desk, const Options& options) {
  Form& form = desk.app.form();
  if (!options.interval.empty()) {
    form.Txt_AutomaticInterval.SetText(options.interval);
    form.Txt_AutomaticInterval.Leave();
  }
  if (!options.log_size.empty()) form.LogSize = options.log_size;
  if (options.automatic) form.Chk_Automatic.SetTicked(true);
  if (!form.Chk_Automatic.ticked()) {
    desk.output.Error(
        "Automatic download is switched off in the settings. Switch it on with: corvanectl run --automatic "
        "[--interval H:MM]");
    return kNotStarted;
  }
  if (const std::string& interval = form.Txt_AutomaticInterval.text(); !AutomaticInterval(interval)) {
    desk.output.Error("The interval \"" + interval + "\" cannot be used: it " + WhyNoInterval(interval) +
                      ". Enter another with: corvanectl run --interval H:MM");
    return kNotStarted;
  }
  if (options.recover && desk.app.recovery() != RecoveryState::None) (void)Recover(desk, options);
  const ScopedValue<std::function<void()>> rounds(desk.app.schedule().start_download, WithTable(desk));
  desk.app.life().OnWindowActivate("");
  desk.output.Line("Running in " + desk.app.app().Folder() + ", next download: " + form.Lbl_NextDownload.text());
  desk.view.ShowNextDownload();
  desk.app.RunUntilClosed();
  desk.output.Line("Ended");
  return kAllWell;
}

}  // namespace corvane::console
