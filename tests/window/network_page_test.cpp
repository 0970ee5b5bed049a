// The page "Network": what it shows of the history, and what its commands come to.
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTreeView>

#include <gtest/gtest.h>

#include "sqlite/sqlite_history_store.h"
#include "window/network/station_order.h"
#include "window/network/station_table.h"
#include "window_world.h"

namespace corvane::test {
namespace {

using window::Arrange;
using window::Grouping;
using window::StationChoice;
using window::StationColumn;

UnitStatus Station(std::int32_t position, const char* name, UnitState state, const char* client, const char* relay) {
  UnitStatus unit;
  unit.key = unit.position = position;
  unit.id = position * 11;
  unit.name = name;
  unit.state = state;
  unit.client = client;
  unit.relay = relay;
  return unit;
}

TEST(Stations, AreSortedChosenAndPutTogether) {
  using enum UnitState;
  std::vector<UnitStatus> units = {Station(1, "Hill", Fine, "Farm", "Ridge"), Station(2, "apple", Silent, "Farm", ""),
                                   Station(3, "Bee", Off, "Orchard", "Ridge"), Station(4, "Café", Late, "", "")};
  units[0].battery = 11.9;
  units[3].battery = 12.5;
  units[1].battery = units[2].battery = 13.1;
  units[1].battery_days = 20, units[2].battery_days = 9;
  units[0].missing = 7;
  struct Row {
    StationChoice choice;
    const char* shown;  ///< groups and the positions in them
  };
  const Row rows[] = {
      {{}, ":2413"},
      {{StationColumn::State, true, "", {}, Grouping::None}, ":3142"},
      {{StationColumn::Name, false, "", {}, Grouping::None}, ":2341"},
      {{StationColumn::Battery, false, "", {}, Grouping::None}, ":3214"},
      {{StationColumn::Gaps, true, "", {}, Grouping::None}, ":1243"},
      {{StationColumn::State, false, "ridge", {}, Grouping::None}, ":13"},
      {{StationColumn::State, false, "CAFÉ", {}, Grouping::None}, ":4"},
      {{StationColumn::State, false, "22", {}, Grouping::None}, ":2"},
      {{StationColumn::State, false, "", {Late, Off}, Grouping::None}, ":43"},
      {{StationColumn::State, false, "", {}, Grouping::Client}, "Farm:21 No client:4 Orchard:3"},
      {{StationColumn::State, false, "e", {}, Grouping::Relay}, "No relay:2 Relay Ridge:13"},
      {{StationColumn::State, false, "nowhere", {}, Grouping::None}, ":"},
  };
  for (const Row& row : rows) {
    QStringList shown;
    for (const window::StationGroup& group : Arrange(units, row.choice)) {
      shown << group.name + ":";
      for (const std::size_t place : group.units) shown.back() += QString::number(units[place].position);
    }
    EXPECT_EQ(shown.join(' ').toStdString(), row.shown);
  }
}

/// A window of three units of which the history is kept; the second is behind a relay.
class NetworkPage : public testing::Test {
 protected:
  /// `general` are lines behind the settings' first one.
  explicit NetworkPage(const std::string& general = "")
      : world_(SmallNetwork(3).insert(std::string("[General]\n").size(), general) +
                   "RelayID2=5\nGetFrom3=2\n[Relays]\nNumRelays=2\nName2=Ridge\nID2=5\n",
               &store_) {
    WriteTables(world_.home);
    if (!general.empty()) world_.app().life().SetCaptions(&world_.window().captions());
    world_.Open();
    world_.ShowPage("tabNetwork");
    world_.Settle();
    EXPECT_TRUE(ShowsSoon([this] { return Table().model()->rowCount() == 3; }));
  }

  [[nodiscard]] window::StationTable& Table() {
    return dynamic_cast<window::StationTable&>(world_.Widget<QTreeView>("stationTable"));
  }
  [[nodiscard]] QString Cell(int row, StationColumn column, const QModelIndex& group = {}) {
    return Table().model()->index(row, static_cast<int>(column), group).data().toString();
  }
  [[nodiscard]] std::string Line(const char* name) { return world_.Widget<QLabel>(name).text().toStdString(); }
  void Select(std::initializer_list<int> rows) {
    Table().clearSelection();
    for (const int row : rows) {
      Table().selectionModel()->setCurrentIndex(Table().model()->index(row, 0),
                                                QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
  }
  static bool ShowsSoon(const std::function<bool()>& shown) { return QTest::qWaitFor(shown, 2000); }

  SqliteHistoryStore store_;
  WindowWorld world_;
};

TEST_F(NetworkPage, FillsWhileARoundRunsAndKeepsWhatWasChosen) {
  EXPECT_EQ(Line("networkHeadline"),
            "0 of 3 units are fine, Site 1 is new, Site 2 is new, Site 3 is new; no round is planned");
  EXPECT_NE(Line("networkAdvice").find("No round has run yet"), std::string::npos);
  Select({1});
  bool looked = false;
  world_.loop.After(500, [&] {
    looked = true;
    EXPECT_EQ(Cell(0, StationColumn::State), "asked now");
    EXPECT_FALSE(world_.Button("collectButton").isEnabled()) << "one operation at a time";
    EXPECT_TRUE(world_.Widget<QWidget>("stationFilter").isEnabled()) << "what only looks is not held up";
    EXPECT_EQ(Line("networkRound"), "A round runs; Site 1 is asked now.");
    world_.app().round_follower().on_asking(0);
    EXPECT_EQ(Line("networkRound"), "A round runs; no unit is asked now.") << "while files are converted and sent";
  });
  world_.Choose("mnu_Download", 1);
  EXPECT_TRUE(looked);
  EXPECT_TRUE(ShowsSoon([this] { return Cell(2, StationColumn::LastContact).startsWith("answered, 2 readings"); }));
  EXPECT_EQ(Cell(0, StationColumn::State), "new") << "the worst first";
  EXPECT_TRUE(ShowsSoon([this] { return Line("networkRound").find("2 of 2 units answered") != std::string::npos; }));
  EXPECT_EQ(Table().CurrentUnit()->name, "Site 2");
  EXPECT_EQ(Table().SelectedKeys(), std::vector<std::int64_t>{2});
  EXPECT_TRUE(Table().model()->index(2, 4).data(Qt::ToolTipRole).toString().startsWith("<p>answered, 2 readings"));
  world_.Widget<QComboBox>("stationGroups").setCurrentIndex(2);
  EXPECT_EQ(Table().model()->rowCount(), 2);
  EXPECT_EQ(Cell(0, StationColumn::Name, Table().model()->index(1, 0)), "Site 2");
  EXPECT_EQ(Table().CurrentUnit()->name, "Site 2") << "whatever is put together";
  Select({0});
  EXPECT_EQ(Table().SelectedKeys(), (std::vector<std::int64_t>{1, 3})) << "a group stands for its units";
}

TEST_F(NetworkPage, CommandsReachTheSelectedUnitsWhereverTheyAreByNow) {
  Select({1, 2});
  // The list is edited while the table still shows it as it was.
  world_.form().Lst_Units.SetCurrent(1);
  world_.Choose("mnu_Units", 2);
  ASSERT_EQ(world_.app().registry().Units[1].Name, "Site 2");
  world_.port.lines.clear();
  QTest::keyClick(&Table(), Qt::Key_F5);
  world_.Settle();
  EXPECT_EQ(world_.port.lines.size(), 1U) << "the third is read by hand";
  EXPECT_TRUE(world_.port.lines.at(0).starts_with("00005:00002:"));
  Select({1});
  const std::int64_t key = Table().SelectedKeys().at(0);
  const std::int64_t unit = world_.app().history().PositionsOf({key}).at(0);
  world_.Click("deactivateButton");
  EXPECT_EQ(world_.app().registry().Units[unit].Active, 0);
  EXPECT_FALSE(world_.form().Lst_Units.checked(unit - 1));
  EXPECT_TRUE(ShowsSoon([&] { return Table().stations().IndexOf(key).data().toString() == "off"; }));
}

class GermanNetworkPage : public NetworkPage {
 protected:
  GermanNetworkPage() : NetworkPage("Language=" GERMAN_FILE "\n") {}
};

TEST_F(GermanNetworkPage, SpeaksGermanAllOver) {
  EXPECT_EQ(
      Line("networkHeadline"),
      "0 von 3 Stationen sind in Ordnung, Site 1 ist neu, Site 2 ist neu, Site 3 ist neu; keine Runde ist geplant");
  EXPECT_TRUE(Line("networkAdvice").starts_with("Noch lief keine Runde"));
  EXPECT_EQ(world_.Widget<QComboBox>("stationLetters").itemText(2), "schweigt");
  Select({0});
  EXPECT_TRUE(Line("stationWhy").starts_with("Site 1: Noch kein Messwert; angelegt am "));
  world_.Choose("mnu_Download", 1);
  EXPECT_TRUE(
      ShowsSoon([this] { return Cell(2, StationColumn::LastContact).startsWith("Antwort, 2 Messwerte, vor "); }));
  EXPECT_TRUE(
      ShowsSoon([this] { return Line("networkRound").find("2 von 2 Stationen mit Antwort") != std::string::npos; }));
  EXPECT_EQ(Cell(0, StationColumn::State), "neu");
  Select({2});
  world_.Click("healthButton");
  auto& health = world_.Widget<QPlainTextEdit>("healthText");
  EXPECT_TRUE(ShowsSoon([&] { return health.toPlainText().contains("    Antworten: Zuletzt 1-mal gefragt"); }))
      << health.toPlainText().toStdString();
  world_.Click("copyHealth");
  EXPECT_TRUE(QGuiApplication::clipboard()->text().startsWith(Cell(2, StationColumn::Name) + " ("));
  EXPECT_TRUE(QGuiApplication::clipboard()->text().endsWith(health.toPlainText()));
  world_.Widget<QComboBox>("stationGroups").setCurrentIndex(2);
  EXPECT_TRUE(Cell(0, StationColumn::State).startsWith("Kein Relais: 2 Stationen, "));
}

TEST(NetworkPageWithoutUnits, SaysWhatToDo) {
  SqliteHistoryStore store;
  WindowWorld world("[Units]\nNumUnits=0\n", &store);
  world.Open();
  while (world.app().registry().Units.count() > 0) {
    world.dialogs.answers = {1};
    world.Choose("mnu_Units", 1);
  }
  world.ShowPage("tabNetwork");
  world.Settle();
  auto& advice = world.Widget<QLabel>("networkAdvice");
  EXPECT_TRUE(QTest::qWaitFor([&] { return advice.text().startsWith("Press Set up"); }, 2000));
}

}  // namespace
}  // namespace corvane::test
