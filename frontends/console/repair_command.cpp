#include "repair_command.h"

#include "base/format.h"
#include "text_table.h"
#include "units.h"

namespace corvane::console {
namespace {

std::string DateText(DateTime date) {
  return date.IsNone() ? "" : FormatDate(date, "yyyy-mm-dd HH:NN");
}

std::string TableOf(const std::vector<RepairResult>& results) {
  static const std::vector<Column> kColumns = {{"Unit"},          {"Gap from"},     {"Gap to"},
                                               {"Missing", true}, {"Filled", true}, {"Result"}};
  std::vector<std::vector<std::string>> rows;
  for (const RepairResult& each : results) {
    const bool asked = !each.gap.to.IsNone();
    rows.push_back({each.name, DateText(each.gap.from), DateText(each.gap.to),
                    asked ? std::to_string(each.gap.missing) : "", asked ? std::to_string(each.added) : "",
                    each.result});
  }
  return rows.empty() ? "" : FormatTable(kColumns, std::move(rows));
}

}  // namespace

int Repair(Desk& desk, const Options& options) {
  const DateTime since = ParseDate(options.since).value_or(DateTime());
  const std::vector<std::int64_t> units = options.arguments.empty() ? ActiveUnits(desk.app.registry(), kFromRadio)
                                                                    : FindUnits(desk.app.registry(), options.arguments);
  UnitResults transfers(desk.app, UnitResults::Kind::Command);
  OperateOn(desk, transfers, {}, [&] { desk.app.commands().RepairUnits(units, since); });
  const int status = StatusOf(desk);
  PrintTable(desk, TableOf(desk.app.repair_results()), status);
  return status;
}

}  // namespace corvane::console
