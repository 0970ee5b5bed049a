#include <sys/signalfd.h>

#include <csignal>
#include <fstream>
#include <iostream>
#include <utility>

#include "log.h"
#include "options.h"
#include "pty.h"
#include "server.h"
#include "station.h"

namespace corvane::basestation {
namespace {

constexpr int kUsage = 2;
constexpr int kCannotStart = 3;

/// A reason not to start; `what()` says which.
class StartError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

void Require(const std::string& problem) {
  if (!problem.empty()) throw StartError(problem);
}

FaultPlan PlanFaults(const Options& options) {
  FaultPlan plan(static_cast<std::uint64_t>(options.seed));
  if (!options.faults.empty()) {
    if (const std::string problem = plan.ReadProbabilities(options.faults); !problem.empty()) {
      throw UsageError("--faults: " + problem);
    }
  }
  if (!options.script.empty()) {
    std::ifstream script(options.script);
    if (!script) throw StartError("cannot read the script " + options.script);
    const std::string problem = plan.ReadScript(script);
    Require(problem.empty() ? "" : options.script + ": " + problem);
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
  if (!options.state.empty()) Require(station.Load(options.state));
  Log log;
  if (!options.log.empty() && !log.Open(options.log)) throw StartError("cannot write the log " + options.log);
  Pty pty(options.link);
  Require(pty.Open());
  std::cout << "ready: " << pty.name() << std::endl;
  Server server(
      {options.baud, options.clock_speed, std::max<std::int64_t>(options.advance, 1), options.idle_exit, options.state},
      station, pty, log);
  Require(server.Run(signals));
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
