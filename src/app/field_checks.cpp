#include "app/field_checks.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "base/format.h"
#include "base/numbers.h"
#include "base/text.h"
#include "data/logging_schedule.h"
#include "history/network_settings.h"
#include "link/exchange.h"
#include "platform/line_settings.h"
#include "setup/field_rules.h"
#include "state/unit_choices.h"

namespace corvane {
namespace {

constexpr double kHighest32 = std::numeric_limits<std::int32_t>::max();

}  // namespace

FieldChecks::FieldChecks(const Form& av_Form, const AppInfo& av_App, const FileNames& av_Names)
    : form_(av_Form), app_(av_App), names_(av_Names) {
  using Checks = FieldChecks;
  rows_ = {
      {&form_.Txt_StartAt, &Checks::TimeOfDay},
      {&form_.Txt_Interval, &Checks::LoggingInterval},
      {&form_.Txt_AutomaticInterval, &Checks::DownloadInterval},
      {&form_.Cmb_LogPeriod, &Checks::LogPeriod},
      {&form_.Txt_Timeout[0], &Checks::Decimal, 1, kSecondsPerDay},
      {&form_.Txt_Timeout[1], &Checks::Decimal, 1, kSecondsPerDay},
      {&form_.Txt_Timeout[2], &Checks::Decimal, 0, kSecondsPerDay},
      {&form_.Txt_MaxRetries, &Checks::WholeNumber, 1, 15},
      {&form_.Txt_MaxOveruns, &Checks::WholeNumber, 0, kHighest32},
      {&form_.Txt_RepairLimit, &Checks::WholeNumber, kRepairLimitRule.lowest, kRepairLimitRule.highest},
      {&form_.Txt_LateAfter, &Checks::Decimal, kLateAfterRule.lowest, kLateAfterRule.highest},
      {&form_.Txt_BatteryLimit, &Checks::Decimal, kBatteryLimitRule.lowest, kBatteryLimitRule.highest},
      {&form_.Txt_DigestAt, &Checks::TimeIfAny},
      {&form_.Txt_HistoryYears, &Checks::WholeNumber, kHistoryYearsRule.lowest, kHistoryYearsRule.highest},
      {&form_.Txt_PageFolder, &Checks::FolderIfNamed},
      {&form_.Lbl_BackupDestination, &Checks::FolderIfNamed},
      {&form_.Txt_UnitID, &Checks::UnitID, kLowestID, kHighestID, &form_.Lst_Units},
      {&form_.Txt_RelayID, &Checks::WholeNumber, kLowestID, kHighestID, &form_.Lst_Relays},
      {&form_.Txt_Correction[0], &Checks::Decimal, 0, kLargestCorrection, &form_.Lst_Units},
      {&form_.Txt_Correction[1], &Checks::Decimal, 0, kLargestCorrection, &form_.Lst_Units},
      {&form_.Txt_Depths, &Checks::Depths, 0, 0, &form_.Lst_Units},
      {&form_.Txt_Folder, &Checks::DataFolder},
      {&form_.Txt_Settings, &Checks::SerialSettings},
      {&form_.Txt_Prefix, &Checks::PartOfName},
      {&form_.Txt_RawFileExtension, &Checks::Extension},
      {&form_.Txt_CalibratedFileExtension, &Checks::Extension},
      {&form_.Txt_DateFormat, &Checks::DateFormat},
      {&form_.Txt_FTPServer, &Checks::Server},
      {&form_.Txt_FTPCertificate, &Checks::FileIfNamed},
  };
  for (int index = form_.Txt_File.first(); index <= form_.Txt_File.last(); ++index) {
    rows_.push_back({&form_.Txt_File[index], &Checks::ExistingFile});
  }
}

const std::string& FieldChecks::Row::text() const {
  if (field->kind() == ControlKind::Selector) return dynamic_cast<const Selector&>(*field).shown_text();
  if (field->kind() == ControlKind::Label) return dynamic_cast<const Label&>(*field).text();
  return dynamic_cast<const TextField&>(*field).text();
}

std::string FieldChecks::ProblemOf(const Control& av_Field) const {
  const auto row = std::find_if(rows_.begin(), rows_.end(), [&](const Row& r) { return r.field == &av_Field; });
  if (row == rows_.end() || (row->editor != nullptr && row->editor->current() < 0)) return {};
  return (this->*row->problem)(*row);
}

std::string FieldChecks::TimeOfDay(const Row& av_Row) const {
  if (ParseTimeOfDay(Trim(av_Row.text()))) return {};
  return "This is no time of day; write hours and minutes, such as 06:00.";
}

std::string FieldChecks::TimeIfAny(const Row& av_Row) const {
  return Trim(av_Row.text()).empty() ? std::string() : TimeOfDay(av_Row);
}

std::string FieldChecks::Depths(const Row& av_Row) const {
  return DepthsProblem(av_Row.text());
}

std::string FieldChecks::LoggingInterval(const Row& av_Row) const {
  if (LoggingSchedule::Interval(av_Row.text())) return {};
  if (std::string problem = HoursProblem(av_Row.text()); !problem.empty()) return problem;
  return "This is no interval above zero; write hours and minutes, such as 01:00, or a number of hours.";
}

std::string FieldChecks::DownloadInterval(const Row& av_Row) const {
  return IntervalProblem(av_Row.text());
}

std::string FieldChecks::LogPeriod(const Row& av_Row) const {
  if (LogPeriodMinutes(av_Row.text())) return {};
  const int sent = std::stoi(LogPeriodParameters(av_Row.text()), nullptr, 16);
  return "This is no log period from 00:01 to 04:15; units would be sent " + std::to_string(sent) + " minutes.";
}

std::string FieldChecks::WholeNumber(const Row& av_Row) const {
  return WholeNumberProblem(av_Row.text(), av_Row.lowest, av_Row.highest);
}

std::string FieldChecks::UnitID(const Row& av_Row) const {
  if (std::string problem = WholeNumber(av_Row); !problem.empty()) return problem;
  const auto unit = static_cast<std::int32_t>(form_.Lst_Units.current() + 1);
  const std::int32_t other =
      names_.OtherUnitOfFile(unit, LeadingInteger(av_Row.text()), form_.Cmb_Client.SelectedItemData());
  if (other == 0) return {};
  return "Unit " + std::to_string(other) + " of the list has the same ID and folder: both share one raw file.";
}

std::string FieldChecks::Decimal(const Row& av_Row) const {
  return DecimalProblem(av_Row.text(), av_Row.lowest, av_Row.highest);
}

std::string FieldChecks::ExistingFile(const Row& av_Row) const {
  return FileProblem(av_Row.text(), app_);
}

std::string FieldChecks::FileIfNamed(const Row& av_Row) const {
  return av_Row.text().empty() ? std::string() : ExistingFile(av_Row);
}

std::string FieldChecks::Server(const Row& av_Row) const {
  return ServerProblem(av_Row.text());
}

std::string FieldChecks::DataFolder(const Row& /*av_Row*/) const {
  return NewFolderProblem(names_.DataFolder());
}

std::string FieldChecks::FolderIfNamed(const Row& av_Row) const {
  if (Trim(av_Row.text()).empty()) return {};
  const std::string path = app_.AppPath(Trim(av_Row.text()));
  return IsFolder(path) ? "" : "There is no folder " + path + ".";
}

std::string FieldChecks::SerialSettings(const Row& av_Row) const {
  if (ParseLineSettings(av_Row.text())) return {};
  return "These are no serial settings; write baud, parity, data bits and stop bits, such as 9600,N,8,1.";
}

std::string FieldChecks::PartOfName(const Row& av_Row) const {
  if (av_Row.text().find_first_of("/\\") == std::string::npos) return {};
  return "This becomes part of a file name, which cannot hold \"/\" or \"\\\".";
}

std::string FieldChecks::Extension(const Row& av_Row) const {
  const bool same = form_.Txt_RawFileExtension.text() == form_.Txt_CalibratedFileExtension.text();
  return same ? "Raw and calibrated files have the same extension; change one of the two." : PartOfName(av_Row);
}

std::string FieldChecks::DateFormat(const Row& av_Row) const {
  // Two dates that share no part but the time of day.
  const std::string& pattern = av_Row.text();
  const std::string one = FormatDate(DateTime::FromCivil(2001, 2, 3), pattern);
  if (one != FormatDate(DateTime::FromCivil(2010, 11, 22), pattern)) return {};
  return "This shows nothing of the date; write a pattern such as d mmm yyyy HH:MM.";
}

}  // namespace corvane
