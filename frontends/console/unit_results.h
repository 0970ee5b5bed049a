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
///
/// The numbers are those that the sessions and the conversion have counted: no raw file is read for them.
class UnitResults {
 public:
  enum class Kind { Download, Convert, Command };

  /// `app` must outlive this object.
  UnitResults(Application& app, Kind kind) : app_(app), kind_(kind) {}

  /// An operation over these units (positions from 1) begins.
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
  /// Whether what the link says now ends the session.
  [[nodiscard]] bool EndsSession() const;
  /// How the exchange with a unit ended; `last_tried` is the unit that a time-out or a cancel has hit.
  [[nodiscard]] std::string LinkResult(std::int64_t unit, std::int64_t last_tried) const;
  /// None for a unit whose raw file was not come to.
  [[nodiscard]] std::optional<ConversionResult> ConversionOf(std::int64_t unit) const;
  [[nodiscard]] std::string ConversionText(std::int64_t unit) const;
  [[nodiscard]] std::string ResultText(std::int64_t unit, std::int64_t last_tried) const;
  [[nodiscard]] std::vector<std::string> RowOf(std::int64_t unit, const std::string& result) const;
  [[nodiscard]] std::string FileOf(std::int64_t unit, bool calibrated) const;

  Application& app_;
  Kind kind_;
  std::map<std::int64_t, std::string> failures_;  ///< the last error told of each unit of the operation
  bool stopped_ = false;                          ///< a time-out or a cancel ended the session
  std::vector<std::vector<std::string>> rows_;
  int problems_ = 0;
};

}  // namespace corvane::console
