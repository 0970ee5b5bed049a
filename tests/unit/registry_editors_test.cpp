#include <gtest/gtest.h>

#include "registry_world.h"

namespace corvane {
namespace {

using test::RecordingView;
using test::RegistryWorld;
using test::Rows;
using Names = std::vector<std::string>;

enum class Which { Units, Relays, Clients };

/// One of the three editors with its list and the name field that shows the record.
struct Side {
  RecordEditor& editor;
  List& list;
  TextField& name;
};

Side SideOf(RegistryWorld& world, Which which) {
  Form& form = world.form;
  if (which == Which::Units) return {world.units, form.Lst_Units, form.Txt_UnitName};
  if (which == Which::Relays) return {world.relays, form.Lst_Relays, form.Txt_RelayName};
  return {world.clients, form.Lst_Clients, form.Txt_ClientName};
}

struct CommandCase {
  const char* name;
  Which which;
  Names before;
  std::int64_t selected;  ///< from 1
  std::int16_t command;
  Names after;
  std::int64_t selected_after;
  std::string shown;
};

class RegistryCommand : public testing::TestWithParam<CommandCase> {};

TEST_P(RegistryCommand, KeepsListArrayAndEditorTogether) {
  const CommandCase& row = GetParam();
  RegistryWorld world;
  world.Fill(row.before);
  const Side side = SideOf(world, row.which);
  side.editor.Select(row.selected);

  side.editor.RunCommand(row.command);

  EXPECT_EQ(Rows(side.list), row.after);
  EXPECT_EQ(side.editor.Selected(), row.selected_after);
  EXPECT_EQ(side.name.text(), row.shown);
  EXPECT_FALSE(world.form.Suppress.set());
  side.name.SetText("Typed");
  Names renamed = row.after;
  if (row.selected_after > 0) renamed[static_cast<std::size_t>(row.selected_after - 1)] = "Typed";
  EXPECT_EQ(Rows(side.list), renamed) << "the editor must show the selected record";
}

INSTANTIATE_TEST_SUITE_P(
    Rows, RegistryCommand,
    testing::Values(
        CommandCase{"UpSelectsNeighbour", Which::Units, {"A", "B", "C"}, 2, kMoveUp, {"B", "A", "C"}, 2, "A"},
        CommandCase{"DownSelectsNeighbour", Which::Relays, {"A", "B", "C"}, 2, kMoveDown, {"A", "C", "B"}, 2, "C"},
        CommandCase{"FirstStaysFirst", Which::Clients, {"A", "B"}, 1, kMoveUp, {"A", "B"}, 1, "A"},
        CommandCase{"LastStaysLast", Which::Units, {"A", "B"}, 2, kMoveDown, {"A", "B"}, 2, "B"},
        CommandCase{"DeleteFirst", Which::Units, {"A", "B", "C"}, 1, kDelete, {"B", "C"}, 1, "B"},
        CommandCase{"DeleteMiddle", Which::Clients, {"A", "B", "C"}, 2, kDelete, {"A", "C"}, 2, "C"},
        CommandCase{"DeleteLast", Which::Units, {"A", "B", "C"}, 3, kDelete, {"A", "B"}, 2, "B"},
        CommandCase{"DeleteOnlyUnit", Which::Units, {"A"}, 1, kDelete, {}, 0, ""},
        CommandCase{"DeleteOnlyClient", Which::Clients, {"A"}, 1, kDelete, {}, 0, ""},
        CommandCase{"OnlyRelayStays", Which::Relays, {"Direct"}, 1, kDelete, {"Direct"}, 1, "Direct"},
        CommandCase{"DirectMayGo", Which::Relays, {"Direct", "B"}, 1, kDelete, {"B"}, 1, "B"},
        CommandCase{"NewUnit", Which::Units, {"A", "B", "C"}, 1, kNew, {"A", "B", "C", "Site 4"}, 4, "Site 4"},
        CommandCase{"FirstUnit", Which::Units, {}, 0, kNew, {"Site 1"}, 1, "Site 1"},
        CommandCase{"NewRelay", Which::Relays, {"A", "B"}, 2, kNew, {"A", "B", "Relay 3"}, 3, "Relay 3"},
        CommandCase{"NewClient", Which::Clients, {"A"}, 1, kNew, {"A", "Client 2"}, 2, "Client 2"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RegistryEditors, EveryCommandButNewNeedsASelection) {
  RegistryWorld world;
  world.Fill({"A", "B"});
  Names expected;
  for (const auto& [which, text] : {std::pair(Which::Units, "Choose a unit"), std::pair(Which::Relays, "Choose a unit"),
                                    std::pair(Which::Clients, "Choose a Client")}) {
    const Side side = SideOf(world, which);
    side.editor.Select(0);
    for (const std::int16_t command : {kDelete, kMoveUp, kMoveDown}) {
      side.editor.RunCommand(command);
      expected.emplace_back(text);
    }
    EXPECT_EQ(Rows(side.list), Names({"A", "B"}));
  }
  EXPECT_EQ(world.dialogs.Texts(), expected);
}

TEST(RegistryEditors, NewRecordsHaveTheirDefaults) {
  RegistryWorld world;
  world.Fill({"A", "B", "C"});
  world.registry.Units[2].ID = 4;
  world.registry.Clients[3].ID = 4;

  world.units.RunCommand(kNew);
  world.clients.RunCommand(kNew);
  world.relays.RunCommand(kNew);

  EXPECT_EQ(world.registry.Units[4].ID, 4) << "numbers of units may be double";
  EXPECT_EQ(world.registry.Units[4].Active, 1);
  EXPECT_TRUE(world.form.Lst_Units.checked(3));
  EXPECT_EQ(world.form.Txt_UnitID.text(), "4");
  EXPECT_EQ(world.registry.Relays[4].ID, 4);
  EXPECT_EQ(world.registry.Clients[4].Name, "Client 3");
  EXPECT_EQ(world.registry.Clients[4].Folder, "F3");
  EXPECT_EQ(world.form.Lbl_ClientID.text(), "3");
  EXPECT_EQ(Rows(world.form.Cmb_Client), Names({"None=0", "A=1", "B=2", "C=4", "Client 3=3"}));
  EXPECT_EQ(Rows(world.form.Cmb_Relay), Names({"A=0", "B=1", "C=2", "Relay 4=4"}));
}

TEST(RegistryEditors, AListHoldsWhatSixteenBitsCount) {
  RegistryWorld world;
  world.registry.Units.Resize(RecordEditor::kMostRecords);
  world.units.FillList();
  world.units.RunCommand(kNew);
  EXPECT_EQ(world.registry.Units.count(), RecordEditor::kMostRecords);
  EXPECT_EQ(world.dialogs.boxes.size(), 1U);
}

TEST(RegistryEditors, SelectingStoresTheEditorAndShowsTheOther) {
  RegistryWorld world;
  world.Fill({"A", "B"});
  int refreshed = 0;
  world.units.selection_changed = [&] { ++refreshed; };
  world.registry.Units[2] = {"B", 20, 0, 1, 1, 2, kFromFtp, 0.1F, -2.5F};
  world.form.Txt_UnitID.SetText("17");
  world.form.Cmb_Relay.SelectByItemData(1);
  world.form.Cmb_Client.SelectByItemData(2);
  world.form.Cmb_GetFrom.SelectByItemData(kFromHandHeld);
  world.form.Cmb_SendTo.SelectByItemData(1);
  world.form.Txt_Correction[0].SetText("1.25");
  world.form.Txt_Correction[1].SetText("none");

  world.form.Lst_Units.SetCurrent(1);

  const Unit& stored = world.registry.Units[1];
  EXPECT_EQ(stored.ID, 17);
  EXPECT_EQ(stored.RelayID, 1);
  EXPECT_EQ(stored.ClientID, 2);
  EXPECT_EQ(stored.GetFrom, kFromHandHeld);
  EXPECT_EQ(stored.ftpFile, 1);
  EXPECT_EQ(stored.MoistureCorrection, 1.25F);
  EXPECT_EQ(stored.SalinityCorrection, 0);
  EXPECT_EQ(world.form.Txt_UnitName.text(), "B");
  EXPECT_EQ(world.form.Cmb_GetFrom.SelectedItemData(), kFromFtp);
  EXPECT_EQ(world.form.Txt_Correction[0].text(), "0.1");
  EXPECT_FALSE(world.form.Chk_UnitActive.ticked());
  EXPECT_EQ(refreshed, 1);
  world.units.StoreUnitRecord();
  EXPECT_EQ(world.registry.Units[2].MoistureCorrection, 0.1F);
  EXPECT_EQ(world.registry.Units[2].Active, 1) << "the list's mark decides, not the editor's box";
}

TEST(RegistryEditors, NothingFollowsTheListDuringAnOperationOrWhileSuppressed) {
  RegistryWorld world;
  world.Fill({"A", "B"});
  {
    const SuppressEvents::Guard guard(world.form.Suppress);
    world.form.Lst_Units.SetCurrent(1);
    world.form.Lst_Units.SetChecked(1, false);
    world.form.Chk_UnitActive.SetTicked(false);
    world.form.Txt_UnitName.SetText("X");
  }
  EXPECT_EQ(world.registry.Units[2].Active, 1);
  EXPECT_EQ(Rows(world.form.Lst_Units), Names({"A", "B"}));
  ASSERT_TRUE(world.slot.Run([&] {
    world.form.Lst_Clients.SetCurrent(1);
    world.clients.RunCommand(kNew);
  }));
  EXPECT_EQ(world.form.Txt_ClientName.text(), "A");
  EXPECT_EQ(world.registry.Clients.count(), 2);
}

TEST(RegistryEditors, NumbersAreReadFromTheBeginningOfTheirText) {
  const std::pair<const char*, std::int32_t> cases[] = {
      {"12 north", 12}, {"abc", 0}, {"", 0}, {"7.9", 7}, {"-3.5", -3}, {"99999999999", 2147483647}, {"1e3", 1000}};
  RegistryWorld world;
  world.Fill({"A"});
  for (const auto& [text, number] : cases) {
    world.form.Txt_UnitID.SetText(text);
    world.form.Txt_RelayID.SetText(text);
    world.units.StoreUnitRecord();
    world.relays.StoreRelayRecord();
    EXPECT_EQ(world.registry.Units[1].ID, number) << text;
    EXPECT_EQ(world.registry.Relays[1].ID, number) << text;
  }
}

TEST(RegistryEditors, CheckMarkAndActiveBoxFollowEachOther) {
  RegistryWorld world;
  world.Fill({"A", "B"});
  world.form.Lst_Units.SetChecked(0, false);
  EXPECT_EQ(world.registry.Units[1].Active, 0);
  EXPECT_FALSE(world.form.Chk_UnitActive.ticked());
  world.form.Chk_UnitActive.SetTicked(true);
  EXPECT_EQ(world.registry.Units[1].Active, 1);
  EXPECT_TRUE(world.form.Lst_Units.checked(0));
  world.form.Lst_Units.SetChecked(1, false);
  EXPECT_EQ(world.registry.Units[2].Active, 0);
  EXPECT_TRUE(world.form.Chk_UnitActive.ticked()) << "the box belongs to the unit that is shown";
}

TEST(RegistryEditors, TypingAUnitNameTouchesOneRowOfTenThousand) {
  RegistryWorld world;
  world.Fill(Names(10000, "A"));
  RecordingView view;
  world.form.SetView(&view);
  world.form.Txt_UnitID.SetText("77");
  view.changes.clear();
  world.form.Txt_UnitName.SetText("North");
  EXPECT_EQ(view.changes.size(), 2U);
  EXPECT_EQ(world.form.Lst_Units.text(0), "North");
  EXPECT_EQ(world.registry.Units[1].Name, "North");
  EXPECT_EQ(world.registry.Units[1].ID, 77);
  world.form.SetView(nullptr);
}

TEST(RegistryEditors, SelectorsFollowRelaysAndClients) {
  RegistryWorld world;
  world.Fill({"Direct", "Tower", "Hill"});
  world.form.Cmb_Relay.SelectByItemData(1);
  world.form.Cmb_Client.SelectByItemData(1);
  world.relays.Select(2);

  world.form.Txt_RelayName.SetText("Mast");
  world.form.Txt_ClientName.SetText("Estate");
  EXPECT_EQ(world.form.Cmb_Relay.shown_text(), "Mast");
  EXPECT_EQ(world.form.Cmb_Client.shown_text(), "Estate");

  world.form.Opt_Password.SetOptionIndex(2);
  world.relays.RunCommand(kMoveUp);
  EXPECT_EQ(Rows(world.form.Cmb_Relay), Names({"Mast=1", "Direct=0", "Hill=2"}));
  EXPECT_EQ(world.form.Cmb_Relay.shown_text(), "Mast");
  EXPECT_EQ(world.registry.Relays[1].PasswordStyle, 2);

  world.relays.Select(1);
  world.relays.RunCommand(kDelete);
  EXPECT_EQ(world.form.Cmb_Relay.current(), -1);
  world.form.Txt_RelayID.SetText("9");
  world.relays.StoreRelayRecord();
  EXPECT_EQ(Rows(world.form.Cmb_Relay), Names({"Direct=9", "Hill=2"}));
}

}  // namespace
}  // namespace corvane
