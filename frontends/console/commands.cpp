#include "commands.h"

#include <algorithm>
#include <array>

#include "conversion_commands.h"
#include "keep_command.h"
#include "link_commands.h"
#include "list_commands.h"
#include "page_command.h"
#include "port_commands.h"
#include "port_list.h"
#include "repair_command.h"
#include "script_command.h"
#include "settings_commands.h"
#include "setup_command.h"
#include "stations_command.h"
#include "transfer_commands.h"

namespace corvane::console {
namespace {

struct CommandEntry {
  CommandId id;
  int (*run)(Desk& desk, const Options& options);
};

constexpr std::array kEntries = {
    CommandEntry{CommandId::Download, Download},
    CommandEntry{CommandId::Convert, Convert},
    CommandEntry{CommandId::Send, Transfer},
    CommandEntry{CommandId::Fetch, Transfer},
    CommandEntry{CommandId::Backup, Transfer},
    CommandEntry{CommandId::GetDate, UnitCommand},
    CommandEntry{CommandId::SetDate, UnitCommand},
    CommandEntry{CommandId::SetLogPeriod, UnitCommand},
    CommandEntry{CommandId::SetMode, UnitCommand},
    CommandEntry{CommandId::SetDelays, UnitCommand},
    CommandEntry{CommandId::ReadMemory, UnitCommand},
    CommandEntry{CommandId::TestPort, TestPort},
    CommandEntry{CommandId::FindPort, FindPort},
    CommandEntry{CommandId::Run, KeepSchedule},
    CommandEntry{CommandId::Units, ListUnits},
    CommandEntry{CommandId::Script, RunScript},
    CommandEntry{CommandId::Recover, Recover},
    CommandEntry{CommandId::Repair, Repair},
    CommandEntry{CommandId::Page, MakePage},
    CommandEntry{CommandId::Setup, SetUp},
    CommandEntry{CommandId::Set, SetSettings},
    CommandEntry{CommandId::Get, GetSettings},
    CommandEntry{CommandId::Ports, Ports},
    CommandEntry{CommandId::Keep, Keep},
    CommandEntry{CommandId::Restore, TellWhatIsMissing},
    CommandEntry{CommandId::Stations, Stations},
};

}  // namespace

int RunCommand(Desk& desk, const Options& options) {
  const auto* const entry = std::find_if(kEntries.begin(), kEntries.end(),
                                         [&options](const CommandEntry& each) { return each.id == options.command; });
  if (entry == kEntries.end()) throw UsageError("no command is given");
  return entry->run(desk, options);
}

}  // namespace corvane::console
