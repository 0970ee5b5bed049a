#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iostream>
#include <utility>

#include "log.h"
#include "options.h"
#include "pty.h"
#include "run_time_error.h"
#include "server.h"
#include "state_file.h"
#include "station.h"

namespace corvane::basestation {
namespace {

constexpr int kUsage = 2;
constexpr int kCannotStart = 3;

FaultPlan PlanFaults(const Options& options) {
  FaultPlan plan(static_cast<std::uint64_t>(options.seed));
  if (!options.faults.empty()) {
    try {
      plan.ReadProbabilities(options.faults);
    } catch (const RunTimeError& error) {
      throw UsageError(std::string("--faults: ") + error.what());
    }
  }
  if (!options.script.empty()) {
    std::ifstream script(options.script);
    if (!script) throw RunTimeError("cannot read the script " + options.script);
    try {
      plan.ReadScript(script);
    } catch (const RunTimeError& error) {
      throw RunTimeError(options.script + ": " + error.what());
    }
  }
  return plan;
}

Station BuildStation(const Options& options) {
  const auto seed = static_cast<std::uint64_t>(options.seed);
  std::vector<Unit> units;
  for (const Place& place : options.places) {
    const Soil soil(seed, place.unit, static_cast<int>(options.sensors));
    units.emplace_back(place.unit, place.relay, soil, options.start, options.interval * kMinute, options.readings);
  }
  return {{options.echo, options.advance, seed}, std::move(units), PlanFaults(options)};
}

/// Blocks the signals that the server takes and returns the descriptor that delivers them.
int CatchSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGUSR1}) sigaddset(&set, signal);
  sigprocmask(SIG_BLOCK, &set, nullptr);
  return signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
}

void Serve(const Options& options) {
  const int signals = CatchSignals();
  Station station = BuildStation(options);
  if (!options.state.empty()) LoadState(options.state, station);
  Log log;
  if (!options.log.empty()) log.Open(options.log);
  Pty pty(options.link);
  pty.Open();
  std::cout << "ready: " << pty.name() << std::endl;
  Server server({options.baud, options.clock_speed, std::max<std::int64_t>(options.advance, 1), options.idle_exit,
                 options.end_with_input ? STDIN_FILENO : -1, options.end_with_link, options.state},
                station, pty, log);
  server.Run(signals);
}

int Main(const std::vector<std::string>& arguments) {
  try {
    const Options options = ParseOptions(arguments);
    if (options.help || options.version) {
      std::cout << (options.help ? HelpText() : VersionText());
      return 0;
    }
    Serve(options);
    return 0;
  } catch (const UsageError& error) {
    std::cerr << "corvane-basestation: " << error.what() << "\nTry: corvane-basestation --help\n";
    return kUsage;
  } catch (const std::exception& error) {
    std::cerr << "corvane-basestation: " << error.what() << "\n";
    return kCannotStart;
  }
}

}  // namespace
}  // namespace corvane::basestation

int main(int argc, char** argv) {
  return corvane::basestation::Main({argv + 1, argv + argc});
}
