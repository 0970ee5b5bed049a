#pragma once

#include <string>
#include <vector>

#include "form/form.h"
#include "link/port_choices.h"
#include "setup/setup_plan.h"
#include "state/app_info.h"
#include "state/file_names.h"
#include "state/port_devices.h"
#include "state/records.h"

namespace corvane {

/// A language file that can be chosen.
struct SetupLanguage {
  std::string file;  ///< full path
  std::string name;  ///< the language's own name, "Deutsch"; the file's where it is not known
};

/// Tells what is set up.
class SetupReader {
 public:
  /// What is read; all must outlive this object.
  struct Parts {
    const Form& form;
    const Registry& registry;
    const AppInfo& app;
    const FileNames& names;
    const PortDevices& devices;
    const PortChoices& ports;
  };
  explicit SetupReader(const Parts& av_Parts) : p_(av_Parts) {}

  /// What is there. `ab_First`: there were no settings; then the network is empty, as nobody has these units, and the
  /// rest is what a new network is best begun with.
  [[nodiscard]] SetupPlan PlanOf(bool ab_First) const;
  /// Lets the plan's radio port stand for a device: takes the number that stands for it, or gives it one. An empty
  /// device chooses none.
  void ChooseDevice(SetupPlan& av_Plan, const std::string& as_Device) const;

 private:
  void ReadTables(SetupPlan& av_Plan) const;
  void ReadDelivery(SetupPlan& av_Plan) const;
  [[nodiscard]] int NumberFor(const SetupPlan& av_Plan, const std::string& as_Device) const;

  Parts p_;
};

/// The language files in these folders, the first of each name; English first.
[[nodiscard]] std::vector<SetupLanguage> FindLanguages(const std::vector<std::string>& av_Folders);

}  // namespace corvane
