#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "setup/setup_plan.h"

namespace corvane {
namespace {

std::string Count(std::size_t al_Number, const std::string& as_What) {
  return std::to_string(al_Number) + " " + as_What + (al_Number == 1 ? "" : "s");
}

std::size_t ActiveUnits(const SetupPlan& av_Plan) {
  return static_cast<std::size_t>(
      std::count_if(av_Plan.units.begin(), av_Plan.units.end(), [](const SetupUnit& unit) { return unit.active; }));
}

std::size_t SentUnits(const SetupPlan& av_Plan) {
  return static_cast<std::size_t>(std::count_if(av_Plan.units.begin(), av_Plan.units.end(),
                                                [](const SetupUnit& unit) { return unit.active && unit.sent; }));
}

std::string StationsText(const SetupPlan& av_Plan) {
  std::string text = Count(av_Plan.units.size(), "unit");
  const std::size_t active = ActiveUnits(av_Plan);
  if (active < av_Plan.units.size()) text += " (" + std::to_string(active) + " active)";
  return text + ", " + Count(av_Plan.relays.size(), "relay");
}

std::string ScheduleText(const SetupPlan& av_Plan) {
  std::string text = av_Plan.automatic ? "every " + av_Plan.interval : "only when asked for";
  if (av_Plan.at_log_on) text += ", starts at log-on";
  if (av_Plan.goes_on) text += ", goes on past failures";
  return text;
}

std::string TablesText(const SetupPlan& av_Plan) {
  if (!av_Plan.tables_folder.empty()) return av_Plan.tables_folder;
  return av_Plan.tables_are_set ? "as the settings name them" : "none: raw files only";
}

std::string ServerText(const SetupPlan& av_Plan) {
  if (av_Plan.server.empty()) return "none";
  return av_Plan.server + (av_Plan.encrypted ? ", encrypted" : ", not encrypted") + ", " +
         (av_Plan.sends_calibrated ? "calibrated" : "raw") + " files of " + Count(SentUnits(av_Plan), "unit");
}

/// Adds what was not tried, or went wrong.
void AddTried(std::vector<std::string>& av_Sentences, const std::optional<SetupAnswer>& av_Answer,
              std::string_view as_NotTried) {
  if (!av_Answer) {
    av_Sentences.emplace_back(as_NotTried);
  } else if (!av_Answer->well) {
    av_Sentences.push_back(av_Answer->text);
  }
}

void AddCollecting(std::vector<std::string>& av_Sentences, const SetupPlan& av_Plan, const SetupTried& av_Tried) {
  if (av_Plan.device.empty()) {
    av_Sentences.emplace_back("No device is chosen for the base station: no unit is asked until there is one.");
  } else {
    AddTried(av_Sentences, av_Tried.port, "The port was not tested: whether the base station answers is not known.");
  }
  if (av_Plan.units.empty()) {
    av_Sentences.emplace_back("No unit is entered: there is nothing to collect.");
  } else if (ActiveUnits(av_Plan) == 0) {
    av_Sentences.emplace_back("No unit is active: nothing is collected until one is ticked.");
  } else if (!av_Plan.device.empty()) {
    AddTried(av_Sentences, av_Tried.clock,
             "No unit was asked for its clock: readings bear the unit's own date, right or wrong.");
  }
  if (!av_Plan.tables_folder.empty() || av_Plan.tables_are_set) return;
  av_Sentences.emplace_back(
      "The tables are missing: readings are stored raw, and converted once you name the folder that holds "
      "moisture.lkp, salinity.lkp and salcorr.lkp. Until then each round says that a table is missing.");
}

void AddUnattended(std::vector<std::string>& av_Sentences, const SetupPlan& av_Plan) {
  if (!av_Plan.automatic) {
    av_Sentences.emplace_back("Nothing is downloaded by itself: the automatic download is off.");
  } else if (!av_Plan.at_log_on) {
    av_Sentences.emplace_back(
        "Nothing starts the program when the computer was started anew: let it start at log-on, or as a service.");
  }
  if (!av_Plan.goes_on) av_Sentences.emplace_back("A unit that does not answer ends a round for all that follow.");
}

void AddDelivery(std::vector<std::string>& av_Sentences, const SetupPlan& av_Plan, const SetupTried& av_Tried) {
  if (!av_Plan.server.empty()) {
    AddTried(av_Sentences, av_Tried.server, "The server was not tried.");
    if (SentUnits(av_Plan) == 0) {
      av_Sentences.emplace_back("No unit's file is sent to the server: choose those that are.");
    }
    if (!av_Plan.encrypted && !av_Plan.anonymous) {
      av_Sentences.emplace_back("The password for the server goes over the net in the clear: it is not encrypted.");
    }
    if (av_Plan.sends_calibrated && av_Plan.tables_folder.empty() && !av_Plan.tables_are_set) {
      av_Sentences.emplace_back("Calibrated files are to be sent, but without tables there are none.");
    }
  }
  if (av_Plan.backup_folder.empty()) {
    av_Sentences.emplace_back("There is no backup: choose a folder on another disk.");
  } else {
    AddTried(av_Sentences, av_Tried.backup, "The backup folder was not tried.");
  }
}

}  // namespace

std::vector<std::pair<std::string, std::string>> SummaryOf(const SetupPlan& av_Plan) {
  const std::string device = av_Plan.device.empty() ? "none" : av_Plan.device;
  return {{"Base station", device + (av_Plan.device.empty() ? "" : " (COM" + std::to_string(av_Plan.port) + ")")},
          {"Stations", StationsText(av_Plan)},
          {"Data folder", av_Plan.data_folder},
          {"Tables", TablesText(av_Plan)},
          {"Download", ScheduleText(av_Plan)},
          {"Server", ServerText(av_Plan)},
          {"Backup", av_Plan.backup_folder.empty() ? "none" : av_Plan.backup_folder}};
}

std::vector<std::string> NotDone(const SetupPlan& av_Plan, const SetupTried& av_Tried) {
  std::vector<std::string> sentences;
  AddCollecting(sentences, av_Plan, av_Tried);
  AddUnattended(sentences, av_Plan);
  AddDelivery(sentences, av_Plan, av_Tried);
  return sentences;
}

}  // namespace corvane
