#include "history/round_texts.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>

#include "base/outside_text.h"
#include "history/status_texts.h"
#include "history/unit_health.h"
#include "state/link_state.h"

namespace corvane {
namespace {

constexpr std::array<std::string_view, 3> kSigns = {"problem", "not asked", "well"};

/// By number, from the first one on that is no download; the last one is that of a number that is not known.
constexpr std::array kCommands = {Phrase{1408, "Set date: %1"},         Phrase{1409, "Get date: %1"},
                                  Phrase{1410, "Set log period: %1"},   Phrase{1411, "Set mode: %1"},
                                  Phrase{1412, "Set delays: %1"},       Phrase{1413, "Read memory: %1"},
                                  Phrase{1414, "Test of the base: %1"}, Phrase{1415, "Command: %1"}};
constexpr std::int32_t kFirstCommand = 2;

constexpr struct {
  Phrase problem{1389, "problem"};
  Phrase nothing_new{1392, "nothing new"};
  Phrase not_asked{1395, "not asked: %1"};
  Phrase filled{1396, "%1 of %2 filled"};
  Phrase still_there{1397, "%1 of %2 asked for and still there"};
  Phrase lost{1398, "%1 of %2 not in the unit any more"};
  Phrase fetched{1400, "fetched"};
  Phrase not_fetched{1401, "not fetched"};
  Phrase converted{1402, "converted"};
  Phrase not_converted{1403, "not converted"};
  Phrase sent{1404, "sent"};
  Phrase not_sent{1405, "not sent"};
  Phrase backed_up{1406, "backed up"};
  Phrase not_backed_up{1407, "not backed up"};
} kRoundSays;

struct TargetText {
  Target target;
  Phrase done;
  Phrase failed;
};

/// In the order in which a round goes through them.
constexpr std::array kTargets = {
    TargetText{Target::Fetched, kRoundSays.fetched, kRoundSays.not_fetched},
    TargetText{Target::Calibrated, kRoundSays.converted, kRoundSays.not_converted},
    TargetText{Target::Server, kRoundSays.sent, kRoundSays.not_sent},
    TargetText{Target::Backup, kRoundSays.backed_up, kRoundSays.not_backed_up},
};

/// All that is known of one unit in the round.
struct UnitCase {
  const ContactRecord* contact = nullptr;
  std::map<Target, const DeliveryRecord*> deliveries;
  std::vector<const GapRecord*> gaps;
};

bool LiesIn(const RoundRecord& av_Round, Moment av_When) {
  return !av_When.IsNone() && av_Round.began <= av_When && (av_Round.ended.IsNone() || av_When <= av_Round.ended);
}

void Add(std::string& av_Text, std::string_view as_Separator, std::string_view as_More) {
  if (as_More.empty()) return;
  if (!av_Text.empty()) av_Text += as_Separator;
  av_Text += as_More;
}

std::string TriesText(const ContactRecord& av_Contact, const Phrases& av_Phrases) {
  return av_Contact.tries > 1 ? CountText(av_Contact.tries, kCommonPhrases.tries, av_Phrases) : "";
}

std::string ReadingsText(const ContactRecord& av_Contact, const Phrases& av_Phrases) {
  if (av_Contact.command != kDownload) return "";
  if (av_Contact.stored > 0) return CountText(av_Contact.stored, kCommonPhrases.readings, av_Phrases);
  return av_Contact.outcome == Outcome::Answered ? av_Phrases.Text(kRoundSays.nothing_new) : "";
}

class LineWriter {
 public:
  LineWriter(const RoundRecord& av_Round, const UnitCase& av_Case, const Phrases& av_Phrases)
      : round_(av_Round), case_(av_Case), phrases_(av_Phrases) {}

  RoundLine Write() {
    if (case_.contact != nullptr) SayContact(*case_.contact);
    SayGaps();
    std::string files;
    for (const TargetText& target : kTargets) Add(files, ", ", FileText(target));
    Add(line_.text, "; ", files);
    if (!line_.text.empty() && line_.text[0] >= 'a' && line_.text[0] <= 'z') line_.text[0] -= 'a' - 'A';
    return std::move(line_);
  }

 private:
  void SayContact(const ContactRecord& contact) {
    line_.text = WithCommand(contact.command, OutcomeOf(contact), phrases_);
  }

  std::string OutcomeOf(const ContactRecord& contact) {
    if (contact.outcome == Outcome::NotAsked || contact.outcome == Outcome::NoPort) {
      line_.sign = contact.outcome == Outcome::NoPort ? RoundSign::Problem : RoundSign::NotAsked;
      const std::string& why = contact.error.empty() ? round_.ending : contact.error;
      if (why.empty()) return OutcomeText(Outcome::NotAsked, phrases_);
      return phrases_.Text(kRoundSays.not_asked, {Printable(why)});
    }
    std::string text;
    if (contact.outcome == Outcome::Answered) {
      text = OutcomeText(Outcome::Answered, phrases_);
    } else {
      const bool silent = contact.outcome == Outcome::Silent || contact.error.empty();
      text = silent ? OutcomeText(Outcome::Silent, phrases_) : phrases_.Text(kRoundSays.problem);
    }
    Add(text, ", ", TriesText(contact, phrases_));
    Add(text, ", ", ReadingsText(contact, phrases_));
    if (contact.rejected > 0) Add(text, ", ", CountText(contact.rejected, kCommonPhrases.rejected, phrases_));
    if (contact.outcome != Outcome::Answered || !contact.error.empty()) line_.sign = RoundSign::Problem;
    if (contact.outcome != Outcome::Silent) Add(text, ": ", Printable(contact.error));
    return text;
  }

  void SayGaps() {
    for (const auto& [state, text] :
         {std::pair(GapState::Filled, kRoundSays.filled), std::pair(GapState::Asked, kRoundSays.still_there),
          std::pair(GapState::Lost, kRoundSays.lost)}) {
      std::int64_t gaps = 0;
      std::int64_t missing = 0;
      for (const GapRecord* gap : case_.gaps) {
        if (gap->state != state || gap->tries == 0) continue;
        ++gaps;
        missing += gap->missing;
      }
      if (gaps == 0) continue;
      Add(line_.text, "; ",
          phrases_.Text(text, {CountText(gaps, kCommonPhrases.gaps, phrases_),
                               CountText(missing, kCommonPhrases.readings, phrases_)}));
      if (state != GapState::Filled) line_.sign = RoundSign::Problem;
    }
  }

  std::string FileText(const TargetText& target) {
    const auto found = case_.deliveries.find(target.target);
    if (found == case_.deliveries.end()) return "";
    const DeliveryRecord& delivery = *found->second;
    const bool tried = LiesIn(round_, delivery.tried);
    if (!tried || delivery.problem.empty()) return phrases_.Text(target.done);
    line_.sign = RoundSign::Problem;
    const bool arrived = delivery.done == delivery.tried;
    if (!arrived && delivery.problem == target.failed.english) return phrases_.Text(target.failed);
    return phrases_.Text(arrived ? target.done : target.failed) + ": " + Printable(delivery.problem);
  }

  const RoundRecord& round_;
  const UnitCase& case_;
  const Phrases& phrases_;
  RoundLine line_;
};

std::map<std::int64_t, UnitCase> CasesOf(const RoundRecord& av_Round, const HistoryContents& av_History) {
  std::map<std::int64_t, UnitCase> cases;
  for (const ContactRecord& contact : av_History.contacts) {
    if (contact.round == av_Round.key) cases[contact.unit].contact = &contact;
  }
  for (const DeliveryRecord& delivery : av_History.deliveries) {
    // A repair begins in the second in which the files of the round before it got there.
    if (av_Round.kind == RoundKind::Repair && !cases.contains(delivery.unit)) continue;
    // What a later try has replaced may still have arrived in this round.
    const bool known = LiesIn(av_Round, delivery.tried) || LiesIn(av_Round, delivery.done);
    if (known) cases[delivery.unit].deliveries[delivery.target] = &delivery;
  }
  for (const GapRecord& gap : av_History.gaps) {
    if (LiesIn(av_Round, gap.changed) && gap.tries > 0) cases[gap.unit].gaps.push_back(&gap);
  }
  return cases;
}

}  // namespace

std::string_view NameOf(RoundSign ae_Sign) {
  return kSigns[static_cast<std::size_t>(ae_Sign)];
}

std::string WithCommand(std::int32_t al_Command, const std::string& as_Text, const Phrases& av_Phrases) {
  if (al_Command >= 0 && al_Command < kFirstCommand) return as_Text;
  const auto command = static_cast<std::size_t>(al_Command - kFirstCommand);
  return av_Phrases.Text(kCommands[std::min(command, kCommands.size() - 1)], {as_Text});
}

HistoryQuery RoundQuery(std::int64_t al_Key) {
  HistoryQuery query;
  query.round = al_Key;
  query.gaps = true;
  return query;
}

RoundTexts TextsOf(const RoundRecord& av_Round, const HistoryContents& av_History, const Phrases& av_Phrases) {
  LeftOut left_out;
  for (const ContactRecord& contact : av_History.contacts) {
    if (contact.round == av_Round.key) left_out.Take(contact);
  }
  RoundTexts texts{av_Round, RoundText(av_Round, left_out, av_Phrases), {}};
  if (texts.head[0] >= 'a' && texts.head[0] <= 'z') texts.head[0] -= 'a' - 'A';
  std::map<std::int64_t, UnitCase> cases = CasesOf(av_Round, av_History);
  std::vector<std::tuple<RoundSign, bool, std::int32_t, RoundLine>> sorted;
  for (const UnitRecord& unit : av_History.units) {
    const auto found = cases.find(unit.key);
    if (found == cases.end()) continue;
    RoundLine line = LineWriter(av_Round, found->second, av_Phrases).Write();
    if (line.text.empty()) continue;
    line.unit = unit.key;
    line.name = Printable(unit.name);
    sorted.emplace_back(line.sign, unit.position == 0, unit.position, std::move(line));
  }
  std::stable_sort(sorted.begin(), sorted.end(), [](const auto& one, const auto& other) {
    return std::tie(std::get<0>(one), std::get<1>(one), std::get<2>(one)) <
           std::tie(std::get<0>(other), std::get<1>(other), std::get<2>(other));
  });
  for (auto& each : sorted) texts.lines.push_back(std::move(std::get<RoundLine>(each)));
  return texts;
}

std::string RoundInShort(const RoundTexts& av_Texts, std::size_t al_Units) {
  std::string text = av_Texts.head;
  std::size_t told = 0;
  std::size_t left = 0;
  for (const RoundLine& line : av_Texts.lines) {
    if (line.sign == RoundSign::Well) break;
    if (told == al_Units) {
      ++left;
      continue;
    }
    text += (told++ == 0 ? ". " : "; ") + line.name + ": " + line.text;
  }
  if (left > 0) text += told > 0 ? "; and " + CountText(left, "other", "others") : "";
  return text;
}

std::vector<Phrase> RoundTextPhrases() {
  std::vector<Phrase> all = PhrasesIn(kRoundSays);
  const std::vector<Phrase> more = PhrasesIn(kCommands);
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

}  // namespace corvane
