#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "app/application.h"
#include "form/control.h"

namespace corvane::console {

/// What became of each unit in the operations of one command.
class UnitResults {
 public:
  enum class Kind { Download, Convert, Command };

  /// `app` must outlive this object.
  UnitResults(Application& app, Kind kind) : app_(app), kind_(kind) {}

  /// An operation over these units (positions from 1) begins; reads what their files hold now.
  void Begin(const std::vector<std::int64_t>& units);
  /// To be called for every change of a control while the operation runs.
  void OnChange(const Control& control);
  /// The operation has ended: adds a row for each of its units.
  void End();
  /// Adds a row for a unit or file that nothing could be done with.
  void AddLeftOut(const std::string& name, const std::string& reason);

  /// Units and files that ended untried or with a problem.
  [[nodiscard]] int problems() const { return problems_; }
  /// The table of results; empty without rows.
  [[nodiscard]] std::string Table() const;

 private:
  /// One unit of the running operation.
  struct Watched {
    std::optional<std::int64_t> readings_before;
    std::uint64_t calibrated_before = 0;
    std::int64_t bad_lines = 0;
    bool conversion_begun = false;
    std::string failure;  ///< the last status line that told an error
  };

  void EndConversionOfFile();
  [[nodiscard]] std::string LinkResult(std::int64_t unit, const Watched& watched, bool was_last) const;
  [[nodiscard]] std::string ConversionResult(std::int64_t unit, const Watched& watched) const;
  void AddRow(std::int64_t unit, const Watched& watched, bool was_last);
  [[nodiscard]] std::string FileOf(std::int64_t unit, bool calibrated) const;

  Application& app_;
  Kind kind_;
  std::map<std::int64_t, Watched> watched_;
  std::int64_t converting_ = 0;  ///< the unit whose file is being converted, 0 none
  std::int64_t errors_before_ = 0;
  bool port_failed_ = false;
  bool stopped_ = false;  ///< a time-out or a cancel ended the session
  std::vector<std::vector<std::string>> rows_;
  int problems_ = 0;
};

}  // namespace corvane::console
