#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QListWidget>

#include <gtest/gtest.h>

#include <random>

#include "window/plot/plot_axes.h"
#include "window/plot/plot_export.h"
#include "window/plot/plot_page.h"
#include "window_world.h"

namespace corvane::test {
namespace {

using window::Extremes;
using window::PlotContents;
using window::PlotLine;
using window::Tick;
using window::TimeSpan;

constexpr std::int64_t kQuarter = 900;
const DateTime kStart = DateTime::FromCivil(2010, 3, 12);

/// A line with a reading each quarter of an hour, with gaps before these readings.
PlotLine LineOf(const std::vector<double>& values, std::vector<std::size_t> breaks = {}) {
  auto series = std::make_shared<ReadingSeries>();
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto gaps = std::upper_bound(breaks.begin(), breaks.end(), i) - breaks.begin();
    series->times.push_back(kStart.seconds() + (static_cast<std::int64_t>(i) + 40 * gaps) * kQuarter);
  }
  series->columns = {values};
  series->breaks = std::move(breaks);
  return {series, 0, "line", 0};
}

TEST(Plot, FindsTheExtremesOfAnyStretch) {
  std::mt19937 random(7);
  std::vector<double> values;
  for (int i = 0; i < 5000; ++i) values.push_back(static_cast<double>(random() % 10000));
  const PlotLine line = LineOf(values, {100, 4000});
  for (int i = 0; i < 2000; ++i) {
    const std::size_t first = random() % values.size();
    const std::size_t end = first + random() % (values.size() - first + 1);
    Extremes expected;
    for (std::size_t at = first; at < end; ++at) expected.Take(values[at]);
    const Extremes found = line.Between(first, end);
    ASSERT_EQ(found.least, expected.least) << first << " " << end;
    ASSERT_EQ(found.most, expected.most) << first << " " << end;
    ASSERT_EQ(line.BrokenBetween(first, end), (first < 100 && end >= 100) || (first < 4000 && end >= 4000));
  }
  for (const auto& [before, covered] : {std::pair(98U, true), {99U, false}, {100U, true}, {4999U, false}}) {
    EXPECT_EQ(line.Covers(static_cast<double>(line.TimeAt(before)) + 1), covered) << before;
  }
  EXPECT_FALSE(line.Covers(static_cast<double>(line.TimeAt(0)) - 1));
}

TEST(Plot, MarksItsAxesAtRoundPlaces) {
  const auto text = [](const std::vector<Tick>& ticks) {
    QStringList texts;
    for (const Tick& tick : ticks) texts << tick.text + (tick.context.isEmpty() ? "" : "(" + tick.context + ")");
    return texts.join(" ").toStdString();
  };
  EXPECT_EQ(text(window::NumberTicks(-0.3, 0.7, 5)), "-0.2 0.0 0.2 0.4 0.6");
  EXPECT_EQ(text(window::NumberTicks(11996, 12004, 4)), "11996 11998 12000 12002 12004");
  EXPECT_EQ(text(window::NumberTicks(1, 1, 4)), "");
  struct Row {
    std::int64_t seconds;
    const char* ticks;
  };
  const Row rows[] = {
      {1800, "00:00(12 Mar 2010) 00:10 00:20 00:30"},
      {86400, "00:00(12 Mar 2010) 06:00 12:00 18:00 00:00(13 Mar 2010)"},
      {4 * 86400, "12 Mar(2010) 13 Mar 14 Mar 15 Mar 16 Mar"},
      {150 * 86400, "Apr(2010) May Jun Jul Aug"},
      {900 * 86400, "Jul(2010) Jan(2011) Jul Jan(2012) Jul"},
      {4000LL * 86400, "2015 2020"},
  };
  for (const Row& row : rows) {
    const auto from = static_cast<double>(kStart.seconds());
    EXPECT_EQ(text(window::TimeTicks({from, from + static_cast<double>(row.seconds)}, 5)), row.ticks) << row.seconds;
  }
}

/// Sparse and dense lines alike: nothing of them is in the columns of a gap, something in those beside it.
TEST(Plot, LeavesGapsOpen) {
  for (const std::size_t half : {5U, 20000U}) {
    PlotContents contents;
    std::vector<double> values;
    for (std::size_t i = 0; i < 2 * half; ++i) values.push_back(static_cast<double>(i % 7));
    contents.lines.push_back(LineOf(values, {half}));
    const PlotLine& line = contents.lines[0];
    const auto before = static_cast<double>(line.TimeAt(half - 1));
    const TimeSpan span{before - 10000, static_cast<double>(line.TimeAt(half)) + 10000};
    const QImage picture = window::PictureOf(contents, {span, QSizeF(800, 400), QFont()});
    const QColor colour = window::PlotColours::OfPaper().OfLine(0);
    const auto drawn = [&](double share) {
      int pixels = 0;
      const int x = static_cast<int>(share * picture.width());
      for (int y = picture.height() / 5; y < picture.height(); ++y) {
        const QColor pixel = picture.pixelColor(x, y);
        pixels += pixel.blue() > pixel.red() + 60 && colour.blue() > colour.red() ? 1 : 0;
      }
      return pixels;
    };
    EXPECT_GT(drawn(0.15), 0);
    EXPECT_EQ(drawn(0.5), 0);
    EXPECT_GT(drawn(0.85), 0);
  }
}

class PlotPageTest : public testing::Test, protected WindowWorld {
 protected:
  /// `general` are lines behind the settings' first one.
  explicit PlotPageTest(const std::string& general = "")
      : WindowWorld(SmallNetwork(2).insert(std::string("[General]\n").size(), general) +
                    "Name1=Hill\nName2=River\nDepths1=10;20\n") {
    if (!general.empty()) app().life().SetCaptions(&window().captions());
    WriteTables(home);
    std::string raw = "$V2,00001,4,3,9,2010/3/12 00:00,12500*00\r\n";
    for (int hour = 0; hour < 20; ++hour) {
      raw +=
          "2010/3/12 " + std::to_string(hour) + ":00,1250" + std::to_string(hour % 10) + ",29310,1,1500,900,29300\r\n";
    }
    home.Write("data/F1/00001.epd", raw);
    home.Write("data/00001.epd", raw);
    home.Write("data/00002.txt",
               "Date, Battery, Ambient, Count, M1, Sal1, Temp1 [Mois_Correc=0 Sal_Correc=0]\r\n"
               "12 Mar 2010 00:00, 12.000, 20.10, 7, 16.02, 9.030, 20.00\r\n"
               "12 Mar 2010 01:00, 12.100, 20.10, 7, 17.02, 9.030, 20.00\r\n");
    Open();
    Widget<QTabWidget>("tabs").setCurrentWidget(&page_);
    Wait();
  }
  void Wait() {
    ASSERT_TRUE(QTest::qWaitFor([this] { return !page_.Busy(); }, 5000));
  }
  void ShowUnit(std::int64_t position) {
    page_.ShowUnit(position);
    Wait();
  }
  void PressKeys(std::initializer_list<Qt::Key> keys) {
    for (const Qt::Key key : keys) QTest::keyClick(&page_.view(), key);
  }
  [[nodiscard]] std::string Cursor() { return page_.view().CursorText().toStdString(); }
  [[nodiscard]] double Hours() { return page_.view().span().length() / 3600; }

  window::PlotPage& page_ = dynamic_cast<window::PlotPage&>(Widget<QWidget>("tabPlot"));
};

TEST_F(PlotPageTest, ShowsTheSelectedUnitAndIsUsedByKeys) {
  PressKeys({Qt::Key_Home, Qt::Key_Right});
  EXPECT_EQ(Cursor(), "12 Mar 2010 01:00: sensor 1, 10 cm 15.09");
  EXPECT_EQ(page_.view().accessibleDescription().toStdString(), Cursor());
  PressKeys({Qt::Key_Plus, Qt::Key_Plus});
  EXPECT_LT(Hours(), 10);
  PressKeys({Qt::Key_Backspace, Qt::Key_Backspace, Qt::Key_Backspace});
  EXPECT_EQ(Hours(), 19);
  EXPECT_EQ(Widget<QComboBox>("plotSpan").currentText(), "All");
  PressKeys({Qt::Key_Minus});
  EXPECT_EQ(Hours(), 19) << "no more than all is shown";
  page_.ShowUnit(1, kStart + 30 * kSecondsPerDay);
  Wait();
  EXPECT_EQ(Widget<QLabel>("plotCursor").text(), "There are no readings of 11 Apr 2010; the nearest are shown.");
  EXPECT_EQ(Cursor(), "");
}

class GermanPlotPage : public PlotPageTest {
 protected:
  GermanPlotPage() : PlotPageTest("Language=" GERMAN_FILE "\n") {}
};

TEST_F(GermanPlotPage, SpeaksGermanAndReadsGermanDates) {
  PressKeys({Qt::Key_Home, Qt::Key_Right});
  EXPECT_EQ(Cursor(), "12 M\xC3\xA4r 2010 01:00: Sensor 1, 10 cm 15.09");
  EXPECT_EQ(page_.view().contents().axis_titles[0], "Feuchte");
  Field("plotFrom").selectAll();
  Field("plotFrom").insert(QString::fromUtf8("12 m\xC3\xA4r 2010 06:00"));
  Press(Field("plotFrom"), Qt::Key_Return);
  EXPECT_EQ(Hours(), 13);
  Type("plotFrom", "heute");
  Press(Field("plotFrom"), Qt::Key_Return);
  EXPECT_EQ(Widget<QLabel>("plotCursor").text(), "\"heute\" ist kein Datum; so wird es geschrieben: 5 Sep 2026 06:00.");
  page_.SaveTo(QString::fromStdString(home.Name("plot.csv")));
  Wait();
  EXPECT_TRUE(home.Read("plot.csv").starts_with("Datum,\"Sensor 1, 10 cm, Feuchte\"\r\n2010-03-12 06:00,15.09\r\n"))
      << home.Read("plot.csv");
}

TEST_F(PlotPageTest, ZoomsByDraggingAndTheWheel) {
  auto& view = page_.view();
  view.grab();
  const QPoint middle = view.rect().center();
  QTest::mousePress(&view, Qt::LeftButton, {}, middle);
  QTest::mouseMove(&view, middle + QPoint(60, 0));
  QTest::mouseRelease(&view, Qt::LeftButton, {}, middle + QPoint(60, 0));
  const double dragged = Hours();
  EXPECT_LT(dragged, 10);
  QWheelEvent turn(middle, view.mapToGlobal(middle), {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&view, &turn);
  EXPECT_NEAR(Hours(), 0.8 * dragged, 0.01);
  Click("plotBack");
  Click("plotBack");
  EXPECT_EQ(Hours(), 19);
}

TEST_F(PlotPageTest, TakesATypedDateOrSaysWhyNot) {
  struct Row {
    const char* field;
    const char* typed;
    const char* shown;  ///< by both fields
    const char* said;
  };
  const Row rows[] = {
      {"plotFrom", "12 Mar 2010 06:00", "12 Mar 2010 06:00 - 12 Mar 2010 19:00", ""},
      {"plotTo", "2010-03-12 9:30", "12 Mar 2010 06:00 - 12 Mar 2010 09:30", ""},
      {"plotFrom", "12 Mar 2010 10:00", "12 Mar 2010 06:00 - 12 Mar 2010 09:30", "\"From\" has to lie before"},
      {"plotTo", "1 Oct 2026", "12 Mar 2010 06:00 - 12 Mar 2010 19:00", "There are readings from 12 Mar 2010 00:00 to"},
      {"plotFrom", "31 Feb 2010 07:00", "31 Feb 2010 07:00 - 12 Mar 2010 19:00", "\"31 Feb 2010 07:00\" is no date"},
  };
  for (const Row& row : rows) {
    Type(row.field, row.typed);
    Press(Field(row.field), Qt::Key_Return);
    EXPECT_EQ((Field("plotFrom").text() + " - " + Field("plotTo").text()).toStdString(), row.shown) << row.typed;
    const QString said = Widget<QLabel>("plotCursor").text();
    EXPECT_TRUE(*row.said == '\0' ? said.isEmpty() : said.startsWith(row.said)) << said.toStdString();
  }
  EXPECT_EQ(Hours(), 13);
}

TEST_F(PlotPageTest, SavesWhatIsShownAndSaysWhereItComesFrom) {
  ShowUnit(2);
  EXPECT_EQ(Widget<QLabel>("plotProblem").text().toStdString(),
            "River: there is no raw file; shown is what its calibrated file holds.");
  Widget<QListWidget>("plotUnits").item(0)->setCheckState(Qt::Checked);
  Wait();
  Widget<QComboBox>("plotRight").setCurrentIndex(4);
  Wait();
  PressKeys({Qt::Key_Home});
  page_.view().Zoom({page_.view().span().from, page_.view().span().from + 3600});
  const QString csv = QString::fromStdString(home.Name("plot.csv"));
  page_.SaveTo(csv);
  Wait();
  EXPECT_EQ(home.Read("plot.csv"),
            "Date,\"Hill, sensor 1, 10 cm, moisture\",\"Hill, battery (V)\",\"River, sensor 1, moisture\",\"River, "
            "battery (V)\"\r\n"
            "2010-03-12 00:00,15.09,12.500,16.02,12.000\r\n2010-03-12 01:00,15.09,12.501,17.02,12.100\r\n");
  const std::pair<const char*, const char*> rows[] = {{"p.png", "\x89PNG"}, {"p.svg", "<?xml"}, {"p.pdf", "%PDF"}};
  for (const auto& [name, begin] : rows) {
    page_.SaveTo(QString::fromStdString(home.Name(name)));
    Wait();
    EXPECT_EQ(home.Read(name).substr(0, std::string(begin).size()), begin);
  }
  page_.SaveTo("/nowhere/plot.csv");
  Wait();
  EXPECT_TRUE(Widget<QLabel>("plotCursor").text().startsWith("Not saved: "));
}

TEST_F(PlotPageTest, OffersRawItemsWhereTheTablesAreMissing) {
  EXPECT_TRUE(Button("plotRawItems").isHidden());
  home.Write("moisture.lkp", "");
  ShowUnit(1);
  EXPECT_TRUE(page_.view().contents().lines.empty());
  EXPECT_FALSE(Button("plotRawItems").isHidden());
  Click("plotRawItems");
  Wait();
  EXPECT_EQ(Widget<QComboBox>("plotLeft").currentText(), "Raw item");
  EXPECT_EQ(page_.view().contents().lines.size(), 1U);
  EXPECT_TRUE(Button("plotRawItems").isHidden());
}

}  // namespace
}  // namespace corvane::test
