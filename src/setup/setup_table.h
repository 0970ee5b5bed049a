#pragma once

#include <string>
#include <vector>

#include "lang/phrases.h"
#include "setup/setup_plan.h"
#include "state/records.h"

namespace corvane {

/// What reading a table of stations into a plan came to.
struct SetupTable {
  std::vector<std::string> faults;   ///< with any, the plan is as it was
  std::vector<std::string> changes;  ///< a sentence each, without a full stop
  std::vector<std::string> notes;    ///< what else is to be known, such as columns that are not used
};

/// Takes the relays, clients and units of a file (its full name) into the plan's rows, as an import takes them into the
/// registry: rows that the table does not have stay.
[[nodiscard]] SetupTable TakeTable(SetupPlan& av_Plan, const Registry& av_Registry, const std::string& as_File,
                                   const Phrases& av_Phrases = {});
/// What is said of a file and of what it holds.
[[nodiscard]] std::vector<Phrase> SetupTablePhrases();

}  // namespace corvane
