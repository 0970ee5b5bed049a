// Converts one raw file as the conversion command does, without a window or console.
//
// usage: corvane-bench-convert RAW-FILE TABLE-FOLDER     (full paths; tables moisture.lkp, salinity.lkp, salcorr.lkp)
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "data/calibrated_converter.h"
#include "form/form.h"
#include "platform/event_loop.h"
#include "platform/shell.h"
#include "printing_dialogs.h"
#include "trace/trace.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace {

using namespace corvane;

/// A real clock and nothing to wait for.
class ClockLoop : public EventLoop {
 public:
  [[nodiscard]] DateTime Now() const override { return DateTime::FromCivil(2010, 3, 12); }
  [[nodiscard]] std::int64_t MonotonicMilliseconds() const override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  }
  std::unique_ptr<Timer> MakeTimer(std::function<void()>) override { return std::make_unique<NoTimer>(); }
  void Post(std::function<void()>) override {}
  void Yield() override {}
  void Poll() override { ++polls; }

  long polls = 0;

 private:
  class NoTimer : public Timer {
    void Start(std::int64_t) override {}
    void Stop() override {}
    [[nodiscard]] bool Running() const override { return false; }
    [[nodiscard]] std::int64_t Interval() const override { return 0; }
  };
};

class NoShell : public Shell {
 public:
  [[nodiscard]] std::string ProgramFolder() const override { return {}; }
  [[nodiscard]] std::string ProgramName() const override { return {}; }
  Status OpenEditor(const std::string&) override { return Status::Ok(); }
  Status OpenDocument(const std::string&) override { return Status::Ok(); }
  [[nodiscard]] bool HasLogOnEntry() const override { return false; }
  Status WriteLogOnEntry(const std::string&) override { return Status::Ok(); }
  Status DeleteLogOnEntry() override { return Status::Ok(); }
  [[nodiscard]] bool TakeInstanceLock(const std::string&) override { return true; }
  void Beep() override {}
};

/// The largest resident size so far in kB, 0 when the system does not say.
long LargestResidentSize() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::stol(line.substr(6));
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: corvane-bench-convert RAW-FILE TABLE-FOLDER\n");
    return 2;
  }
  const std::string folder = std::string(argv[2]) + "/";
  Form form;
  RunFlags flags;
  const LinkState link;
  const DownloadState download;
  Registry registry;
  ClockLoop loop;
  PrintingDialogs dialogs;
  NoShell shell;
  Trace trace(form, link, loop, shell);
  Messages messages({form, flags, loop, dialogs, trace});
  ProgressBars bars;
  bars.Download.SetBar(form.Bar_Download);
  Lookups lookups(messages);
  CalibratedConverter converter({form, flags, download, registry, lookups, loop, bars, messages, trace});

  Unit unit;
  unit.MoistureCorrection = 2.5F;
  unit.SalinityCorrection = 1.5F;
  registry.Units.Append(unit);
  form.Lst_Units.Add("unit");
  form.Lst_Units.SetCurrent(0);
  form.Chk_Kelvin.SetTicked(true);
  form.Chk_Uncorrected.SetTicked(true);
  form.Txt_CalibratedFileExtension.SetText("txt");
  form.Txt_DateFormat.SetText("d mmm yyyy HH:MM");
  const bool tables = lookups.Moisture.Initialise(folder + "moisture.lkp") &&
                      lookups.Salinity.Initialise(folder + "salinity.lkp") &&
                      lookups.Correction.Initialise(folder + "salcorr.lkp");
  if (!tables || !converter.ConvertToCalibrated(argv[1])) return 1;
  std::printf("%lld lines, %lld errors, %ld polls, %.1f MB\n", static_cast<long long>(flags.line_counter),
              static_cast<long long>(flags.error_counter), loop.polls,
              static_cast<double>(LargestResidentSize()) / 1024);
  return 0;
}
