// The file list on folders and files that are not as they should be.
#include <filesystem>

#include <QAbstractItemView>

#include <gtest/gtest.h>

#include "window_world.h"

namespace corvane::test {
namespace {

QAbstractItemView& FileView(WindowWorld& world) {
  return world.Widget<QAbstractItemView>("Lst_LocalFiles");
}

void ChooseUnit(WindowWorld& world, int row) {
  auto& units = world.Widget<QAbstractItemView>("Lst_Units");
  units.setCurrentIndex(units.model()->index(row, 0));
  world.Settle();
}

struct FolderRow {
  const char* name;
  const char* folder;  ///< of the second unit's client
  std::size_t boxes;
  const char* text;  ///< in the box
  int rows;          ///< in the list afterwards
};

TEST(BadFolders, AreReportedOnceAndTheListStays) {
  const FolderRow rows[] = {
      {"a file", "plain.txt", 1, "plain.txt", 2},
      {"a circle of links", "circle", 1, "circle", 2},
      {"a link to nowhere", "dangling", 0, "", 0},
      {"one that does not exist", "gone/too", 0, "", 0},
      {"a file in the way", "plain.txt/sub", 1, "plain.txt/sub", 2},
  };
  for (const FolderRow& row : rows) {
    SCOPED_TRACE(row.name);
    WindowWorld world(std::string("[Clients]\nNumClients=2\nFolder1=\nFolder2=") + row.folder +
                      "\n[Units]\nNumUnits=2\nClientID1=1\nClientID2=2\n");
    world.home.Write("plain.txt", "1");
    world.home.Write("other.txt", "2");
    std::filesystem::create_symlink("circle", world.home.Name("circle"));
    std::filesystem::create_symlink("nowhere", world.home.Name("dangling"));
    world.Open();
    ChooseUnit(world, 0);
    ASSERT_EQ(FileView(world).model()->rowCount(), 2);
    world.dialogs.boxes.clear();
    ChooseUnit(world, 1);
    ASSERT_EQ(world.dialogs.boxes.size(), row.boxes);
    for (const std::string& text : world.dialogs.Texts()) EXPECT_NE(text.find(row.text), std::string::npos);
    EXPECT_EQ(FileView(world).model()->rowCount(), row.rows);
    ChooseUnit(world, 0);
    EXPECT_EQ(FileView(world).model()->rowCount(), 2);
  }
}

TEST(FileList, SurvivesFilesThatVanishWhileTheyAreListed) {
  WindowWorld world("[General]\nWhichFile=0\n");
  WriteTables(world.home);
  for (const char* name : {"00001.epd", "b.epd", "c.epd"}) world.home.Write(name, "x\r\n");
  world.Open();
  ASSERT_EQ(FileView(world).model()->rowCount(), 3);
  std::filesystem::remove(world.home.Name("00001.epd"));
  std::filesystem::remove(world.home.Name("b.epd"));
  FileView(world).selectAll();
  FileView(world).setCurrentIndex(FileView(world).model()->index(0, 0));
  const struct {
    const char* button;
    const char* box;
  } rows[] = {{"Cmd_Convert", "00001.epd"}, {"Cmd_DeleteFile", "00001.epd"}};
  for (const auto& [button, box] : rows) {
    SCOPED_TRACE(button);
    world.dialogs.boxes.clear();
    world.dialogs.answers = {1};
    world.Click(button);
    ASSERT_FALSE(world.dialogs.boxes.empty());
    const std::vector<std::string> texts = world.dialogs.Texts();
    EXPECT_TRUE(std::any_of(texts.begin(), texts.end(),
                            [&](const std::string& text) { return text.find(box) != std::string::npos; }));
  }
  world.Click("Opt_SortFile_1");
  EXPECT_EQ(FileView(world).model()->rowCount(), 1) << "the next look shows what is there";
  EXPECT_EQ(world.home.Read("c.epd"), "x\r\n") << "a delete that fails ends";
}

TEST(FileList, TakesAHundredThousandSelectedFilesAndARefusal) {
  constexpr int kFiles = 100'000;
  WindowWorld world;
  world.Open();
  std::vector<std::string> names;
  for (int file = 0; file < kFiles; ++file) names.push_back(std::to_string(file) + ".txt\t0 b\t2010-01-01 00:00:00");
  world.form().Lst_LocalFiles.SetRows(names);
  FileView(world).selectAll();
  EXPECT_EQ(world.form().Lst_LocalFiles.SelectedCount(), kFiles);
  world.dialogs.answers = {2};
  world.Click("Cmd_DeleteFile");
  EXPECT_EQ(world.dialogs.Texts(), std::vector<std::string>{"Delete all selected files ?"});
  EXPECT_EQ(FileView(world).model()->rowCount(), kFiles);
  EXPECT_EQ(FileView(world).selectionModel()->selectedRows().size(), kFiles);
}

}  // namespace
}  // namespace corvane::test
