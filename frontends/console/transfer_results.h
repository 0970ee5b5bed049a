#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/application.h"
#include "options.h"

namespace corvane::console {

/// What became of each unit's file in `send`, `fetch` or `backup`.
class TransferResults {
 public:
  /// `app` must outlive this object.
  TransferResults(const Application& app, CommandId command) : app_(app), command_(command) {}

  /// Adds what the operation that just ended has tried, and the units of `expected` that it did not come to.
  void Collect(const std::vector<std::int64_t>& expected);
  /// Units that were expected and not tried; what was tried counts as a problem of its operation.
  [[nodiscard]] std::int64_t problems() const { return problems_; }
  /// The table of results; empty without rows.
  [[nodiscard]] std::string Table() const;

 private:
  const Application& app_;
  CommandId command_;
  std::vector<std::vector<std::string>> rows_;
  std::int64_t problems_ = 0;
};

}  // namespace corvane::console
