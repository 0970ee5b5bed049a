#include "history/alert_message.h"

#include <algorithm>
#include <cstddef>

#include "base/json_text.h"
#include "base/outside_text.h"
#include "history/status_texts.h"

namespace corvane {
namespace {

constexpr int kVersion = 1;
/// Units named in the text; the lists of the document hold all.
constexpr std::size_t kUnitsInText = 50;

std::string EventText(const AlertEvent& event) {
  std::string text = Printable(event.sentence) + "\n";
  const std::size_t shown = std::min(event.units.size(), kUnitsInText);
  for (std::size_t i = 0; i < shown; ++i) {
    const AlertUnit& unit = event.units[i];
    if (unit.why.empty() && event.units.size() == 1) continue;
    text += "  " + Printable(unit.status->name) + (unit.why.empty() ? "" : ": ") + Printable(unit.why) + "\n";
  }
  if (shown < event.units.size()) text += "  and " + std::to_string(event.units.size() - shown) + " more\n";
  return text;
}

std::string MessageText(const std::vector<AlertEvent>& events, const NetworkStatus& status) {
  std::string text;
  for (const AlertEvent& event : events) text += EventText(event) + "\n";
  text += Printable(status.sentence) + "\n";
  if (!status.last_round.empty()) text += "Last round: " + Printable(status.last_round) + "\n";
  if (!status.next_round.IsNone()) text += "Next round: " + WhenText(status.next_round) + "\n";
  return text;
}

void WriteEvent(JsonWriter& json, const AlertEvent& event) {
  json.BeginObject();
  json.Text("event", NameOf(event.kind));
  json.Text("cause", event.cause);
  json.Text("sentence", event.sentence);
  json.Text("relay", event.relay);
  json.Utc("since", event.since);
  json.BeginList("units");
  for (const AlertUnit& unit : event.units) {
    json.BeginObject();
    json.Text("name", unit.status->name);
    json.Integer("id", std::int64_t{unit.status->id});
    json.Integer("client_id", std::int64_t{unit.status->client_id});
    json.Text("client", unit.status->client);
    json.Text("relay", unit.status->relay);
    json.Text("state", NameOf(unit.status->state));
    json.Text("why", unit.why);
    json.Utc("since", unit.since);
    json.End();
  }
  json.End();
  json.End();
}

void WriteRound(JsonWriter& json, const RoundRecord& round) {
  if (round.key == 0) return json.Null("last_round");
  json.BeginObject("last_round");
  json.Bool("automatic", round.IsUnattended());
  json.Bool("all", round.all);
  json.Utc("began", round.began);
  json.Utc("ended", round.ended);
  json.Integer("asked", round.asked);
  json.Integer("answered", round.answered);
  json.Integer("stored", round.stored);
  json.Integer("problems", round.problems);
  json.Text("ending", round.ending);
  json.End();
}

void WriteNetwork(JsonWriter& json, const NetworkStatus& status) {
  json.BeginObject("network");
  json.Text("letter", NameOf(status.letter));
  json.Text("sentence", status.sentence);
  json.Text("nobody_collects", status.nobody_collects);
  json.BeginObject("counts");
  for (std::size_t state = 0; state < status.counts.size(); ++state) {
    json.Integer(NameOf(static_cast<UnitState>(state)), status.counts[state]);
  }
  json.End();
  WriteRound(json, status.last);
  json.Local("next_round", status.next_round);
  json.End();
}

}  // namespace

std::string AlertSubject(const std::vector<AlertEvent>& av_Events) {
  std::string text = Printable(av_Events.front().sentence);
  // The end of a round is worth no word where something was told.
  const auto others = std::count_if(av_Events.begin() + 1, av_Events.end(),
                                    [](const AlertEvent& event) { return event.kind != AlertKind::Round; });
  if (others > 0) text += " (and " + std::to_string(others) + " more)";
  return text;
}

std::string AlertMessage(const std::vector<AlertEvent>& av_Events, const NetworkStatus& av_Status) {
  JsonWriter json;
  json.BeginObject();
  json.Integer("version", std::int64_t{kVersion});
  json.Utc("time", av_Status.now);
  json.Local("local_time", av_Status.now.Local());
  json.Text("subject", AlertSubject(av_Events));
  json.Text("text", MessageText(av_Events, av_Status));
  json.BeginList("events");
  for (const AlertEvent& event : av_Events) WriteEvent(json, event);
  json.End();
  WriteNetwork(json, av_Status);
  json.End();
  return json.Take();
}

}  // namespace corvane
