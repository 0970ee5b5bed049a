#include "history/history_phrases.h"

#include "history/day_map.h"
#include "history/network_status.h"
#include "history/round_texts.h"
#include "history/status_headline.h"
#include "history/status_texts.h"
#include "history/unit_health.h"
#include "history/unit_status.h"
#include "history/unit_texts.h"
#include "history/unit_troubles.h"

namespace corvane {

std::vector<Phrase> HistoryPhrases() {
  std::vector<Phrase> all;
  for (const auto& some :
       {StatusTextPhrases(), NetworkStatusPhrases(), HeadlinePhrases(), UnitStatusPhrases(), OutcomePhrases(),
        TroublePhrases(), UnitTextPhrases(), DayPhrases(), RoundTextPhrases(), HealthPhraseList()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

}  // namespace corvane
