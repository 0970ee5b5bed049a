#include "setup/setup_plan.h"

#include <algorithm>

#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

/// A client's name as a folder's: what cannot stand in one becomes "_".
std::string FolderNameFor(std::string_view as_Client) {
  std::string folder(Trim(as_Client));
  std::replace_if(
      folder.begin(), folder.end(), [](char c) { return c == '/' || c == '\\' || c == ':'; }, '_');
  return folder.starts_with('.') ? "_" + folder.substr(1) : folder;
}

/// The same, numbered where another client has that folder.
std::string NewFolderFor(const SetupPlan& av_Plan, std::string_view as_Client) {
  const std::string name = FolderNameFor(as_Client);
  std::string folder = name;
  const auto is_taken = [&folder](const SetupClient& client) { return EqualsNoCase(Trim(client.folder), folder); };
  for (int number = 2; std::ranges::any_of(av_Plan.clients, is_taken); ++number) {
    folder = name + "_" + std::to_string(number);
  }
  return folder;
}

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
  for (const SetupUnit& unit : av_Plan.units) {
    const std::string_view name = Trim(unit.client);
    const bool known = name.empty() ||
                       std::any_of(av_Plan.clients.begin(), av_Plan.clients.end(),
                                   [name](const SetupClient& client) { return EqualsNoCase(Trim(client.name), name); });
    if (!known) av_Plan.clients.push_back({std::string(name), NewFolderFor(av_Plan, name)});
  }
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
  unit.relay = last.relay;
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
