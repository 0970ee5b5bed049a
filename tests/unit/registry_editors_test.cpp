#include <gtest/gtest.h>

#include <sstream>

#include "registry_world.h"

namespace corvane {
namespace {

using test::RegistryWorld;
using test::Rows;
using Names = std::vector<std::string>;

/// One of the three editors with its list and the name field that shows the record.
struct Side {
  RecordEditor& editor;
  List& list;
  TextField& name;
};

enum Which { kUnits, kRelays, kClients };

struct Editors : RegistryWorld {
  Side sides[3] = {{units, form.Lst_Units, form.Txt_UnitName},
                   {relays, form.Lst_Relays, form.Txt_RelayName},
                   {clients, form.Lst_Clients, form.Txt_ClientName}};
};

struct RegistryEditors : testing::Test, Editors {
  RegistryEditors() { Fill({"A", "B"}); }
};

std::string TextOf(const Unit& unit) {
  std::ostringstream text;
  text << unit.Name << " " << unit.ID << " " << unit.Active << " " << unit.RelayID << " " << unit.ftpFile << " "
       << unit.ClientID << " " << unit.GetFrom << " " << unit.MoistureCorrection << " " << unit.SalinityCorrection;
  return text.str();
}

struct CommandCase {
  const char* name;
  Which which;
  Names before;
  std::int64_t selected;  ///< from 1
  std::int16_t command;
  Names after;
  std::int64_t selected_after;
  const char* shown;
};

const CommandCase kCommands[] = {
    {"up selects the neighbour", kUnits, {"A", "B", "C"}, 2, kMoveUp, {"B", "A", "C"}, 2, "A"},
    {"down selects the neighbour", kRelays, {"A", "B", "C"}, 2, kMoveDown, {"A", "C", "B"}, 2, "C"},
    {"the first stays first", kClients, {"A", "B"}, 1, kMoveUp, {"A", "B"}, 1, "A"},
    {"the last stays last", kUnits, {"A", "B"}, 2, kMoveDown, {"A", "B"}, 2, "B"},
    {"delete the first", kUnits, {"A", "B", "C"}, 1, kDelete, {"B", "C"}, 1, "B"},
    {"delete one between", kClients, {"A", "B", "C"}, 2, kDelete, {"A", "C"}, 2, "C"},
    {"delete the last", kUnits, {"A", "B", "C"}, 3, kDelete, {"A", "B"}, 2, "B"},
    {"delete the only unit", kUnits, {"A"}, 1, kDelete, {}, 0, ""},
    {"the only relay stays", kRelays, {"Direct"}, 1, kDelete, {"Direct"}, 1, "Direct"},
    {"direct may go", kRelays, {"Direct", "B"}, 1, kDelete, {"B"}, 1, "B"},
    {"the first unit", kUnits, {}, 0, kNew, {"Site 1"}, 1, "Site 1"},
};

TEST_F(RegistryEditors, CommandsKeepListArrayAndEditorTogether) {
  for (const CommandCase& row : kCommands) {
    SCOPED_TRACE(row.name);
    Editors world;
    world.Fill(row.before);
    const Side& side = world.sides[row.which];
    side.editor.Select(row.selected);
    side.editor.RunCommand(row.command);
    ASSERT_EQ(Rows(side.list), row.after);
    EXPECT_EQ(side.editor.Selected(), row.selected_after);
    EXPECT_EQ(side.name.text(), row.shown);
    EXPECT_FALSE(world.form.Suppress.set());
    Names renamed = row.after;
    if (!renamed.empty()) renamed[static_cast<std::size_t>(row.selected_after - 1)] = "Typed";
    side.name.SetText("Typed");
    EXPECT_EQ(Rows(side.list), renamed) << "the editor must show the selected record";
    side.editor.FillList();
    EXPECT_EQ(Rows(side.list), renamed);
  }
}

TEST_F(RegistryEditors, EveryCommandButNewNeedsASelection) {
  for (const Side& side : sides) {
    side.editor.Select(0);
    for (const std::int16_t command : {kDelete, kMoveUp, kMoveDown}) side.editor.RunCommand(command);
    EXPECT_EQ(Rows(side.list), Names({"A", "B"}));
  }
  Names expected(6, "Choose a unit");
  expected.resize(9, "Choose a Client");
  EXPECT_EQ(dialogs.Texts(), expected);
}

TEST_F(RegistryEditors, NewRecordsHaveTheirDefaults) {
  registry.Units[2].ID = registry.Clients[2].ID = 3;
  for (const Side& side : sides) side.editor.RunCommand(kNew);
  EXPECT_EQ(TextOf(registry.Units[3]), "Site 3 3 1 0 0 0 0 0 0") << "numbers of units may be double";
  EXPECT_TRUE(form.Lst_Units.checked(2));
  EXPECT_EQ(registry.Clients[3].Folder, "F2");
  EXPECT_EQ(form.Lbl_ClientID.text(), "2");
  EXPECT_EQ(Rows(form.Cmb_Client), Names({"None=0", "A=1", "B=3", "Client 2=2"}));
  EXPECT_EQ(Rows(form.Cmb_Relay), Names({"A=0", "B=1", "Relay 3=3"}));
}

TEST_F(RegistryEditors, SelectingStoresTheEditorAndShowsTheOther) {
  int refreshed = 0;
  units.selection_changed = [&] { ++refreshed; };
  registry.Units[2] = {"B", 20, 0, 1, 1, 2, kFromFtp, 0.1F, -2.5F};
  form.Txt_UnitID.SetText("17 north");
  form.Cmb_Relay.SelectByItemData(1);
  form.Cmb_Client.SelectByItemData(2);
  form.Cmb_GetFrom.SelectByItemData(kFromHandHeld);
  form.Cmb_SendTo.SelectByItemData(1);
  form.Txt_Correction[0].SetText("1.25");
  form.Txt_Correction[1].SetText("none");
  form.Lst_Units.SetCurrent(1);
  EXPECT_EQ(TextOf(registry.Units[1]), "A 17 1 1 1 2 2 1.25 0");
  EXPECT_EQ(form.Txt_UnitName.text(), "B");
  EXPECT_EQ(form.Txt_Correction[0].text(), "0.1");
  EXPECT_FALSE(form.Chk_UnitActive.ticked());
  EXPECT_EQ(refreshed, 1);
  units.StoreUnitRecord();
  EXPECT_EQ(TextOf(registry.Units[2]), "B 20 1 1 1 2 3 0.1 -2.5") << "active is what the list marks";
}

TEST_F(RegistryEditors, CheckMarkAndActiveBoxFollowEachOtherUnlessSuppressed) {
  const auto active = [this] { return registry.Units[1].Active * 10 + registry.Units[2].Active; };
  form.Lst_Units.SetChecked(0, false);
  EXPECT_EQ(active(), 1);
  EXPECT_FALSE(form.Chk_UnitActive.ticked());
  form.Chk_UnitActive.SetTicked(true);
  EXPECT_EQ(active(), 11);
  EXPECT_TRUE(form.Lst_Units.checked(0));
  form.Lst_Units.SetChecked(1, false);
  EXPECT_EQ(active(), 10);
  EXPECT_TRUE(form.Chk_UnitActive.ticked()) << "the box belongs to the unit that is shown";
  const SuppressEvents::Guard guard(form.Suppress);
  form.Lst_Units.SetChecked(1, true);
  form.Chk_UnitActive.SetTicked(false);
  form.Txt_UnitName.SetText("X");
  EXPECT_EQ(active(), 10);
  EXPECT_EQ(Rows(form.Lst_Units), Names({"A", "B"}));
}

TEST_F(RegistryEditors, NothingFollowsTheListDuringAnOperation) {
  ASSERT_TRUE(slot.Run([&] {
    form.Lst_Clients.SetCurrent(1);
    clients.RunCommand(kNew);
  }));
  EXPECT_EQ(form.Txt_ClientName.text(), "A");
  EXPECT_EQ(registry.Clients.count(), 2);
}

TEST_F(RegistryEditors, SelectorsFollowRelaysAndClients) {
  form.Cmb_Relay.SelectByItemData(1);
  form.Cmb_Client.SelectByItemData(1);
  relays.Select(2);
  form.Txt_RelayName.SetText("Mast");
  form.Txt_ClientName.SetText("Estate");
  EXPECT_EQ(form.Cmb_Relay.shown_text(), "Mast");
  EXPECT_EQ(form.Cmb_Client.shown_text(), "Estate");
  form.Opt_Password.SetOptionIndex(2);
  relays.RunCommand(kMoveUp);
  EXPECT_EQ(Rows(form.Cmb_Relay), Names({"Mast=1", "A=0"}));
  EXPECT_EQ(form.Cmb_Relay.shown_text(), "Mast");
  EXPECT_EQ(registry.Relays[1].PasswordStyle, 2);
  relays.Select(1);
  relays.RunCommand(kDelete);
  EXPECT_EQ(form.Cmb_Relay.current(), -1);
  form.Txt_RelayID.SetText("9");
  relays.StoreRelayRecord();
  EXPECT_EQ(Rows(form.Cmb_Relay), Names({"A=9"}));
}

}  // namespace
}  // namespace corvane
