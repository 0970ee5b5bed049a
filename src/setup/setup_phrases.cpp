#include "setup/setup_phrases.h"

#include "link/port_choices.h"
#include "setup/field_rules.h"
#include "setup/setup_plan.h"
#include "setup/setup_server.h"
#include "setup/setup_table.h"
#include "setup/setup_tries.h"

namespace corvane {

std::vector<Phrase> SetupPhrases() {
  std::vector<Phrase> all;
  for (const auto& some : {FieldRulePhrases(), SetupFaultPhrases(), PortChoices::PhraseList(), SetupSummaryPhrases(),
                           SetupTryPhrases(), SetupServerPhrases(), SetupTablePhrases()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

}  // namespace corvane
