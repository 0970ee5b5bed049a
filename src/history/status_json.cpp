#include "history/status_json.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "base/json_text.h"
#include "state/app_info.h"

namespace corvane {
namespace {

/// Raised when a field is taken away or means something else; one that is added changes nothing.
constexpr std::int64_t kFormat = 1;

constexpr std::array<std::string_view, 4> kRoundKinds = {"download", "fetch", "command", "repair"};
constexpr std::array<std::string_view, 6> kTroubles = {"missing", "rejected", "clock", "future", "battery", "sensor"};

/// A history may have been written by a program that knows more kinds.
template <std::size_t kCount, typename Kind>
std::string_view NameIn(const std::array<std::string_view, kCount>& av_Names, Kind ae_Kind) {
  const auto index = static_cast<std::size_t>(ae_Kind);
  return index < kCount ? av_Names[index] : "other";
}

void TextOrNull(JsonWriter& av_Json, std::string_view as_Name, const std::string& as_Text) {
  if (as_Text.empty()) return av_Json.Null(as_Name);
  av_Json.Text(as_Name, as_Text);
}

void WriteRound(JsonWriter& av_Json, const RoundRecord& av_Round, const std::string& as_Sentence) {
  if (av_Round.key == 0) return av_Json.Null("last_round");
  av_Json.BeginObject("last_round");
  av_Json.Text("sentence", as_Sentence);
  av_Json.Text("kind", NameIn(kRoundKinds, av_Round.kind));
  av_Json.Bool("automatic", av_Round.IsUnattended());
  av_Json.Bool("all_units", av_Round.all);
  av_Json.Utc("began", av_Round.began);
  av_Json.Utc("ended", av_Round.ended);
  av_Json.Integer("asked", av_Round.asked);
  av_Json.Integer("answered", av_Round.answered);
  av_Json.Integer("stored", av_Round.stored);
  av_Json.Integer("problems", av_Round.problems);
  TextOrNull(av_Json, "ended_early", av_Round.ending);
  av_Json.End();
}

void WriteCounts(JsonWriter& av_Json, const NetworkStatus& av_Status) {
  av_Json.BeginObject("counts");
  for (std::size_t i = 0; i < av_Status.counts.size(); ++i) {
    av_Json.Integer(NameOf(static_cast<UnitState>(i)), av_Status.counts[i]);
  }
  av_Json.End();
}

void WriteTroubles(JsonWriter& av_Json, const UnitStatus& av_Unit) {
  av_Json.BeginList("troubles");
  for (const Trouble& trouble : av_Unit.troubles) {
    av_Json.BeginObject();
    av_Json.Text("kind", NameIn(kTroubles, trouble.kind));
    av_Json.Text("text", trouble.text);
    av_Json.End();
  }
  av_Json.End();
}

void WriteAnswers(JsonWriter& av_Json, const UnitStatus& av_Unit) {
  av_Json.Utc("last_asked", av_Unit.last_asked);
  av_Json.Utc("last_answered", av_Unit.last_answered);
  av_Json.Integer("asked", av_Unit.asked);
  av_Json.Integer("answered", av_Unit.answered);
  av_Json.BeginList("answers");
  for (const bool answered : av_Unit.answers) av_Json.Bool("", answered);
  av_Json.End();
}

void WriteUnit(JsonWriter& av_Json, const UnitStatus& av_Unit) {
  av_Json.BeginObject();
  av_Json.Integer("position", av_Unit.position);
  av_Json.Integer("id", av_Unit.id);
  av_Json.Text("name", av_Unit.name);
  av_Json.Integer("client_id", av_Unit.client_id);
  av_Json.Text("client", av_Unit.client);
  av_Json.Text("file", av_Unit.file);
  av_Json.Integer("relay_id", av_Unit.relay_id);
  TextOrNull(av_Json, "relay", av_Unit.relay);
  av_Json.Text("state", NameOf(av_Unit.state));
  TextOrNull(av_Json, "why", av_Unit.why);
  WriteTroubles(av_Json, av_Unit);
  av_Json.Local("last_reading", av_Unit.last_reading);
  av_Json.Integer("reading_age_seconds", av_Unit.reading_age);
  WriteAnswers(av_Json, av_Unit);
  av_Json.Number("battery_volts", av_Unit.battery, 3);
  av_Json.Number("battery_slope_volts_per_day", av_Unit.battery_slope, 4);
  av_Json.Number("battery_days_left", av_Unit.battery_days, 1);
  av_Json.Integer("clock_offset_seconds", av_Unit.clock_offset);
  av_Json.Number("clock_drift_seconds_per_day", av_Unit.clock_drift, 1);
  av_Json.Number("complete", av_Unit.complete, 6);
  av_Json.Integer("gaps", av_Unit.gaps);
  av_Json.Integer("missing", av_Unit.missing);
  av_Json.Integer("lost", av_Unit.lost);
  av_Json.Utc("delivered", av_Unit.delivered);
  av_Json.Local("delivered_to", av_Unit.delivered_to);
  TextOrNull(av_Json, "delivery_problem", av_Unit.delivery_problem);
  TextOrNull(av_Json, "note", av_Unit.note);
  av_Json.Bool("silenced", av_Unit.silenced);
  av_Json.End();
}

}  // namespace

std::string StatusJson(const NetworkStatus& av_Status) {
  JsonWriter json;
  json.BeginObject();
  json.Integer("format", kFormat);
  json.Text("version", AppInfo::VersionText());
  json.Utc("now", av_Status.now);
  json.Integer("local_ahead_seconds", av_Status.now.ahead);
  json.Text("state", NameOf(av_Status.letter));
  json.Text("sentence", av_Status.sentence);
  TextOrNull(json, "nobody_collects", av_Status.nobody_collects);
  WriteRound(json, av_Status.last, av_Status.last_round);
  json.Local("next_round", av_Status.next_round);
  WriteCounts(json, av_Status);
  TextOrNull(json, "worst_relay", av_Status.worst_relay);
  json.BeginList("units");
  for (const UnitStatus& unit : av_Status.units) WriteUnit(json, unit);
  json.End();
  json.End();
  return json.Take();
}

}  // namespace corvane
