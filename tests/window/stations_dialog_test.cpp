// The window for stations as a table: what it shows of a file before anything happens.
#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

#include "window/network/stations_dialog.h"
#include "window_world.h"

namespace corvane::test {
namespace {

class StationsDialog : public testing::Test {
 protected:
  StationsDialog() : world_(SmallNetwork(2) + "Name1=North\n") {
    world_.Open();
    world_.ShowPage("tabNetwork");
    world_.Click("stationsButton");
  }

  window::StationsDialog& Dialog() {
    return dynamic_cast<window::StationsDialog&>(world_.Widget<QDialog>("StationsDialog"));
  }
  QString State() { return world_.Widget<QLabel>("stationsState").text(); }
  QString Lines() { return world_.Widget<QPlainTextEdit>("stationsChanges").toPlainText(); }
  /// Reads a file of these rows and waits until it is told what they come to.
  void Read(const std::string& rows) {
    world_.home.Write("table.csv", rows);
    Dialog().ReadFrom(QString::fromStdString(world_.home.Name("table.csv")));
    WaitForState("table.csv: ");
  }
  void WaitForState(const QString& text) {
    const bool shown = QTest::qWaitFor(
        [&] {
          world_.Settle();
          return State().contains(text);
        },
        2000);
    EXPECT_TRUE(shown) << State().toStdString();
  }

  WindowWorld world_;
};

TEST_F(StationsDialog, ShowsWhatATableWouldChangeAndPutsItIn) {
  QAbstractButton& put_in = world_.Button("putInStations");
  EXPECT_TRUE(Dialog().isVisible());
  EXPECT_FALSE(put_in.isEnabled()) << "nothing was read";
  Read("Name,ID,Relay\n<b>New</b>,40,Towr\n");
  EXPECT_TRUE(State().endsWith(": 1 fault; nothing can be put in")) << State().toStdString();
  EXPECT_TRUE(Lines().startsWith("line 2, Relay: there is no relay \"Towr\"")) << Lines().toStdString();
  EXPECT_FALSE(put_in.isEnabled());
  Read("Name,ID,Remark\n<b>New</b>,40,x\nNorth,1,\n");
  EXPECT_EQ(Lines(),
            "adds unit \"<b>New</b>\" (40)\n(the column \"Remark\" is not used)\n(1 unit has no row and stays "
            "as it is)\n");
  EXPECT_EQ(world_.Rows("Lst_Units"), 2) << "nothing has happened yet";
  (void)world_.app().slot().Run([&] {
    EXPECT_FALSE(put_in.isEnabled()) << "an operation runs";
    world_.Settle();
  });
  world_.Widget<QCheckBox>("deleteStations").click();
  EXPECT_FALSE(put_in.isEnabled()) << "of the former answer";
  WaitForState(": 2 changes");
  EXPECT_TRUE(Lines().contains("deletes unit \"Site 2\" (2)")) << Lines().toStdString();
  world_.Click("putInStations");
  EXPECT_EQ(State(), "2 changes are put in.");
  EXPECT_EQ(world_.Rows("Lst_Units"), 2);
  EXPECT_EQ(world_.form().Lst_Units.text(1), "<b>New</b>");
  EXPECT_FALSE(put_in.isEnabled());
}

TEST_F(StationsDialog, SpeaksTheLanguageOfTheWindow) {
  world_.app().LoadCaptions(GERMAN_FILE, world_.window().captions());
  Read("Name;ID;Relais\nAu;40;Turm\n");
  EXPECT_TRUE(Lines().startsWith("Zeile 2, Relais: es gibt kein Relais \"Turm\"")) << Lines().toStdString();
  Read("Name;ID;Kunde\nNorth;1;Cora\n");
  EXPECT_EQ(Lines(),
            "neu: Kunde \"Cora\" (3), Ordner \"Cora\"\nändert Station \"North\" (1): Kunde \"None\" wird "
            "\"Cora\"\n(1 Station hat keine Zeile und bleibt unverändert)\n");
}

TEST_F(StationsDialog, AsksAnewWhenTheListsHaveChanged) {
  Read("Name,ID\nNorth,1\nNew,40\n");
  world_.app().units().RunCommand(kNew);
  world_.Click("putInStations");
  WaitForState("The lists have changed meanwhile. ");
  EXPECT_EQ(world_.Rows("Lst_Units"), 3);
  world_.Click("putInStations");
  EXPECT_EQ(world_.Rows("Lst_Units"), 4);
}

TEST_F(StationsDialog, SavesWhatItWouldReadAsNoChange) {
  Dialog().SaveTo(QString::fromStdString(world_.home.Name("saved.csv")));
  WaitForState("Saved: ");
  Read(world_.home.Read("saved.csv"));
  EXPECT_TRUE(State().endsWith(": no change")) << State().toStdString();
  Dialog().SaveTo("/nowhere/saved.csv");
  WaitForState("Not saved: ");
  Dialog().ReadFrom("/nowhere/saved.csv");
  WaitForState("cannot be read");
}

}  // namespace
}  // namespace corvane::test
