#include "stations_command.h"

#include <cerrno>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "base/files.h"
#include "base/replacement_file.h"
#include "full_path.h"
#include "history/status_texts.h"
#include "setup/field_rules.h"
#include "setup/stations_question.h"

namespace corvane::console {
namespace {

constexpr const char* kStandardStream = "-";

int Fail(Desk& desk, const std::string& why, int status) {
  desk.saves = false;
  desk.output.Error("corvanectl: " + why);
  return status;
}

int Export(Desk& desk, const std::string& file) {
  const std::string text = desk.app.commands().AskStations().File();
  if (file == kStandardStream) {
    desk.output.Result(text);
    return kAllWell;
  }
  const std::string path = FullPath(file);
  const std::string problem = NewFileProblem(path);
  const Status written = problem.empty() ? WriteFileAtomically(path, text) : Status(ENOENT, problem);
  if (!written.ok()) return Fail(desk, "the table cannot be written: " + written.text(), kProblems);
  const Registry& registry = desk.app.registry();
  desk.output.Line(path + ": " + CountText(registry.Units.count(), "unit", "units") + ", " +
                   CountText(registry.Relays.count(), "relay", "relays") + ", " +
                   CountText(registry.Clients.count(), "client", "clients"));
  return kAllWell;
}

Status ReadTable(Desk& desk, const std::string& file, std::string& bytes) {
  if (file != kStandardStream) return ReadFile(FullPath(file), bytes, kLargestStationsFile);
  return desk.dialogs.ReadAll(desk.loop, desk.app.flags().closing, kLargestStationsFile, bytes);
}

int TellFaults(Desk& desk, const std::string& name, const std::vector<StationFault>& faults) {
  for (const StationFault& fault : faults) {
    desk.output.Error(name + (fault.line > 0 || !fault.column.empty() ? ", " : ": ") + fault.Sentence());
  }
  return Fail(desk, CountText(std::ssize(faults), "fault", "faults") + "; nothing is put in", kProblems);
}

int Import(Desk& desk, const Options& options) {
  const std::string& file = options.arguments[1];
  const std::string name = file == kStandardStream ? "standard input" : file;
  std::string bytes;
  if (const Status read = ReadTable(desk, file, bytes); !read.ok()) {
    return Fail(desk, "the table cannot be read: " + read.text(), kProblems);
  }
  const StationTable table = ReadStations(std::move(bytes));
  const StationsQuestion question = desk.app.commands().AskStations();
  const StationsPlan plan = question.Answer(table, options.deletes);
  if (!plan.faults.empty()) return TellFaults(desk, name, plan.faults);
  for (const std::string& change : plan.changes) desk.output.Line(change);
  for (const std::string& note : plan.notes) desk.output.Line("(" + note + ")");
  if (desk.app.setup().PlanOf().first && !options.deletes) {
    desk.output.Line(
        "(Site 1 to Site 5 are examples that new settings begin with; those that stay would be asked: --delete takes "
        "them away)");
  }
  desk.saves = !plan.changes.empty() && !options.dry_run;
  if (plan.changes.empty()) {
    desk.output.Line("no change");
    return kAllWell;
  }
  if (options.dry_run) {
    desk.output.Line(CountText(std::ssize(plan.changes), "change", "changes") + "; nothing is put in");
    return kAllWell;
  }
  if (!desk.app.commands().PutInStations(question, plan)) {
    return Fail(desk, "the lists have changed meanwhile; nothing is put in", kProblems);
  }
  desk.output.Line(CountText(std::ssize(plan.changes), "change", "changes") + " put in");
  return kAllWell;
}

}  // namespace

int Stations(Desk& desk, const Options& options) {
  return options.arguments[0] == "export" ? Export(desk, options.arguments[1]) : Import(desk, options);
}

}  // namespace corvane::console
