#include "window/assistant/texts.h"

#include "setup/setup_plan.h"

namespace corvane::window::assistant {

std::vector<Sentences::Row> BuiltInSentences() {
  std::vector<Sentences::Row> rows = {
      {kWindow, "Set up a network"},
      {kBack, "< &Back"},
      {kNext, "&Next >"},
      {kFinish, "&Finish"},
      {kCancel, "Cancel"},
      {kToSummary, "To the su&mmary"},
      {kToSummaryTip, "Skip the pages between: they stay as they are shown there"},
      {kTrying, "Trying..."},
      {kBusy, "Something else is running just now. Wait until it has ended, then try again."},
      {kStop, "Sto&p"},
      {kNoDevice, "No serial device was found. Plug the adapter in and press Look again."},
      {kTablesFound, "All three tables are there: readings are calibrated."},
      {kTablesKept, "The tables that the settings name are used, as before."},
      {kTablesMissing, "Not found in this folder: %1. Without it nothing is calibrated."},
      {kTablesNone,
       "Without tables the readings are stored raw and nothing is lost; they are calibrated when tables are there."},
      {kNoUnit, "There is no unit that is asked by radio: this page can be left."},
      {kNotDone, "Not done yet:"},
      {kAllDone, "Everything that was entered has been tried."},
      {kChooseAFolder, "Choose a folder"},
      {kChooseStations, "Choose a table of stations"},
      {kTakenFromFile, "Taken from the file; rows that are new or differ: %1"},
      {kNotPutIn, "This could not be put in and saved. Nothing is lost: mend what was said and press Finish again."},
      {kDirect, "Direct"},
      {kDepthsTip, "In centimetres, from the first sensor on: 10;20;40, also 10/20/40 or 10 20 40"},
      {kRelayTip, "A relay by its name or ID; Direct or 0: none"},
      {kMoreFaults, "and %1 more"},
      {kPractiseFailed, "The practice could not be started: %1"},
  };
  int title = kFirstTitle;
  for (const SetupPage page : kSetupPages) {
    const std::string_view text = TitleOf(page);
    rows.push_back({title++, QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))});
  }
  return rows;
}

}  // namespace corvane::window::assistant
