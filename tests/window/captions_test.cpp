#include <fstream>
#include <iterator>
#include <regex>
#include <set>

#include <QGroupBox>
#include <QLabel>
#include <QTabWidget>

#include <gtest/gtest.h>

#include "window_world.h"

namespace corvane::test {
namespace {

class Captions : public testing::Test, protected WindowWorld {
 protected:
  Captions() { Open(); }
  /// Calls `each` with every text of the captions: their position, its tab and its ID.
  void ForEach(const std::function<void(std::int64_t, int, std::int32_t)>& each) {
    for (std::int64_t position = 0; position < captions.CaptionCount(); ++position) {
      const CaptionedWindow::Caption caption = captions.CaptionAt(position);
      for (int tab = 0; tab < std::max(1, caption.tabs); ++tab) each(position, tab, caption.text_id + tab);
    }
  }

  window::Captions& captions = window().captions();
};

TEST_F(Captions, EveryTextOfTheWindowHasAnIdOfItsOwn) {
  for (const QWidget* widget : window().findChildren<QWidget*>()) {
    const QString name = widget->objectName();
    // Widgets without a name are parts of others.
    if (name.isEmpty() || name.contains("qt_")) continue;
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const auto* group = qobject_cast<const QGroupBox*>(widget);
    const bool has_text = !widget->toolTip().isEmpty() || (button != nullptr && !button->text().isEmpty()) ||
                          (group != nullptr && !group->title().isEmpty());
    EXPECT_TRUE(!has_text || widget->property("textId").toInt() != 0) << name.toStdString() << " has no text ID";
  }
  for (const Control* control : form().controls()) {
    const auto* menu = dynamic_cast<const MenuGroup*>(control);
    for (const MenuGroup::Entry& entry : menu != nullptr ? menu->entries() : std::vector<MenuGroup::Entry>()) {
      EXPECT_TRUE(entry.caption == "-" || entry.text_id != 0) << menu->name() << " " << entry.caption;
    }
  }
  std::set<std::int32_t> ids;
  ForEach([&ids](auto, auto, std::int32_t id) {
    EXPECT_TRUE(ids.insert(id).second) << "text ID " << id << " is used twice";
  });
  for (const Phrase& phrase : captions.PhraseList()) {
    EXPECT_TRUE(ids.insert(phrase.id).second) << "text ID " << phrase.id << " is used twice";
  }
}

TEST_F(Captions, ShippedLanguageFileHoldsEveryTextAsItIs) {
  std::ifstream file(LANGUAGE_FILE);
  const std::string shipped{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(shipped, captions.LanguageTemplate()) << "write the file anew with corvane --language-template";
  const std::size_t second = shipped.find('\n') + 1;
  EXPECT_GT(shipped.find(',', second), shipped.find('\n', second)) << "a comma there would be the separator";
}

TEST_F(Captions, ReplaceEveryKindOfText) {
  ForEach([this](std::int64_t position, int tab, std::int32_t id) {
    captions.SetCaption(position, tab, "T" + std::to_string(id));
    captions.SetToolTip(position, "tip");
  });
  EXPECT_EQ(Widget<QTabWidget>("tabs").tabText(0), "T308") << "a moved tab keeps its ID";
  EXPECT_EQ(Widget<QTabWidget>("tabs").tabText(2), "T300");
  EXPECT_EQ(Entry("mnu_Clients", 0).text(), "T1213");
  EXPECT_EQ(Widget<QMenu>("mnu_Clients").title(), "T1212");
  EXPECT_TRUE(Button("Cmd_Cancel").text().startsWith("T"));
  EXPECT_EQ(Button("Cmd_Cancel").text().toStdString(), form().Cmd_Cancel.caption());
  EXPECT_TRUE(List("Lst_LocalFiles").model()->headerData(1, Qt::Horizontal).toString().startsWith("T"));
  EXPECT_EQ(Field("Txt_UnitName").toolTip(), "tip");
  EXPECT_EQ(Field("Txt_UnitName").text(), "Site 1") << "a field has no caption to replace";
  EXPECT_TRUE(Widget<QMenu>("mnu_Clients").toolTipsVisible());
  EXPECT_EQ(Widget<QLabel>("Lbl_Now").text().toStdString(), form().Lbl_Now.text());
}

TEST(GermanCaptions, HelpOpensTheGuideInTheirLanguageWhereItIsThere) {
  WindowWorld world("[General]\nLanguage=" + std::regex_replace(LANGUAGE_FILE, std::regex("hveng"), "hvdeu") + "\n");
  world.app().life().SetCaptions(&world.window().captions());
  world.Open();
  EXPECT_EQ(world.Entry("mnu_Clients", 0).text(), "&Neu");
  world.Choose("mnu_Help", 0);
  world.home.Write("guide/de/index.html", "");
  world.Choose("mnu_Help", 0);
  const std::vector<std::string> opened{world.help.contents, world.home.Name("guide/de/index.html")};
  EXPECT_EQ(world.shell.opened, opened);
}

}  // namespace
}  // namespace corvane::test
