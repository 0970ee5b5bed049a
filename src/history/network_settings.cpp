#include "history/network_settings.h"

#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

double Number(const TextField& av_Field, const NumberRule& av_Rule) {
  return av_Rule.NumberOf(av_Field.text()).value_or(av_Rule.fallback);
}

std::int64_t Whole(const TextField& av_Field, const NumberRule& av_Rule) {
  return static_cast<std::int64_t>(Number(av_Field, av_Rule));
}

}  // namespace

std::optional<double> NumberRule::NumberOf(std::string_view as_Text) const {
  if (whole) {
    const auto number = ParseInteger(as_Text, static_cast<std::int64_t>(lowest), static_cast<std::int64_t>(highest));
    return number ? std::optional<double>(static_cast<double>(*number)) : std::nullopt;
  }
  const std::optional<double> number = ParseNumber(as_Text);
  return number && *number >= lowest && *number <= highest ? number : std::nullopt;
}

NetworkSettings ReadNetworkSettings(const Form& av_Form) {
  NetworkSettings settings;
  settings.repairs_gaps = av_Form.Chk_RepairGaps.ticked();
  settings.repair_limit = Whole(av_Form.Txt_RepairLimit, kRepairLimitRule);
  settings.late_after = Number(av_Form.Txt_LateAfter, kLateAfterRule);
  settings.battery_limit = Number(av_Form.Txt_BatteryLimit, kBatteryLimitRule);
  settings.alert_command = Trim(av_Form.Txt_AlertCommand.text());
  settings.digest_at = ParseTimeOfDay(av_Form.Txt_DigestAt.text());
  settings.history_years = Whole(av_Form.Txt_HistoryYears, kHistoryYearsRule);
  settings.page_folder = Trim(av_Form.Txt_PageFolder.text());
  settings.page_send = av_Form.Chk_PageSend.ticked();
  return settings;
}

}  // namespace corvane
