// The file list on folders and files that are not as they should be.
#include <filesystem>

#include <gtest/gtest.h>

#include "window_world.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;
constexpr const char* kFiles = "Lst_LocalFiles";

TEST(FileList, ReportsABadFolderOnceAndStays) {
  const struct {
    const char* folder;  ///< of the second unit's client
    std::size_t boxes;
    int rows;  ///< in the list afterwards
  } rows[] = {{"plain.txt", 1, 2}, {"circle", 1, 2}, {"dangling", 0, 0}, {"gone/too", 0, 0}, {"plain.txt/sub", 1, 2}};
  for (const auto& [folder, boxes, count] : rows) {
    SCOPED_TRACE(folder);
    WindowWorld world(std::string("[Clients]\nNumClients=2\nFolder1=\nFolder2=") + folder +
                      "\n[Units]\nNumUnits=2\nClientID1=1\nClientID2=2\n");
    world.home.Write("plain.txt", "1");
    world.home.Write("other.txt", "2");
    fs::create_symlink("circle", world.home.Name("circle"));
    fs::create_symlink("nowhere", world.home.Name("dangling"));
    world.Open();
    world.ChooseRow("Lst_Units", 0);
    ASSERT_EQ(world.Rows(kFiles), 2);
    world.dialogs.boxes.clear();
    world.ChooseRow("Lst_Units", 1);
    ASSERT_EQ(world.dialogs.boxes.size(), boxes);
    for (const std::string& text : world.dialogs.Texts()) EXPECT_NE(text.find(folder), std::string::npos);
    EXPECT_EQ(world.Rows(kFiles), count);
    world.ChooseRow("Lst_Units", 0);
    EXPECT_EQ(world.Rows(kFiles), 2);
  }
}

TEST(FileList, SurvivesFilesThatVanishWhileTheyAreListed) {
  WindowWorld world("[General]\nWhichFile=0\n");
  WriteTables(world.home);
  for (const char* name : {"00001.epd", "b.epd", "c.epd"}) world.home.Write(name, "x\r\n");
  world.Open();
  ASSERT_EQ(world.Rows(kFiles), 3);
  fs::remove(world.home.Name("00001.epd"));
  fs::remove(world.home.Name("b.epd"));
  world.List(kFiles).selectAll();
  world.ChooseRow(kFiles, 0);
  for (const char* button : {"Cmd_Convert", "Cmd_DeleteFile"}) {
    world.dialogs.boxes.clear();
    world.dialogs.answers = {1};
    world.Click(button);
    std::string told;
    for (const std::string& text : world.dialogs.Texts()) told += text;
    EXPECT_NE(told.find("00001.epd"), std::string::npos) << button << told;
  }
  world.Click("Opt_SortFile_1");
  EXPECT_EQ(world.Rows(kFiles), 1) << "the next look shows what is there";
  EXPECT_EQ(world.home.Read("c.epd"), "x\r\n") << "a delete that fails ends";
}

TEST(FileList, TakesAHundredThousandSelectedFilesAndARefusal) {
  WindowWorld world;
  world.Open();
  const std::vector<std::string> names(100'000, "0.txt\t0 b\t2010-01-01 00:00:00");
  world.form().Lst_LocalFiles.SetRows(names);
  world.List(kFiles).selectAll();
  EXPECT_EQ(world.form().Lst_LocalFiles.SelectedCount(), 100'000);
  world.dialogs.answers = {2};
  world.Click("Cmd_DeleteFile");
  EXPECT_EQ(world.dialogs.Texts(), std::vector<std::string>{"Delete all selected files ?"});
  EXPECT_EQ(world.Rows(kFiles), 100'000);
  EXPECT_EQ(world.List(kFiles).selectionModel()->selectedRows().size(), 100'000);
}

}  // namespace
}  // namespace corvane::test
