#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QGroupBox>
#include <QLabel>
#include <QTabWidget>

#include <gtest/gtest.h>

#include "window_world.h"

namespace corvane::test {
namespace {

std::map<int, std::string> LinesById(const std::string& file) {
  std::map<int, std::string> lines;
  std::istringstream in(file);
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) lines[std::stoi(line)] = line;
  return lines;
}

bool HasText(const QWidget& widget) {
  if (!widget.toolTip().isEmpty()) return true;
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return !button->text().isEmpty();
  if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) return !group->title().isEmpty();
  return false;
}

TEST(Captions, EveryTextOfTheWindowHasAnIdOfItsOwn) {
  WindowWorld world;
  world.Open();
  for (const QWidget* widget : world.window().findChildren<QWidget*>()) {
    const QString name = widget->objectName();
    // Widgets without a name are parts of others.
    const bool own = widget->window() == &world.window() && !name.isEmpty() && !name.startsWith("qt_");
    if (!own || !HasText(*widget)) continue;
    EXPECT_NE(widget->property("textId").toInt(), 0) << name.toStdString() << " has no text ID";
  }
  for (const Control* control : world.form().controls()) {
    const auto* menu = dynamic_cast<const MenuGroup*>(control);
    if (menu == nullptr) continue;
    for (const MenuGroup::Entry& entry : menu->entries()) {
      EXPECT_TRUE(entry.caption == "-" || entry.text_id != 0) << menu->name() << " " << entry.caption;
    }
  }
  std::multiset<std::int32_t> ids;
  window::Captions& captions = world.window().captions();
  for (std::int64_t position = 0; position < captions.CaptionCount(); ++position) {
    const CaptionedWindow::Caption caption = captions.CaptionAt(position);
    for (int tab = 0; tab < std::max(1, caption.tabs); ++tab) ids.insert(caption.text_id + tab);
  }
  for (const std::int32_t id : ids) EXPECT_EQ(ids.count(id), 1U) << "text ID " << id << " is used twice";
}

TEST(Captions, ShippedLanguageFileHoldsEveryTextAsItIs) {
  WindowWorld world;
  world.Open();
  std::ifstream file(LANGUAGE_FILE);
  std::stringstream shipped;
  shipped << file.rdbuf();
  const auto written = LinesById(shipped.str());
  const auto wanted = LinesById(world.window().captions().LanguageTemplate());
  const std::string cure = "; write the file anew with corvane --language-template";
  for (const auto& [id, line] : wanted) {
    ASSERT_TRUE(written.contains(id)) << "the text ID " << id << " is missing" << cure;
    EXPECT_EQ(written.at(id), line) << cure;
  }
  EXPECT_EQ(written.size(), wanted.size()) << "the file has texts that the window does not" << cure;
  const std::string second = shipped.str().substr(shipped.str().find('\n') + 1);
  EXPECT_EQ(second.substr(0, second.find('\n')).find(','), std::string::npos) << "a comma there would be the separator";
}

TEST(Captions, ReplaceEveryKindOfText) {
  WindowWorld world;
  world.Open();
  window::Captions& captions = world.window().captions();
  for (std::int64_t position = 0; position < captions.CaptionCount(); ++position) {
    const CaptionedWindow::Caption caption = captions.CaptionAt(position);
    for (int tab = 0; tab < std::max(1, caption.tabs); ++tab) {
      captions.SetCaption(position, tab, "T" + std::to_string(caption.text_id + tab));
    }
    captions.SetToolTip(position, "tip");
  }
  EXPECT_EQ(world.Widget<QTabWidget>("tabs").tabText(2), "T302");
  EXPECT_EQ(world.Widget<QMenu>("mnu_Clients").actions().at(0)->text(), "T1213");
  EXPECT_EQ(world.Widget<QMenu>("mnu_Clients").title(), "T1212");
  EXPECT_TRUE(world.Widget<QAbstractButton>("Cmd_Cancel").text().startsWith("T"));
  EXPECT_EQ(world.Widget<QAbstractButton>("Cmd_Cancel").text().toStdString(), world.form().Cmd_Cancel.caption());
  EXPECT_TRUE(world.Widget<QAbstractItemView>("Lst_LocalFiles")
                  .model()
                  ->headerData(1, Qt::Horizontal)
                  .toString()
                  .startsWith("T"));
  EXPECT_EQ(world.Widget<QLineEdit>("Txt_UnitName").toolTip(), "tip");
  EXPECT_EQ(world.Widget<QLineEdit>("Txt_UnitName").text(), "Site 1") << "a field has no caption to replace";
  EXPECT_TRUE(world.Widget<QMenu>("mnu_Clients").toolTipsVisible());
  EXPECT_EQ(world.Widget<QLabel>("Lbl_Now").text().toStdString(), world.form().Lbl_Now.text());
}

}  // namespace
}  // namespace corvane::test
