#include "app/conversion_commands.h"

namespace corvane {
namespace {

constexpr const char* kHexFilter = "Hex files(*.hex)|*.hex|All files(*.)|*.*";

}  // namespace

bool ConversionCommands::ConvertAll(bool ab_All) {
  return p_.operations.RunOperation("Convert", [&] {
    p_.units.ResetCounters();
    p_.units.ConvertAllUnits(ab_All, kAny, kAny);
  });
}

bool ConversionCommands::ConvertSelected() {
  return p_.operations.RunOperation("Convert", [&] { p_.selected.ConvertSelectedFiles(); });
}

void ConversionCommands::ConvertHex() {
  const auto file = p_.dialogs.ChooseFile("Choose a hex dump", kHexFilter, p_.names.DataFolder());
  if (!file) return;
  const bool run = p_.operations.RunOperation("Convert hex dump", [&] {
    if (!p_.hex.ConvertHexToRaw(*file)) ++p_.flags.problems;
  });
  // An automatic download may have begun while the choice was open.
  if (!run) p_.trace.Status("Not converted: another operation runs");
}

}  // namespace corvane
