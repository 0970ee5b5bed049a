#include "setup/setup_plan.h"

#include <algorithm>

#include "base/numbers.h"
#include "base/text.h"
#include "setup/field_rules.h"

namespace corvane {
namespace {

/// The ID behind the last one, where that is a number.
template <class Row>
std::string NextID(const std::vector<Row>& av_Rows) {
  std::int64_t highest = 0;
  for (const Row& row : av_Rows) highest = std::max(highest, ParseInteger(row.id, 0, INT32_MAX - 1).value_or(0));
  return std::to_string(highest + 1);
}

}  // namespace

std::string_view TitleOf(SetupPage av_Page) {
  constexpr std::array<std::string_view, kSetupPages.size()> kTitles = {
      "Language",      "Port of the base station", "Relays and units", "Clients and folders",
      "Lookup tables", "Clock of a unit",          "Schedule",         "Server and backup",
      "Summary"};
  return kTitles[static_cast<std::size_t>(av_Page)];
}

void CompletePlan(SetupPlan& av_Plan, SetupPage av_Page) {
  if (av_Page != SetupPage::Stations) return;
  for (SetupUnit& unit : av_Plan.units) {
    unit.relay = RelayMeant(av_Plan, unit.relay).value_or(unit.relay);
    unit.depths = PlainDepths(unit.depths);
    const std::string_view name = Trim(unit.client);
    const bool known = name.empty() ||
                       std::any_of(av_Plan.clients.begin(), av_Plan.clients.end(),
                                   [name](const SetupClient& client) { return EqualsNoCase(Trim(client.name), name); });
    const auto is_taken = [&av_Plan](const std::string& folder) {
      return std::ranges::any_of(
          av_Plan.clients, [&folder](const SetupClient& client) { return EqualsNoCase(Trim(client.folder), folder); });
    };
    if (!known) av_Plan.clients.push_back({std::string(name), ClientFolderFor(name, is_taken)});
  }
}

std::optional<std::string> RelayMeant(const SetupPlan& av_Plan, std::string_view as_Text) {
  constexpr std::string_view kBeforeID = "id ";
  std::string_view text = Trim(as_Text);
  const auto with = [&](std::string SetupRelay::*member) {
    return std::ranges::find_if(av_Plan.relays,
                                [&](const SetupRelay& relay) { return EqualsNoCase(Trim(relay.*member), text); });
  };
  if (text.empty()) return "";
  if (const auto named = with(&SetupRelay::name); named != av_Plan.relays.end()) return std::string(Trim(named->name));
  for (const std::string_view direct : {"Direct", "Direkt", "-", "0"}) {
    if (EqualsNoCase(text, direct)) return "";
  }
  if (StartsWithNoCase(text, kBeforeID)) text = Trim(text.substr(kBeforeID.size()));
  if (const auto of_id = with(&SetupRelay::id); of_id != av_Plan.relays.end()) return std::string(Trim(of_id->name));
  return std::nullopt;
}

SetupUnit NextUnit(const SetupPlan& av_Plan) {
  SetupUnit unit;
  unit.id = NextID(av_Plan.units);
  unit.sent = !av_Plan.server.empty();
  if (av_Plan.units.empty()) {
    if (!av_Plan.relays.empty()) unit.relay = av_Plan.relays.front().name;
    return unit;
  }
  const SetupUnit& last = av_Plan.units.back();
  unit.relay = RelayMeant(av_Plan, last.relay).value_or(last.relay);
  unit.client = last.client;
  unit.get_from = last.get_from;
  unit.sent = last.sent;
  return unit;
}

std::size_t FollowRelay(SetupPlan& av_Plan, std::string_view as_Former, std::string_view as_Now) {
  const std::string_view former = Trim(as_Former);
  std::size_t followed = 0;
  for (SetupUnit& unit : av_Plan.units) {
    if (former.empty() || former == Trim(as_Now) || !EqualsNoCase(Trim(unit.relay), former)) continue;
    unit.relay = Trim(as_Now);
    ++followed;
  }
  return followed;
}

SetupRelay NextRelay(const SetupPlan& av_Plan) {
  return {{}, NextID(av_Plan.relays)};
}

}  // namespace corvane
