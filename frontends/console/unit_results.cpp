#include "unit_results.h"

#include <utility>

#include "base/files.h"
#include "console_view.h"
#include "text_table.h"
#include "unit_files.h"

namespace corvane::console {
namespace {

constexpr const char* kOk = "ok";
constexpr const char* kConverting = "Convert: ";
constexpr const char* kFinished = "Finished";

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
  watched_.clear();
  converting_ = 0;
  port_failed_ = false;
  stopped_ = false;
  for (const std::int64_t unit : units) {
    Watched watched;
    if (kind_ != Kind::Command) {
      watched.readings_before = CountReadings(FileOf(unit, false));
      watched.calibrated_before = FileMark(FileOf(unit, true));
    }
    watched_.emplace(unit, watched);
  }
}

void UnitResults::OnChange(const Control& control) {
  const LinkState& link = app_.link();
  // A transfer that fails ends what follows it; the units have been asked by then.
  const bool transfers = !app_.flows().Results().empty();
  if (app_.slot().Taken() && !transfers && !link.ContinueOk()) stopped_ = true;
  const Form& form = app_.form();
  if (&control != &form.Lbl_Status) return;
  EndConversionOfFile();
  const std::string& text = form.Lbl_Status.text();
  if (text.starts_with(kPortDidNotOpen)) port_failed_ = true;
  const auto watched = watched_.find(form.Lst_Units.current() + 1);
  if (watched == watched_.end()) return;
  if (text.starts_with(kConverting)) {
    converting_ = watched->first;
    errors_before_ = app_.flags().error_counter;
    watched->second.conversion_begun = true;
  } else if ((link.HalvexError || link.Timeout) && !text.starts_with(kFinished)) {
    watched->second.failure = text;
  }
}

void UnitResults::EndConversionOfFile() {
  if (converting_ != 0) watched_[converting_].bad_lines = app_.flags().error_counter - errors_before_;
  converting_ = 0;
}

void UnitResults::End() {
  EndConversionOfFile();
  std::int64_t last_tried = 0;
  for (const auto& [unit, watched] : watched_) {
    if (app_.registry().Units[unit].Tries > 0) last_tried = unit;
  }
  for (const auto& [unit, watched] : watched_) AddRow(unit, watched, unit == last_tried);
}

std::string UnitResults::FileOf(std::int64_t unit, bool calibrated) const {
  return app_.names().DataFileName(static_cast<std::int32_t>(unit), calibrated);
}

std::string UnitResults::LinkResult(std::int64_t unit, const Watched& watched, bool was_last) const {
  const Unit& record = app_.registry().Units[unit];
  const bool ended_by_stop = was_last && stopped_;
  if (record.Tries == 0) return port_failed_ ? "not asked: the port did not open" : "not asked";
  if (!record.Problem && !ended_by_stop) return kOk;
  if (!watched.failure.empty()) return watched.failure;
  return ended_by_stop ? "cancelled" : "problem, see corvane.log";
}

std::string UnitResults::ConversionResult(std::int64_t unit, const Watched& watched) const {
  if (!ExamineFile(FileOf(unit, false))) return "no raw file";
  if (FileMark(FileOf(unit, true)) == watched.calibrated_before) return "not converted";
  return watched.bad_lines > 0 ? std::to_string(watched.bad_lines) + " bad lines" : kOk;
}

void UnitResults::AddRow(std::int64_t unit, const Watched& watched, bool was_last) {
  const Unit& record = app_.registry().Units[unit];
  std::string result = kind_ == Kind::Convert ? kOk : LinkResult(unit, watched, was_last);
  if (kind_ == Kind::Convert || (kind_ == Kind::Download && result == kOk)) {
    const std::string conversion = ConversionResult(unit, watched);
    if (conversion != kOk) result = kind_ == Kind::Convert ? conversion : result + ", but " + conversion;
  }
  if (result != kOk) ++problems_;
  if (kind_ == Kind::Command) {
    rows_.push_back({record.Name, std::to_string(record.Tries), result});
    return;
  }
  const auto readings = CountReadings(FileOf(unit, false));
  const std::string count = readings ? std::to_string(*readings) : "";
  const std::string last = LastReading(FileOf(unit, false));
  if (kind_ == Kind::Convert) {
    rows_.push_back({record.Name, count, std::to_string(watched.bad_lines), last, FileOf(unit, true), result});
    return;
  }
  const std::int64_t added = readings.value_or(0) - watched.readings_before.value_or(0);
  rows_.push_back({record.Name, std::to_string(record.Tries), count, std::to_string(added), last, result});
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
