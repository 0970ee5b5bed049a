#include "rounds/file_results.h"

#include <algorithm>

namespace corvane {

void FileResults::Keep(std::int64_t al_Unit, const std::string& as_File, const std::string& as_Problem) {
  results_.push_back({al_Unit, as_File, as_Problem});
  if (as_Problem.empty()) {
    // The sign of a radio exchange stays; one that a transfer has set is over with the next that goes well.
    if (marked_.erase(al_Unit) > 0) form_.Lst_Units.SetMark(al_Unit - 1, RowMark::Well);
    return;
  }
  ++flags_.problems;
  trace_.LogWrite("Not done: " + as_File + ": " + as_Problem);
  if (Cancelled(link_, flags_)) return;
  form_.Lst_Units.SetMark(al_Unit - 1, RowMark::Problem);
  marked_.insert(al_Unit);
}

void FileResults::KeepNothing(std::int64_t al_Unit, const std::string& as_File) {
  results_.push_back({al_Unit, as_File, "", true});
}

void FileResults::LogMoved(std::string_view as_What, std::size_t al_First) const {
  const auto moved = std::count_if(results_.begin() + static_cast<std::ptrdiff_t>(al_First), results_.end(),
                                   [](const TransferResult& each) { return each.problem.empty() && !each.nothing; });
  trace_.LogWrite(std::string(as_What) + std::to_string(moved));
}

void FileResults::ShowLastProblem() const {
  if (results_.empty() || results_.back().problem.empty()) return;
  trace_.Status("Not done: " + results_.back().file + ": " + results_.back().problem);
}

}  // namespace corvane
