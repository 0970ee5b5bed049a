#include "unit_results.h"

#include <algorithm>
#include <utility>

#include "base/files.h"
#include "text_table.h"
#include "units.h"

namespace corvane::console {
namespace {

constexpr const char* kOk = "ok";

const std::vector<Column>& ColumnsOf(UnitResults::Kind kind) {
  static const std::vector<Column> kDownload = {{"Unit"},      {"Tries", true},  {"Readings", true},
                                                {"New", true}, {"Last reading"}, {"Result"}};
  static const std::vector<Column> kConvert = {{"Unit"},         {"Readings", true},  {"Bad lines", true},
                                               {"Last reading"}, {"Calibrated file"}, {"Result"}};
  static const std::vector<Column> kCommand = {{"Unit"}, {"Tries", true}, {"Result"}};
  if (kind == UnitResults::Kind::Download) return kDownload;
  return kind == UnitResults::Kind::Convert ? kConvert : kCommand;
}

}  // namespace

void UnitResults::Begin(const std::vector<std::int64_t>& units) {
  failures_.clear();
  stopped_ = false;
  for (const std::int64_t unit : units) failures_.emplace(unit, "");
}

void UnitResults::OnChange(const Control& control) {
  // A transfer that fails ends what follows it; the units have been asked by then.
  const bool transfers = !app_.transfer_results().empty();
  if (app_.slot().Taken() && !transfers && EndsSession()) stopped_ = true;
  const Form& form = app_.form();
  // A probe of the base station says nothing of the unit that happens to be selected.
  if (app_.link().TestingPort) return;
  if (&control != &form.Lbl_Status || form.Lbl_Status.status_kind() != StatusKind::Error) return;
  const auto failure = failures_.find(form.Lst_Units.current() + 1);
  if (failure != failures_.end()) failure->second = form.Lbl_Status.text();
}

bool UnitResults::EndsSession() const {
  return GoesOn(app_.form(), app_.flags()) ? app_.link().UserCancel : !app_.link().ContinueOk();
}

void UnitResults::End() {
  std::int64_t last_tried = 0;
  for (const auto& [unit, failure] : failures_) {
    if (app_.registry().Units[unit].Tries > 0) last_tried = unit;
  }
  for (const auto& [unit, failure] : failures_) {
    const std::string result = ResultText(unit, last_tried);
    if (result != kOk) ++problems_;
    rows_.push_back(RowOf(unit, result));
  }
}

std::string UnitResults::FileOf(std::int64_t unit, bool calibrated) const {
  return app_.names().DataFileName(static_cast<std::int32_t>(unit), calibrated);
}

std::string UnitResults::LinkResult(std::int64_t unit, std::int64_t last_tried) const {
  const Unit& record = app_.registry().Units[unit];
  // A round that goes on marks the unit that a cancel has hit: it need not be the last in the list.
  const bool ended_by_stop = stopped_ && (GoesOn(app_.form(), app_.flags()) ? record.Problem : unit == last_tried);
  if (record.Tries == 0) return app_.link().PortFailed ? "not asked: the port did not open" : "not asked";
  const std::string& problem = record.Brought.problem;
  if (!record.Problem && !ended_by_stop) return problem.empty() ? kOk : problem;
  const std::string& failure = failures_.at(unit);
  const std::string why = !failure.empty() ? failure : ended_by_stop ? "cancelled" : "problem, see corvane.log";
  return problem.empty() ? why : why + "; " + problem;
}

std::optional<ConversionResult> UnitResults::ConversionOf(std::int64_t unit) const {
  const auto& results = app_.conversion_results();
  const auto found = std::find_if(results.rbegin(), results.rend(),
                                  [unit](const ConversionResult& each) { return each.unit == unit; });
  return found == results.rend() ? std::nullopt : std::optional(*found);
}

std::string UnitResults::ConversionText(std::int64_t unit) const {
  if (!ExamineFile(FileOf(unit, false))) return "no raw file";
  const auto conversion = ConversionOf(unit);
  if (!conversion || !conversion->readings) return "not converted";
  return conversion->bad_lines > 0 ? std::to_string(conversion->bad_lines) + " bad lines" : kOk;
}

std::string UnitResults::ResultText(std::int64_t unit, std::int64_t last_tried) const {
  if (kind_ == Kind::Convert) return ConversionText(unit);
  const std::string asked = LinkResult(unit, last_tried);
  if (kind_ == Kind::Command || asked != kOk) return asked;
  const std::string conversion = ConversionText(unit);
  return conversion == kOk ? asked : asked + ", but " + conversion;
}

std::vector<std::string> UnitResults::RowOf(std::int64_t unit, const std::string& result) const {
  const Unit& record = app_.registry().Units[unit];
  const std::string tries = std::to_string(record.Tries);
  if (kind_ == Kind::Command) return {record.Name, tries, result};
  const auto conversion = ConversionOf(unit).value_or(ConversionResult());
  const std::string readings = conversion.readings ? std::to_string(*conversion.readings) : "";
  const std::string last = LastReading(FileOf(unit, false));
  if (kind_ == Kind::Download) return {record.Name, tries, readings, std::to_string(record.Stored), last, result};
  return {record.Name, readings, std::to_string(conversion.bad_lines), last, FileOf(unit, true), result};
}

void UnitResults::AddLeftOut(const std::string& name, const std::string& reason) {
  std::vector<std::string> row(ColumnsOf(kind_).size());
  row.front() = name;
  row.back() = reason;
  rows_.push_back(std::move(row));
  ++problems_;
}

std::string UnitResults::Table() const {
  return rows_.empty() ? "" : FormatTable(ColumnsOf(kind_), rows_);
}

}  // namespace corvane::console
