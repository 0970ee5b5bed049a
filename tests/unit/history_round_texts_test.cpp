#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "history/round_texts.h"
#include "state/link_state.h"

namespace corvane {
namespace {

const Moment kBegan{1'700'000'000, 0};
const Moment kInside{kBegan.utc + 60, 0};
const Moment kLater{kBegan.utc + 5000, 0};

/// A round of one unit that answered, whose file was converted and sent.
struct Fixture {
  HistoryContents history;
  RoundRecord round;

  Fixture() {
    round.key = 7;
    round.began = kBegan;
    round.ended = {kBegan.utc + 180, 0};
    round.asked = 1;
    AddUnit(1, 2, "North");
    ContactRecord& contact = Contact(1, Outcome::Answered);
    contact.stored = 12;
    for (const Target target : {Target::Calibrated, Target::Server}) Delivery(target, kInside, kInside);
  }

  void AddUnit(std::int64_t key, std::int32_t position, const std::string& name) {
    UnitRecord& unit = history.units.emplace_back();
    unit.key = key, unit.position = position, unit.name = name;
  }
  ContactRecord& Contact(std::int64_t unit, Outcome outcome, std::int64_t tries = 1) {
    ContactRecord& contact = history.contacts.emplace_back();
    contact.round = round.key, contact.unit = unit, contact.command = kDownload;
    contact.outcome = outcome, contact.tries = tries;
    return contact;
  }
  void Delivery(Target target, Moment tried, Moment done, const std::string& problem = "") {
    DeliveryRecord& delivery = history.deliveries.emplace_back();
    delivery.unit = 1, delivery.target = target, delivery.tried = tried, delivery.done = done;
    delivery.problem = problem;
  }
  ContactRecord& contact() { return history.contacts[0]; }
  DeliveryRecord& sent() { return history.deliveries[1]; }
  void Gap(GapState state, Moment changed) {
    history.gaps.push_back({1, DateTime(1), DateTime(2), 3, state, 1, kBegan, changed});
  }
};

TEST(RoundTexts, SayWhatBecameOfAUnit) {
  using enum RoundSign;
  const struct {
    const char* name;
    std::function<void(Fixture&)> change;
    RoundSign sign;
    std::string text;
  } rows[] = {
      {"well", [](Fixture&) {}, Well, "Answered, 12 readings; converted, sent"},
      {"nothing new", [](Fixture& f) { f.contact().stored = 0; }, Well, "Answered, nothing new; converted, sent"},
      {"many tries", [](Fixture& f) { f.contact().tries = 3, f.contact().rejected = 1; }, Well,
       "Answered, 3 tries, 12 readings, 1 line rejected; converted, sent"},
      {"a remark", [](Fixture& f) { f.contact().error = "2 lines kept\n aside"; }, Problem,
       "Answered, 12 readings: 2 lines kept[10] aside; converted, sent"},
      {"silent",
       [](Fixture& f) {
         f.contact() = {}, f.contact().round = 7, f.contact().unit = 1, f.contact().tries = 4;
         f.contact().outcome = Outcome::Silent, f.contact().error = "no answer", f.history.deliveries.clear();
       },
       Problem, "No answer, 4 tries"},
      {"broken off",
       [](Fixture& f) { f.contact().outcome = Outcome::Failed, f.contact().error = "the answer broke off"; }, Problem,
       "Problem, 12 readings: the answer broke off; converted, sent"},
      {"not asked",
       [](Fixture& f) {
         f.contact().outcome = Outcome::NotAsked, f.contact().stored = 0, f.round.ending = "cancelled";
         f.history.deliveries.clear();
       },
       NotAsked, "Not asked: cancelled"},
      {"no port",
       [](Fixture& f) {
         f.contact().outcome = Outcome::NoPort, f.contact().error = "COM1 is gone", f.history.deliveries.clear();
       },
       Problem, "Not asked: COM1 is gone"},
      {"not sent", [](Fixture& f) { f.sent().problem = "login refused", f.sent().done = {}; }, Problem,
       "Answered, 12 readings; converted, not sent: login refused"},
      {"converted in part", [](Fixture& f) { f.history.deliveries[0].problem = "2 line(s) could not be converted"; },
       Problem, "Answered, 12 readings; converted: 2 line(s) could not be converted, sent"},
      {"sent once more later, in vain", [](Fixture& f) { f.sent().tried = kLater, f.sent().problem = "server full"; },
       Well, "Answered, 12 readings; converted, sent"},
      {"sent later alone", [](Fixture& f) { f.sent().tried = f.sent().done = kLater; }, Well,
       "Answered, 12 readings; converted"},
      {"backed up, fetched", [](Fixture& f) { f.Delivery(Target::Backup, kInside, kInside); }, Well,
       "Answered, 12 readings; converted, sent, backed up"},
      {"a command", [](Fixture& f) { f.contact().command = kSetDate, f.history.deliveries.clear(); }, Well,
       "Set date: answered"},
      {"gaps", [](Fixture& f) { f.Gap(GapState::Filled, kInside), f.Gap(GapState::Lost, kInside); }, Problem,
       "Answered, 12 readings; 1 gap of 3 readings filled; 1 gap of 3 readings not in the unit any more; converted, "
       "sent"},
      {"a gap that was repaired later", [](Fixture& f) { f.Gap(GapState::Filled, kLater); }, Well,
       "Answered, 12 readings; converted, sent"},
      {"files alone", [](Fixture& f) { f.history.contacts.clear(); }, Well, "Converted, sent"},
  };
  for (const auto& row : rows) {
    Fixture fixture;
    row.change(fixture);
    const RoundTexts texts = TextsOf(fixture.round, fixture.history);
    ASSERT_EQ(texts.lines.size(), 1U) << row.name;
    EXPECT_EQ(texts.lines[0].text, row.text) << row.name;
    EXPECT_EQ(texts.lines[0].sign, row.sign) << row.name;
  }
}

TEST(RoundTexts, PutWhatWentWrongFirstAndLeaveOutWhoHadNoPart) {
  Fixture fixture;
  for (const auto& [key, position, name] :
       {std::tuple(2, 0, "Gone"), std::tuple(3, 1, "Hill"), std::tuple(4, 5, "Idle"), std::tuple(5, 4, "River"),
        std::tuple(6, 3, "Last")}) {
    fixture.AddUnit(key, position, name);
  }
  fixture.Contact(2, Outcome::Silent);
  fixture.Contact(3, Outcome::Answered);
  fixture.Contact(5, Outcome::Silent, 2);
  fixture.Contact(6, Outcome::NotAsked);
  fixture.Contact(4, Outcome::Answered).round = 6;
  fixture.round.problems = 3;
  const RoundTexts texts = TextsOf(fixture.round, fixture.history);
  std::string names;
  for (const RoundLine& line : texts.lines) names += line.name + " ";
  EXPECT_EQ(names, "River Gone Last Hill North ");
  EXPECT_EQ(texts.head.substr(0, 12), "Download of ");
  EXPECT_TRUE(texts.head.ends_with(", 2 units or files failed, 1 unit was not asked")) << texts.head;
  fixture.Contact(6, Outcome::NoPort);
  fixture.round.problems = 5;
  EXPECT_TRUE(
      TextsOf(fixture.round, fixture.history).head.ends_with(", 2 units or files failed, 2 units were not asked"))
      << "the port is no unit";
  EXPECT_EQ(RoundInShort(texts, 2), texts.head + ". River: No answer, 2 tries; Gone: No answer; and 1 other");
}

}  // namespace
}  // namespace corvane
