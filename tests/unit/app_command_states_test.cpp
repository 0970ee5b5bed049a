#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "form/form.h"
#include "state/command_states.h"

namespace corvane {
namespace {

/// Which of New, Delete, Move up and Move down are enabled, as "1" and "0"; the menu must agree.
template <class Buttons>
std::string Enabled(const Buttons& buttons, const MenuGroup& menu) {
  std::string enabled;
  for (int index = 0; index < 4; ++index) {
    enabled += buttons[index].enabled() ? '1' : '0';
    EXPECT_EQ(menu.entries()[static_cast<std::size_t>(index)].enabled, buttons[index].enabled()) << menu.name();
  }
  return enabled;
}

TEST(CommandStates, ListCommandsFollowTheSelectionAndTheRunningOperation) {
  Form form;
  CommandStates states(form);
  for (MenuGroup* menu : {&form.mnu_Units, &form.mnu_Relays, &form.mnu_Clients}) menu->SetEntries({{}, {}, {}, {}});
  const std::tuple<bool, std::size_t, std::int64_t, std::string> rows[] = {
      {true, 0, -1, "1000"}, {true, 2, -1, "1000"}, {true, 1, 0, "1100"},  {true, 3, 0, "1101"},
      {true, 3, 1, "1111"},  {true, 3, 2, "1110"},  {false, 3, 1, "0000"},
  };
  for (const auto& [idle, count, current, enabled] : rows) {
    for (List* list : {&form.Lst_Units, &form.Lst_Relays, &form.Lst_Clients}) {
      list->SetRows(std::vector<std::string>(count, "A"));
      list->SetCurrent(current);
    }
    states.SetIdle(idle);
    states.UpdateCommandStates();
    EXPECT_EQ(Enabled(form.Cmd_Units, form.mnu_Units), enabled);
    EXPECT_EQ(Enabled(form.Cmd_Relays, form.mnu_Relays), enabled);
    EXPECT_EQ(Enabled(form.Cmd_Clients, form.mnu_Clients), enabled);
  }
}

TEST(CommandStates, OneOperationDisablesEveryOtherButNotCancel) {
  Form form;
  CommandStates states(form);
  for (const bool idle : {false, true}) {
    states.SetIdle(idle);
    for (const char* name : {"Cmd_Close", "Cmd_Process_7", "Cmd_ProcessAll_7", "Cmd_DownloadAll_0", "Cmd_ConvertAll",
                             "Cmd_DeleteFile", "Cmd_GetFile_3", "Cmd_TestBaseUnit_0", "Lst_Units", "mnu_Download"}) {
      ASSERT_NE(form.Find(name), nullptr) << name;
      EXPECT_EQ(form.Find(name)->enabled(), idle) << name;
    }
    EXPECT_TRUE(form.Cmd_Cancel.enabled());
    EXPECT_EQ(states.Idle(), idle);
  }
}

}  // namespace
}  // namespace corvane
