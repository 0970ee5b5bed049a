#include "history/round_texts.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>

#include "base/outside_text.h"
#include "history/status_texts.h"
#include "state/link_state.h"

namespace corvane {
namespace {

constexpr std::array<std::string_view, 3> kSigns = {"problem", "not asked", "well"};

/// By number; a round of another command than a download names it.
constexpr std::array<std::string_view, 9> kCommands = {
    "", "", "Set date", "Get date", "Set log period", "Set mode", "Set delays", "Read memory", "Test of the base"};

struct TargetText {
  Target target;
  std::string_view done;
  std::string_view failed;
};

/// In the order in which a round goes through them.
constexpr std::array kTargets = {
    TargetText{Target::Fetched, "fetched", "not fetched"},
    TargetText{Target::Calibrated, "converted", "not converted"},
    TargetText{Target::Server, "sent", "not sent"},
    TargetText{Target::Backup, "backed up", "not backed up"},
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

std::string TriesText(const ContactRecord& av_Contact) {
  return av_Contact.tries > 1 ? CountText(av_Contact.tries, "try", "tries") : "";
}

std::string ReadingsText(const ContactRecord& av_Contact) {
  if (av_Contact.command != kDownload) return "";
  if (av_Contact.stored > 0) return CountText(av_Contact.stored, "reading", "readings");
  return av_Contact.outcome == Outcome::Answered ? "nothing new" : "";
}

class LineWriter {
 public:
  LineWriter(const RoundRecord& av_Round, const UnitCase& av_Case) : round_(av_Round), case_(av_Case) {}

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
    const auto command = static_cast<std::size_t>(contact.command);
    const std::string_view name = command < kCommands.size() ? kCommands[command] : "Command";
    if (!name.empty()) line_.text = std::string(name) + ": ";
    line_.text += ContactText(contact);
  }

  std::string ContactText(const ContactRecord& contact) {
    if (contact.outcome == Outcome::NotAsked || contact.outcome == Outcome::NoPort) {
      line_.sign = contact.outcome == Outcome::NoPort ? RoundSign::Problem : RoundSign::NotAsked;
      const std::string& why = contact.error.empty() ? round_.ending : contact.error;
      return why.empty() ? "not asked" : "not asked: " + Printable(why);
    }
    std::string text;
    if (contact.outcome == Outcome::Answered) {
      text = "answered";
    } else {
      text = contact.outcome == Outcome::Silent || contact.error.empty() ? "no answer" : "problem";
    }
    Add(text, ", ", TriesText(contact));
    Add(text, ", ", ReadingsText(contact));
    if (contact.rejected > 0) Add(text, ", ", CountText(contact.rejected, "line", "lines") + " rejected");
    if (contact.outcome != Outcome::Answered || !contact.error.empty()) line_.sign = RoundSign::Problem;
    if (contact.outcome != Outcome::Silent) Add(text, ": ", Printable(contact.error));
    return text;
  }

  void SayGaps() {
    for (const auto& [state, text] :
         {std::pair(GapState::Filled, "filled"), std::pair(GapState::Asked, "asked for and still there"),
          std::pair(GapState::Lost, "not in the unit any more")}) {
      std::int64_t gaps = 0;
      std::int64_t missing = 0;
      for (const GapRecord* gap : case_.gaps) {
        if (gap->state != state || gap->tries == 0) continue;
        ++gaps;
        missing += gap->missing;
      }
      if (gaps == 0) continue;
      Add(line_.text, "; ",
          CountText(gaps, "gap", "gaps") + " of " + CountText(missing, "reading", "readings") + " " + text);
      if (state != GapState::Filled) line_.sign = RoundSign::Problem;
    }
  }

  std::string FileText(const TargetText& target) {
    const auto found = case_.deliveries.find(target.target);
    if (found == case_.deliveries.end()) return "";
    const DeliveryRecord& delivery = *found->second;
    const bool tried = LiesIn(round_, delivery.tried);
    if (!tried || delivery.problem.empty()) return std::string(target.done);
    line_.sign = RoundSign::Problem;
    const bool arrived = delivery.done == delivery.tried;
    if (!arrived && delivery.problem == target.failed) return delivery.problem;
    return std::string(arrived ? target.done : target.failed) + ": " + Printable(delivery.problem);
  }

  const RoundRecord& round_;
  const UnitCase& case_;
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

HistoryQuery RoundQuery(std::int64_t al_Key) {
  HistoryQuery query;
  query.round = al_Key;
  query.gaps = true;
  return query;
}

RoundTexts TextsOf(const RoundRecord& av_Round, const HistoryContents& av_History) {
  RoundTexts texts{av_Round, RoundText(av_Round), {}};
  if (texts.head[0] >= 'a' && texts.head[0] <= 'z') texts.head[0] -= 'a' - 'A';
  std::map<std::int64_t, UnitCase> cases = CasesOf(av_Round, av_History);
  std::vector<std::tuple<RoundSign, bool, std::int32_t, RoundLine>> sorted;
  for (const UnitRecord& unit : av_History.units) {
    const auto found = cases.find(unit.key);
    if (found == cases.end()) continue;
    RoundLine line = LineWriter(av_Round, found->second).Write();
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

}  // namespace corvane
