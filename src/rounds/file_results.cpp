#include "rounds/file_results.h"

#include <algorithm>

namespace corvane {

void FileResults::Keep(const TransferResult& av_Result) {
  results_.push_back(av_Result);
  if (on_kept) on_kept(av_Result);
  if (av_Result.nothing) return;
  const std::int64_t unit = av_Result.unit;
  if (av_Result.problem.empty()) {
    // The sign of a radio exchange stays; one that a transfer has set is over with the next that goes well.
    if (marked_.erase(unit) > 0) form_.Lst_Units.SetMark(unit - 1, RowMark::Well);
    return;
  }
  ++flags_.problems;
  trace_.LogWrite("Not done: " + av_Result.file + ": " + av_Result.problem);
  if (Cancelled(link_, flags_)) return;
  form_.Lst_Units.SetMark(unit - 1, RowMark::Problem);
  marked_.insert(unit);
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
