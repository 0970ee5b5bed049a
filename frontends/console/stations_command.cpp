#include "stations_command.h"

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include "base/files.h"
#include "base/replacement_file.h"
#include "desktop/terminal.h"
#include "full_path.h"
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
  const Status written = WriteFileAtomically(FullPath(file), text);
  return written.ok() ? kAllWell : Fail(desk, "the table cannot be written: " + written.text(), kProblems);
}

Status ReadTable(const std::string& file, std::string& bytes) {
  if (file != kStandardStream) return ReadFile(FullPath(file), bytes, kLargestStationsFile);
  while (ReadArrived(kStandardInput, bytes)) {
    if (static_cast<std::int64_t>(bytes.size()) > kLargestStationsFile) return {EFBIG, "the table is too large"};
  }
  return Status::Ok();
}

int TellFaults(Desk& desk, const std::string& name, const std::vector<StationFault>& faults) {
  for (const StationFault& fault : faults) desk.output.Error(name + ", " + fault.Sentence());
  const std::string count = std::to_string(faults.size()) + (faults.size() == 1 ? " fault" : " faults");
  return Fail(desk, count + "; nothing is put in", kProblems);
}

std::string CountOf(const StationsPlan& plan) {
  return std::to_string(plan.changes.size()) + (plan.changes.size() == 1 ? " change" : " changes");
}

int Import(Desk& desk, const Options& options) {
  const std::string& file = options.arguments[1];
  const std::string name = file == kStandardStream ? "standard input" : file;
  std::string bytes;
  if (const Status read = ReadTable(file, bytes); !read.ok()) {
    return Fail(desk, "the table cannot be read: " + read.text(), kProblems);
  }
  const StationTable table = ReadStations(std::move(bytes));
  const StationsQuestion question = desk.app.commands().AskStations();
  const StationsPlan plan = question.Answer(table, options.deletes);
  if (!plan.faults.empty()) return TellFaults(desk, name, plan.faults);
  for (const std::string& change : plan.changes) desk.output.Line(change);
  for (const std::string& note : plan.notes) desk.output.Line("(" + note + ")");
  desk.saves = !plan.changes.empty() && !options.dry_run;
  if (plan.changes.empty()) {
    desk.output.Line("no change");
    return kAllWell;
  }
  if (options.dry_run) {
    desk.output.Line(CountOf(plan) + "; nothing is put in");
    return kAllWell;
  }
  if (!desk.app.commands().PutInStations(question, plan)) {
    return Fail(desk, "the lists have changed meanwhile; nothing is put in", kProblems);
  }
  desk.output.Line(CountOf(plan) + " put in");
  return kAllWell;
}

}  // namespace

int Stations(Desk& desk, const Options& options) {
  return options.arguments[0] == "export" ? Export(desk, options.arguments[1]) : Import(desk, options);
}

}  // namespace corvane::console
