#include "setup/stations_fields.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

#include "base/numbers.h"
#include "base/paths.h"
#include "base/text.h"
#include "form/control.h"
#include "setup/field_rules.h"
#include "state/unit_choices.h"

namespace corvane {
namespace {

constexpr double kHighest32 = std::numeric_limits<std::int32_t>::max();
constexpr int kPasswordStyles = 3;

/// What spreadsheets and people write for yes and no.
constexpr std::array<std::string_view, 6> kYes = {"yes", "1", "true", "x", "ja", "wahr"};
constexpr std::array<std::string_view, 5> kNo = {"no", "0", "false", "nein", "falsch"};

std::string TextProblem(const std::string& as_Text) {
  if (HasControlCharacter(as_Text)) return "the text holds a line break or a control character; write it in one line";
  if (CutCharacters(as_Text, TextField::kLongestText).size() < as_Text.size()) {
    return "the text is longer than " + std::to_string(TextField::kLongestText) + " characters";
  }
  // Intended: the settings file has this word for an empty text.
  if (as_Text == "null") return "the word \"null\" stands for an empty text; write another one";
  return {};
}

template <class Record>
StationField<Record> TextFieldOf(StationColumn ae_Column, std::string Record::*av_Member) {
  return {ae_Column, true, [av_Member](const Record& record) { return TableText(record.*av_Member); },
          [av_Member](Record& record, const std::string& text) {
            std::string problem = TextProblem(text);
            if (problem.empty()) record.*av_Member = text;
            return problem;
          }};
}

template <class Record>
StationField<Record> NameField() {
  StationField<Record> field = TextFieldOf(StationColumn::Name, &Record::Name);
  field.set = [set = field.set](Record& record, const std::string& text) {
    return text.empty() ? std::string("the name is empty") : set(record, text);
  };
  return field;
}

template <class Record>
StationField<Record> NumberField(StationColumn ae_Column, double ad_Lowest, double ad_Highest) {
  return {ae_Column, false, [](const Record& record) { return std::to_string(record.ID); },
          [ad_Lowest, ad_Highest](Record& record, const std::string& text) {
            std::string problem = WholeNumberProblem(text, ad_Lowest, ad_Highest);
            if (problem.empty()) record.ID = LeadingInteger(text);
            return problem;
          }};
}

StationField<Unit> CorrectionField(StationColumn ae_Column, float Unit::*av_Member) {
  return {ae_Column, false, [av_Member](const Unit& unit) { return ShortestText(unit.*av_Member); },
          [av_Member](Unit& unit, const std::string& text) {
            std::string number = text;
            // Spreadsheets of many countries write it so.
            if (std::ranges::count(number, ',') == 1) std::ranges::replace(number, ',', '.');
            std::string problem = DecimalProblem(number, 0, kLargestCorrection);
            if (problem.empty()) unit.*av_Member = static_cast<float>(LeadingNumber(number));
            return problem;
          }};
}

StationField<Unit> ActiveField() {
  return {StationColumn::Active, false, [](const Unit& unit) { return std::string(unit.Active != 0 ? "yes" : "no"); },
          [](Unit& unit, const std::string& text) {
            const bool yes = std::ranges::count(kYes, ToLower(text)) > 0;
            if (!yes && std::ranges::count(kNo, ToLower(text)) == 0) return "write yes or no, not " + Quote(text);
            if (yes != (unit.Active != 0)) unit.Active = yes ? 1 : 0;
            return std::string();
          }};
}

StationField<Unit> ChoiceField(StationColumn ae_Column, std::int32_t Unit::*av_Member,
                               std::span<const UnitChoice> av_Choices) {
  const auto text_of = [av_Member, av_Choices](const Unit& unit) {
    for (const UnitChoice& choice : av_Choices) {
      if (choice.number == unit.*av_Member) return std::string(choice.text);
    }
    return std::to_string(unit.*av_Member);
  };
  return {ae_Column, false, text_of, [av_Member, av_Choices](Unit& unit, const std::string& text) {
            std::string names;
            for (const UnitChoice& choice : av_Choices) {
              if (PlainName(text) == PlainName(choice.text)) {
                unit.*av_Member = choice.number;
                return std::string();
              }
              names += (names.empty() ? "" : ", ") + std::string(choice.text);
            }
            return Quote(text) + " is none of " + names;
          }};
}

StationField<Unit> NamedField(StationColumn ae_Column, std::int32_t Unit::*av_Member, const RecordNames& av_Names) {
  return {ae_Column, false, [av_Member, &av_Names](const Unit& unit) { return av_Names.TextFor(unit.*av_Member); },
          [av_Member, &av_Names](Unit& unit, const std::string& text) {
            std::string problem;
            if (const auto id = av_Names.Find(text, unit.*av_Member, problem)) unit.*av_Member = *id;
            return problem;
          }};
}

StationField<Unit> DepthsField() {
  StationField<Unit> field = TextFieldOf(StationColumn::Depths, &Unit::Depths);
  field.set = [set = field.set](Unit& unit, const std::string& text) {
    std::string problem = DepthsProblem(text);
    return problem.empty() ? set(unit, text) : problem;
  };
  return field;
}

template <class Record>
RecordNames With(RecordNames av_Names, const RecordArray<Record>& av_Records) {
  for (const Record& record : av_Records) av_Names.Add(record.Name, record.ID);
  return av_Names;
}

}  // namespace

std::vector<StationField<Relay>> RelayFields() {
  return {
      NameField<Relay>(),
      NumberField<Relay>(StationColumn::ID, kLowestID, kHighestID),
      {StationColumn::PasswordStyle, false, [](const Relay& relay) { return std::to_string(relay.PasswordStyle + 1); },
       [](Relay& relay, const std::string& text) {
         std::string problem = WholeNumberProblem(text, 1, kPasswordStyles);
         if (problem.empty()) relay.PasswordStyle = static_cast<std::int16_t>(LeadingInteger(text) - 1);
         return problem;
       }}};
}

std::vector<StationField<Client>> ClientFields() {
  return {NameField<Client>(), NumberField<Client>(StationColumn::ID, 1, kHighest32),
          TextFieldOf(StationColumn::Folder, &Client::Folder), TextFieldOf(StationColumn::UserID, &Client::UserID)};
}

std::vector<StationField<Unit>> UnitFields(const RecordNames& av_Relays, const RecordNames& av_Clients) {
  return {NameField<Unit>(),
          NumberField<Unit>(StationColumn::ID, kLowestID, kHighestID),
          ActiveField(),
          NamedField(StationColumn::Relay, &Unit::RelayID, av_Relays),
          NamedField(StationColumn::Client, &Unit::ClientID, av_Clients),
          ChoiceField(StationColumn::GetFrom, &Unit::GetFrom, kGetFromChoices),
          ChoiceField(StationColumn::SendTo, &Unit::ftpFile, kSendToChoices),
          CorrectionField(StationColumn::MoistureCorrection, &Unit::MoistureCorrection),
          CorrectionField(StationColumn::SalinityCorrection, &Unit::SalinityCorrection),
          DepthsField()};
}

RecordNames NoRelayNames() {
  return {"relay", "Direct"};
}

RecordNames NoClientNames() {
  return {"client", "None"};
}

RecordNames NamesOf(const RecordArray<Relay>& av_Relays) {
  return With(NoRelayNames(), av_Relays);
}

RecordNames NamesOf(const RecordArray<Client>& av_Clients) {
  return With(NoClientNames(), av_Clients);
}

}  // namespace corvane
