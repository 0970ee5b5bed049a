#include <gtest/gtest.h>

#include <string>

#include "app/command_states.h"
#include "form/form.h"

namespace corvane {
namespace {

struct ListCase {
  const char* name;
  bool idle;
  std::int64_t rows;
  std::int64_t current;
  std::string enabled;  ///< New, Delete, Move up, Move down; "1" is enabled
};

class ListCommands : public testing::TestWithParam<ListCase> {};

template <class Buttons>
std::string StatesOf(Buttons& buttons) {
  std::string states;
  for (int index = 0; index < 4; ++index) states += buttons[index].enabled() ? '1' : '0';
  return states;
}

template <class Buttons>
void ExpectStates(const ListCase& row, List& list, Buttons& buttons, MenuGroup& menu, CommandStates& states) {
  menu.SetEntries({{"&New"}, {"&Delete"}, {"Move &Up"}, {"Move &down"}});
  list.SetRows(std::vector<std::string>(static_cast<std::size_t>(row.rows), "A"));
  list.SetCurrent(row.current);
  states.SetIdle(row.idle);
  states.UpdateCommandStates();
  EXPECT_EQ(StatesOf(buttons), row.enabled) << list.name();
  std::string entries;
  for (const MenuGroup::Entry& entry : menu.entries()) entries += entry.enabled ? '1' : '0';
  EXPECT_EQ(entries, row.enabled) << menu.name();
  EXPECT_EQ(menu.enabled(), row.idle);
}

TEST_P(ListCommands, FollowTheSelectionAndTheRunningOperation) {
  Form form;
  CommandStates states(form);
  ExpectStates(GetParam(), form.Lst_Units, form.Cmd_Units, form.mnu_Units, states);
  ExpectStates(GetParam(), form.Lst_Relays, form.Cmd_Relays, form.mnu_Relays, states);
  ExpectStates(GetParam(), form.Lst_Clients, form.Cmd_Clients, form.mnu_Clients, states);
}

INSTANTIATE_TEST_SUITE_P(Rows, ListCommands,
                         testing::Values(ListCase{"Empty", true, 0, -1, "1000"},
                                         ListCase{"NothingSelected", true, 2, -1, "1000"},
                                         ListCase{"OnlyOne", true, 1, 0, "1100"}, ListCase{"First", true, 3, 0, "1101"},
                                         ListCase{"Middle", true, 3, 1, "1111"}, ListCase{"Last", true, 3, 2, "1110"},
                                         ListCase{"Busy", false, 3, 1, "0000"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CommandStates, OneOperationDisablesEveryOtherButNotCancel) {
  Form form;
  CommandStates states(form);
  for (const bool idle : {false, true}) {
    states.SetIdle(idle);
    for (const char* name :
         {"Cmd_Close", "Cmd_Process_1", "Cmd_Process_7", "Cmd_ProcessAll_7", "Cmd_DownloadAll_0", "Cmd_Convert",
          "Cmd_ConvertAll", "Cmd_EditTrace", "Cmd_EditDataFile", "Cmd_DeleteFile", "Cmd_GetFile_3", "Cmd_GetFolder",
          "Cmd_TestBaseUnit_0", "Cmd_FindPort_1", "Lst_Units", "Lst_Relays", "mnu_Download", "mnu_SetDelays"}) {
      ASSERT_NE(form.Find(name), nullptr) << name;
      EXPECT_EQ(form.Find(name)->enabled(), idle) << name;
    }
    EXPECT_TRUE(form.Cmd_Cancel.enabled());
    EXPECT_EQ(states.Idle(), idle);
  }
}

}  // namespace
}  // namespace corvane
