#pragma once

#include <string>
#include <vector>

#include "form/form.h"
#include "state/app_info.h"
#include "state/file_names.h"

namespace corvane {

/// Says quietly what is wrong with the text of a field, while it is typed. It never changes a field.
class FieldChecks {
 public:
  FieldChecks(const Form& av_Form, const AppInfo& av_App, const FileNames& av_Names);

  /// Empty when the text is fine, or nothing is known of the field; else a short sentence that says what is wrong and
  /// what is accepted.
  [[nodiscard]] std::string ProblemOf(const Control& av_Field) const;

 private:
  /// One field and what it takes; the limits are those of numbers.
  struct Row {
    const Control* field;
    std::string (FieldChecks::*problem)(const Row& av_Row) const;
    double lowest = 0;
    double highest = 0;
    const List* editor = nullptr;  ///< the list whose current row the field belongs to: without one it is empty

    /// What is shown in the field.
    [[nodiscard]] const std::string& text() const;
  };

  [[nodiscard]] std::string TimeOfDay(const Row& av_Row) const;
  [[nodiscard]] std::string TimeIfAny(const Row& av_Row) const;
  [[nodiscard]] std::string Depths(const Row& av_Row) const;
  [[nodiscard]] std::string LoggingInterval(const Row& av_Row) const;
  [[nodiscard]] std::string DownloadInterval(const Row& av_Row) const;
  [[nodiscard]] std::string LogPeriod(const Row& av_Row) const;
  [[nodiscard]] std::string WholeNumber(const Row& av_Row) const;
  [[nodiscard]] std::string UnitID(const Row& av_Row) const;
  [[nodiscard]] std::string Decimal(const Row& av_Row) const;
  [[nodiscard]] std::string ExistingFile(const Row& av_Row) const;
  [[nodiscard]] std::string FileIfNamed(const Row& av_Row) const;
  [[nodiscard]] std::string Server(const Row& av_Row) const;
  [[nodiscard]] std::string DataFolder(const Row& av_Row) const;
  [[nodiscard]] std::string FolderIfNamed(const Row& av_Row) const;
  [[nodiscard]] std::string SerialSettings(const Row& av_Row) const;
  [[nodiscard]] std::string PartOfName(const Row& av_Row) const;
  [[nodiscard]] std::string Extension(const Row& av_Row) const;
  [[nodiscard]] std::string DateFormat(const Row& av_Row) const;

  const Form& form_;
  const AppInfo& app_;
  const FileNames& names_;
  std::vector<Row> rows_;
};

}  // namespace corvane
