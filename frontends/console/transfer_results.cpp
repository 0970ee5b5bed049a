#include "transfer_results.h"

#include <algorithm>

#include "text_table.h"

namespace corvane::console {

void TransferResults::Collect(const std::vector<std::int64_t>& expected) {
  const auto& results = app_.flows().Results();
  const auto& units = app_.registry().Units;
  for (const TransferResult& result : results) {
    const std::string well = result.nothing ? "no file yet" : "ok";
    rows_.push_back({units[result.unit].Name, result.file, result.problem.empty() ? well : result.problem});
  }
  for (const std::int64_t unit : expected) {
    const auto is_unit = [unit](const TransferResult& result) { return result.unit == unit; };
    if (std::any_of(results.begin(), results.end(), is_unit)) continue;
    const Unit& record = units[unit];
    std::string reason = "not tried";
    if (record.Active == 0) reason = "not tried: the unit is not active";
    if (command_ == CommandId::Send && record.ftpFile != kToFtp) reason = "not tried: its file is not sent by FTP";
    if (command_ == CommandId::Fetch && record.GetFrom != kFromFtp) reason = "not tried: its file does not come by FTP";
    rows_.push_back({record.Name, "", reason});
    ++problems_;
  }
}

std::string TransferResults::Table() const {
  return rows_.empty() ? "" : FormatTable({{"Unit"}, {"File"}, {"Result"}}, rows_);
}

}  // namespace corvane::console
