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
#include "setup/stations_phrases.h"
#include "state/settings_file.h"
#include "state/unit_choices.h"

namespace corvane {
namespace {

constexpr double kHighest32 = std::numeric_limits<std::int32_t>::max();
constexpr int kPasswordStyles = 3;

/// What spreadsheets and people write for yes and no.
constexpr std::array<std::string_view, 6> kYes = {"yes", "1", "true", "x", "ja", "wahr"};
constexpr std::array<std::string_view, 5> kNo = {"no", "0", "false", "nein", "falsch"};

template <class Record>
StationField<Record> TextFieldOf(StationColumn ae_Column, std::string Record::*av_Member, const Phrases& av_Say) {
  return {ae_Column, true, [av_Member](const Record& record) { return TableText(record.*av_Member); },
          [av_Member, say = av_Say](Record& record, const std::string& text) {
            std::string problem = StationTextProblem(text, say);
            if (problem.empty()) record.*av_Member = text;
            return problem;
          }};
}

template <class Record>
StationField<Record> NameField(const Phrases& av_Say) {
  StationField<Record> field = TextFieldOf(StationColumn::Name, &Record::Name, av_Say);
  field.set = [set = field.set, say = av_Say](Record& record, const std::string& text) {
    return text.empty() ? say.Text(kStationsSays.unnamed) : set(record, text);
  };
  return field;
}

template <class Record>
StationField<Record> NumberField(StationColumn ae_Column, double ad_Lowest, double ad_Highest, const Phrases& av_Say) {
  return {ae_Column, false, [](const Record& record) { return std::to_string(record.ID); },
          [ad_Lowest, ad_Highest, say = av_Say](Record& record, const std::string& text) {
            std::string problem = WholeNumberProblem(text, ad_Lowest, ad_Highest, say);
            if (problem.empty()) record.ID = LeadingInteger(text);
            return problem;
          }};
}

StationField<Unit> CorrectionField(StationColumn ae_Column, float Unit::*av_Member, const Phrases& av_Say) {
  return {ae_Column, false, [av_Member](const Unit& unit) { return ShortestText(unit.*av_Member); },
          [av_Member, say = av_Say](Unit& unit, const std::string& text) {
            std::string number = text;
            // Spreadsheets of many countries write it so.
            if (std::ranges::count(number, ',') == 1) std::ranges::replace(number, ',', '.');
            std::string problem = DecimalProblem(number, 0, kLargestCorrection, say);
            if (problem.empty()) unit.*av_Member = static_cast<float>(LeadingNumber(number));
            return problem;
          }};
}

StationField<Unit> ActiveField(const Phrases& av_Say) {
  return {StationColumn::Active, false, [](const Unit& unit) { return std::string(unit.Active != 0 ? "yes" : "no"); },
          [say = av_Say](Unit& unit, const std::string& text) {
            const bool yes = std::ranges::count(kYes, ToLower(text)) > 0;
            if (!yes && std::ranges::count(kNo, ToLower(text)) == 0) {
              return say.Text(kStationsSays.yes_or_no, {Quote(text)});
            }
            if (yes != (unit.Active != 0)) unit.Active = yes ? 1 : 0;
            return std::string();
          }};
}

StationField<Unit> ChoiceField(StationColumn ae_Column, std::int32_t Unit::*av_Member,
                               std::span<const UnitChoice> av_Choices, const Phrases& av_Say) {
  const auto text_of = [av_Member, av_Choices](const Unit& unit) {
    for (const UnitChoice& choice : av_Choices) {
      if (choice.number == unit.*av_Member) return std::string(choice.text);
    }
    return std::to_string(unit.*av_Member);
  };
  return {ae_Column, false, text_of, [av_Member, av_Choices, say = av_Say](Unit& unit, const std::string& text) {
            std::string names;
            for (const UnitChoice& choice : av_Choices) {
              if (PlainName(text) == PlainName(choice.text)) {
                unit.*av_Member = choice.number;
                return std::string();
              }
              names += (names.empty() ? "" : ", ") + std::string(choice.text);
            }
            return say.Text(kStationsSays.none_of, {Quote(text), names});
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

StationField<Unit> DepthsField(const Phrases& av_Say) {
  StationField<Unit> field = TextFieldOf(StationColumn::Depths, &Unit::Depths, av_Say);
  field.set = [set = field.set, say = av_Say](Unit& unit, const std::string& text) {
    const std::string depths = PlainDepths(text);
    std::string problem = DepthsProblem(depths, say);
    return problem.empty() ? set(unit, depths) : problem;
  };
  return field;
}

template <class Record>
RecordNames With(RecordNames av_Names, const RecordArray<Record>& av_Records) {
  for (const Record& record : av_Records) av_Names.Add(record.Name, record.ID);
  return av_Names;
}

}  // namespace

std::string StationTextProblem(const std::string& as_Text, const Phrases& av_Phrases) {
  if (HasControlCharacter(as_Text)) return av_Phrases.Text(kStationsSays.line_break);
  if (CutCharacters(as_Text, TextField::kLongestText).size() < as_Text.size()) {
    return av_Phrases.Text(kStationsSays.too_long, {std::to_string(TextField::kLongestText)});
  }
  // Intended: the settings file has this word for an empty text.
  if (as_Text == kEmptyValue) return av_Phrases.Text(kStationsSays.null_word);
  return {};
}

std::vector<StationField<Relay>> RelayFields(const Phrases& av_Phrases) {
  return {
      NameField<Relay>(av_Phrases),
      NumberField<Relay>(StationColumn::ID, kLowestID, kHighestID, av_Phrases),
      {StationColumn::PasswordStyle, false, [](const Relay& relay) { return std::to_string(relay.PasswordStyle + 1); },
       [say = av_Phrases](Relay& relay, const std::string& text) {
         std::string problem = WholeNumberProblem(text, 1, kPasswordStyles, say);
         if (problem.empty()) relay.PasswordStyle = static_cast<std::int16_t>(LeadingInteger(text) - 1);
         return problem;
       }}};
}

std::vector<StationField<Client>> ClientFields(const Phrases& av_Phrases) {
  return {NameField<Client>(av_Phrases), NumberField<Client>(StationColumn::ID, 1, kHighest32, av_Phrases),
          TextFieldOf(StationColumn::Folder, &Client::Folder, av_Phrases),
          TextFieldOf(StationColumn::UserID, &Client::UserID, av_Phrases)};
}

std::vector<StationField<Unit>> UnitFields(const RecordNames& av_Relays, const RecordNames& av_Clients,
                                           const Phrases& av_Phrases) {
  return {NameField<Unit>(av_Phrases),
          NumberField<Unit>(StationColumn::ID, kLowestID, kHighestID, av_Phrases),
          ActiveField(av_Phrases),
          NamedField(StationColumn::Relay, &Unit::RelayID, av_Relays),
          NamedField(StationColumn::Client, &Unit::ClientID, av_Clients),
          ChoiceField(StationColumn::GetFrom, &Unit::GetFrom, kGetFromChoices, av_Phrases),
          ChoiceField(StationColumn::SendTo, &Unit::ftpFile, kSendToChoices, av_Phrases),
          CorrectionField(StationColumn::MoistureCorrection, &Unit::MoistureCorrection, av_Phrases),
          CorrectionField(StationColumn::SalinityCorrection, &Unit::SalinityCorrection, av_Phrases),
          DepthsField(av_Phrases)};
}

RecordNames NoRelayNames(const Phrases& av_Phrases) {
  constexpr std::array<std::string_view, 4> kToo = {"-", "none", "direkt", "keines"};
  return RecordNames({"Direct", kToo, kStationsSays.several_relays, kStationsSays.no_relay}, av_Phrases);
}

RecordNames NoClientNames(const Phrases& av_Phrases) {
  constexpr std::array<std::string_view, 4> kToo = {"-", "no client", "keiner", "kein kunde"};
  return RecordNames({"None", kToo, kStationsSays.several_clients, kStationsSays.no_client}, av_Phrases);
}

RecordNames NamesOf(const RecordArray<Relay>& av_Relays) {
  return With(NoRelayNames(), av_Relays);
}

RecordNames NamesOf(const RecordArray<Client>& av_Clients) {
  return With(NoClientNames(), av_Clients);
}

}  // namespace corvane
