// The gap map and the rounds of the page "Network".
#include <optional>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyleOptionViewItem>
#include <QTabWidget>
#include <QTableView>
#include <QTest>

#include <gtest/gtest.h>

#include "sqlite/sqlite_history_store.h"
#include "window/network/gap_map.h"
#include "window/network/rounds_view.h"
#include "window/tray.h"
#include "window_world.h"

namespace corvane::test {
namespace {

constexpr std::int64_t kDays = 90;
const DateTime kFirst = DateTime::FromCivil(2026, 4, 1);

/// A map of so many units, of which every third lacks readings that can be asked for.
struct Network {
  explicit Network(std::int64_t count) {
    map.first = kFirst;
    for (std::int64_t key = 1; key <= count; ++key) {
      UnitRecord& unit = units.emplace_back();
      unit.key = key, unit.position = static_cast<std::int32_t>(count - key + 1);
      unit.name = "Site " + std::to_string(key);
      DayRow& row = map.rows.emplace_back();
      row.unit = key;
      row.cells.assign(kDays, {48, 48, 0, 0, false});
      if (key % 3 == 0) row.cells[kDays - 2] = {48, 40, 0, 8, true};
    }
  }
  DayMap map;
  std::vector<UnitRecord> units;
};

class Shown : public testing::Test {
 protected:
  template <class Kind>
  static Kind& Part(QWidget& view, const char* name) {
    return *view.findChild<Kind*>(name);
  }
};

TEST_F(Shown, TheGapMapSaysADaysNumbersAndOffersTheRepair) {
  window::GapMap view;
  auto& table = Part<QTableView>(view, "gapMapTable");
  auto& sentence = Part<QLabel>(view, "gapMapSentence");
  auto& repair = Part<QPushButton>(view, "gapMapRepair");
  std::vector<std::int64_t> repaired;
  view.repair = [&](std::int64_t key) { repaired.push_back(key); };
  view.resize(800, 400);
  view.show();
  EXPECT_TRUE(sentence.text().startsWith("No day of any unit is known"));
  Network network(6);
  view.Show(network.map, network.units);
  EXPECT_EQ(table.model()->headerData(0, Qt::Vertical).toString(), "Site 6") << "in the order of the list";
  table.setCurrentIndex(table.model()->index(0, kDays - 1));
  QTest::keyClick(&table, Qt::Key_Left);
  EXPECT_EQ(sentence.text(), "Site 6, 28 June: 40 of 48 readings, 8 missing, asked for by the next repair.");
  EXPECT_EQ(table.currentIndex().data(Qt::AccessibleTextRole).toString() + ".", sentence.text());
  EXPECT_TRUE(repair.isEnabled());
  repair.click();
  DateTime plotted;
  view.show_plot = [&](std::int64_t, DateTime day) { plotted = day; };
  Part<QPushButton>(view, "gapMapPlot").click();
  EXPECT_EQ(plotted, DateTime::FromCivil(2026, 6, 28));
  QTest::keyClick(&table, Qt::Key_Down);
  EXPECT_EQ(sentence.text(), "Site 5, 28 June: all 48 readings.");
  EXPECT_FALSE(repair.isEnabled()) << "nothing is missing";
  QImage picture(60, 60, QImage::Format_RGB32);
  picture.fill(Qt::green);
  QStyleOptionViewItem cell;
  cell.rect = {20, 20, 7, 20};
  cell.state = QStyle::State_HasFocus;
  QPainter painter(&picture);
  table.itemDelegate()->paint(&painter, cell, table.currentIndex());
  painter.fillRect(cell.rect, Qt::green);
  QImage untouched = picture.copy();
  untouched.fill(Qt::green);
  EXPECT_EQ(picture, untouched) << "the cursor leaves nothing behind in the cells beside it";
  QTest::keyClick(&table, Qt::Key_Up);
  view.SetIdle(false);
  EXPECT_FALSE(repair.isEnabled()) << "a round runs";
  EXPECT_EQ(repaired, std::vector<std::int64_t>{6});
  Network fewer(3);
  fewer.units[2].position = 0;
  view.Show(fewer.map, fewer.units);
  EXPECT_EQ(table.model()->rowCount(), 2) << "a unit that was deleted is left out";
  Part<QLineEdit>(view, "gapMapFilter").setText("nobody");
  EXPECT_EQ(sentence.text(), "No unit is left by the filter.");
}

TEST_F(Shown, TheGapMapKeepsItsPlaceAndPaintsOnlyWhatIsSeen) {
  window::GapMap view;
  auto& table = Part<QTableView>(view, "gapMapTable");
  view.resize(900, 600);
  view.show();
  Network network(10'000);
  view.Show(network.map, network.units);
  table.setCurrentIndex(table.model()->index(4'999, 3));
  table.scrollTo(table.currentIndex());
  const QString before = table.currentIndex().data(Qt::AccessibleTextRole).toString();
  QElapsedTimer timer;
  timer.start();
  view.grab();
  EXPECT_LT(timer.elapsed(), 500) << "a picture of 10,000 rows";
  network.units.erase(network.units.begin());
  network.map.rows.erase(network.map.rows.begin());
  view.Show(network.map, network.units);
  EXPECT_EQ(table.currentIndex().data(Qt::AccessibleTextRole).toString(), before);
  EXPECT_FALSE(table.visualRect(table.currentIndex()).isEmpty());
}

TEST_F(Shown, RoundsArePagedBackToAndStayWhileTheNextOneRuns) {
  window::RoundsView view;
  std::vector<std::int64_t> stored = {1, 2, 4};
  std::string word = "Round ";
  view.read_round = [&](std::int64_t key) {
    std::optional<RoundTexts> texts;
    for (const std::int64_t each : stored) {
      if (each > key) continue;
      texts = RoundTexts{{}, word + std::to_string(each), {{1, "North", RoundSign::Problem, "No answer"}}};
      texts->round.key = each;
      texts->lines.push_back({2, "Hill", RoundSign::Well, "Answered"});
    }
    view.Show(texts);
  };
  const auto head = [&view] { return Part<QLabel>(view, "roundsHead").text().toStdString(); };
  const auto click = [&view](const char* name) {
    Part<QPushButton>(view, name).click();
    return Part<QLabel>(view, "roundsHead").text().toStdString();
  };
  view.show();
  EXPECT_EQ(head(), "Round 4.");
  EXPECT_EQ(Part<QPlainTextEdit>(view, "roundsText").toPlainText(),
            "With a problem\n    North: No answer\n\nWell\n    Hill: Answered\n");
  EXPECT_EQ(click("roundsEarlier"), "Round 2.");
  stored.push_back(5);
  view.RoundEnded();
  EXPECT_EQ(head(), "Round 2.") << "who reads an earlier one goes on reading";
  word = "Runde ";
  view.SetPhrases({});
  EXPECT_EQ(head(), "Runde 2.") << "in another language";
  word = "Round ";
  EXPECT_EQ(click("roundsEarlier"), "Round 1.");
  EXPECT_FALSE(Part<QPushButton>(view, "roundsEarlier").isEnabled());
  EXPECT_EQ(click("roundsLater"), "Round 2.");
  EXPECT_EQ(click("roundsLater"), "Round 4.");
  stored.push_back(6);
  view.RoundEnded();
  EXPECT_EQ(head(), "Round 6.");
}

TEST_F(Shown, TheViewsReadWhatARoundBroughtAndItsEndIsAnnounced) {
  SqliteHistoryStore store;
  WindowWorld world(SmallNetwork(2), &store);
  WriteTables(world.home);
  world.Open();
  world.ShowPage("tabNetwork");
  world.Settle();
  auto& views = world.Widget<QTabWidget>("networkViews");
  auto& text = world.Widget<QPlainTextEdit>("roundsText");
  auto& table = world.Widget<QTableView>("gapMapTable");
  const auto shows = [](const auto& shown) { return QTest::qWaitFor(shown, 2000); };
  views.setCurrentIndex(2);
  EXPECT_TRUE(shows([&] { return world.Widget<QLabel>("roundsHead").text().startsWith("No round is known"); }));
  // What was so before the round is not announced.
  EXPECT_TRUE(shows([&] { return !world.Widget<QLabel>("networkHeadline").text().isEmpty(); }));
  world.Choose("mnu_Download", 1);
  EXPECT_TRUE(shows([&] { return text.toPlainText().contains("    Site 2: Answered, 2 readings\n"); }))
      << text.toPlainText().toStdString();
  EXPECT_TRUE(shows([&] { return world.Widget<QLabel>("announcer").text().contains("2 of 2 units answered"); }));
  views.setCurrentIndex(1);
  EXPECT_TRUE(shows([&] { return table.model()->rowCount() == 2; }));
  table.setCurrentIndex(table.model()->index(1, 89));
  EXPECT_TRUE(world.Widget<QLabel>("gapMapSentence").text().startsWith("Site 2, 12 March: "));
}

TEST_F(Shown, TheTrayTellsOfSilentStations) {
  NetworkStatus status;
  status.counts = {0, 0, 1, 0, 0, 2};
  EXPECT_EQ(window::TrayTip(status, "2 of 3 units are fine"), "1 station is silent\n2 of 3 units are fine");
}

}  // namespace
}  // namespace corvane::test
