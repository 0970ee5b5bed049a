#pragma once

#include <cstddef>
#include <set>
#include <string>

#include "app/operations.h"
#include "app/settings.h"
#include "history/history.h"
#include "lang/phrases.h"
#include "rounds/network_watch.h"
#include "setup/setup_plan.h"
#include "setup/setup_reader.h"
#include "setup/setup_table.h"
#include "setup/setup_tries.h"
#include "setup/setup_writer.h"
#include "state/app_info.h"
#include "state/operation_slot.h"

namespace corvane {

/// The set-up as front ends reach it: what is there, the tries in the operation slot, and putting the plan in.
class SetupCommands {
 public:
  /// All must outlive this object.
  struct Parts {
    Operations& operations;
    const OperationSlot& slot;
    const AppInfo& app;
    const Registry& registry;
    SetupReader& reader;
    SetupWriter& writer;
    SetupTries& tries;
    Settings& settings;
    NetworkWatch& watch;
    History& history;
  };
  explicit SetupCommands(const Parts& av_Parts) : p_(av_Parts) {}

  /// The language of faults and answers from now on; English without it.
  void SetPhrases(const Phrases& av_Phrases);
  [[nodiscard]] const Phrases& phrases() const { return say_; }

  /// What is there; `first` in it tells whether there were settings when the program started.
  [[nodiscard]] SetupPlan PlanOf() const { return p_.reader.PlanOf(p_.settings.WasNew()); }
  void ChooseDevice(SetupPlan& av_Plan, const std::string& as_Device) const {
    p_.reader.ChooseDevice(av_Plan, as_Device);
  }
  /// Takes the stations of a table's file into the plan; a bare name is one of the application folder.
  [[nodiscard]] SetupTable TakeTable(SetupPlan& av_Plan, const std::string& as_File) const {
    return corvane::TakeTable(av_Plan, p_.registry, p_.app.AppPath(as_File), say_);
  }
  [[nodiscard]] std::vector<SetupFault> FaultsOf(const SetupPlan& av_Plan, SetupPage av_Page) const {
    return corvane::FaultsOf(av_Plan, av_Page, p_.app, say_);
  }

  // Tries; each **yields** and changes nothing that is saved. While another operation runs they fail and say so.
  [[nodiscard]] SetupAnswer TryPort(const SetupPlan& av_Plan);
  [[nodiscard]] SetupClock AskClock(const SetupPlan& av_Plan, std::size_t al_Row);
  [[nodiscard]] SetupClock SetClock(const SetupPlan& av_Plan, std::size_t al_Row);
  [[nodiscard]] SetupAnswer TryServer(const SetupPlan& av_Plan);
  [[nodiscard]] SetupAnswer TryBackup(const SetupPlan& av_Plan);

  /// Puts the plan in and saves the settings at once, in one step; false while an operation runs or when they could not
  /// be saved, which was shown. **Yields.**
  ///
  /// What could not be saved is put in all the same: then the plan is that of the settings as they are by now, so that
  /// its rows bear the places of the records that were made of them.
  [[nodiscard]] bool PutIn(SetupPlan& av_Plan);

 private:
  /// Runs a try in the operation slot.
  template <class Answer, class Try>
  [[nodiscard]] Answer Run(const Try& av_Try);

  /// Writes down whose clocks were set by a try, now that they are in the list: readings from before lie elsewhere.
  void NoteClocks(const SetupPlan& av_Plan);

  Parts p_;
  Phrases say_;
  std::set<std::string> clocks_set_;  ///< of these units
};

/// What is said of a try that was not made.
[[nodiscard]] std::vector<Phrase> SetupCommandPhrases();

}  // namespace corvane
