#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "unit/data_world.h"

namespace corvane::test {
namespace {

struct NameCase {
  const char* name;
  const char* folder;
  const char* client_folder;
  std::int32_t id;
  bool calibrated;
  const char* expected;  ///< below the application folder unless it begins with "/"
  const char* remote;
};

constexpr NameCase kNames[] = {
    {"five digits", "data", "", 7, false, "data/Pr00007.epd", "pr00007.epd"},
    {"more digits stay", "data", "", 123456, false, "data/Pr123456.epd", "pr123456.epd"},
    {"client folder", "data", "F1", 7, true, "data/F1/Pr00007.txt", "f1/pr00007.txt"},
    {"separators of both kinds", "/srv/corvane\\", "North\\Field/", 7, true, "/srv/corvane/North/Field/Pr00007.txt",
     "north/field/pr00007.txt"},
    {"no data folder", "", "", 7, false, "Pr00007.epd", "pr00007.epd"},
};

TEST(FileNames, FollowTheNamingRule) {
  for (const NameCase& row : kNames) {
    SCOPED_TRACE(row.name);
    DataWorld world;
    world.form.Txt_Prefix.SetText("Pr");
    world.form.Txt_Folder.SetText(row.folder);
    world.registry.Clients.Append({"Client", 4, row.client_folder, "", ""});
    world.AddUnit(row.id, 4);
    const std::string expected = row.expected[0] == '/' ? row.expected : world.Path(row.expected);
    EXPECT_EQ(world.names.DataFileName(1, row.calibrated), expected);
    EXPECT_EQ(world.names.RemoteDataFileName(1, row.calibrated), row.remote);
  }
}

TEST(FileNames, ExamplesShowUnit99WithoutClientFolder) {
  DataWorld world;
  world.form.Txt_Folder.SetText("/d");
  world.AddUnit(7);
  world.files.UpdateFileExamples();
  EXPECT_EQ(world.form.Lbl_DateExample.text(), "12 Mar 2010 10:00");
  EXPECT_EQ(world.form.Lbl_FileExample[0].text() + world.form.Lbl_FileExample[1].text(), "/d/00099.epd/d/00099.txt");
}

/// A world whose data folder holds three raw files and others.
struct ListWorld : DataWorld {
  ListWorld() {
    form.Txt_Folder.SetText("data");
    WriteDated("data/00002.epd", 12000, 3);
    WriteDated("data/00003.epd", 9999, 1);
    WriteDated("data/a0001.epd", 1, 2);
    WriteDated("data/00002.txt", 1, 1);
    WriteDated("data/00002.zip", 1, 1);
  }
  void WriteDated(const std::string& name, std::size_t size, int hours_ago) const {
    Write(name, std::string(size, 'x'));
    std::filesystem::last_write_time(Path(name),
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(hours_ago));
  }
  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> listed;
    for (std::int64_t row = 0; row < form.Lst_LocalFiles.count(); ++row) {
      const std::string& text = form.Lst_LocalFiles.text(row);
      listed.push_back(text.substr(0, text.find('\t')));
    }
    return listed;
  }
  void Show(int which, int sort, int direction) {
    form.Opt_WhichFile.SetOptionIndex(which);
    form.Opt_SortFile.SetOptionIndex(sort);
    form.Opt_Direction.SetOptionIndex(direction);
    files.RefreshFileListBox();
  }
};

struct SortCase {
  const char* name;
  int which, sort, direction;
  std::vector<std::string> expected;
};

TEST(LocalFiles, ListsFiltersAndSorts) {
  const std::vector<SortCase> rows = {
      {"raw by name", 0, 0, 0, {"00002.epd", "00003.epd", "a0001.epd"}},
      {"raw by name, descending", 0, 0, 1, {"a0001.epd", "00003.epd", "00002.epd"}},
      {"raw by size", 0, 1, 0, {"a0001.epd", "00003.epd", "00002.epd"}},
      {"raw by date", 0, 2, 0, {"00002.epd", "a0001.epd", "00003.epd"}},
      {"converted", 1, 0, 0, {"00002.txt"}},
      {"zipped", 2, 0, 0, {"00002.zip"}},
  };
  ListWorld world;
  for (const SortCase& row : rows) {
    world.Show(row.which, row.sort, row.direction);
    EXPECT_EQ(world.Names(), row.expected) << row.name;
  }
  world.Show(0, 1, 1);
  EXPECT_TRUE(world.form.Lst_LocalFiles.text(0).starts_with("00002.epd\t12 Kb\t20"));
  EXPECT_TRUE(world.form.Lst_LocalFiles.text(1).starts_with("00003.epd\t9,999 b\t20"));
  EXPECT_EQ(world.form.Lbl_Path.text(), world.Path("data"));
}

TEST(LocalFiles, FocusStaysWithTheFile) {
  ListWorld world;
  world.Show(0, 0, 0);
  world.form.Lst_LocalFiles.SetCurrent(0);
  world.Show(0, 0, 1);
  EXPECT_EQ(world.form.Lst_LocalFiles.current(), 2);
  std::filesystem::remove(world.Path("data/00002.epd"));
  world.files.RefreshFileListBox();
  EXPECT_EQ(world.form.Lst_LocalFiles.current(), -1);
}

TEST(LocalFiles, FolderOfTheSelectedUnitsClient) {
  ListWorld world;
  world.form.Txt_Folder.SetText(world.Path("data/"));
  world.registry.Clients.Append({"Client", 1, "F1", "", ""});
  world.AddUnit(1, 1);
  world.form.Lst_Units.SetCurrent(0);
  world.Show(0, 0, 0);
  EXPECT_EQ(world.form.Lbl_Path.text(), world.Path("data//F1"));
  EXPECT_TRUE(world.dialogs.boxes.empty()) << "a folder that is not there yet is an empty list";
  world.Write("data/F1/00009.epd", "x");
  world.files.RefreshFileListBox();
  EXPECT_EQ(world.Names(), std::vector<std::string>{"00009.epd"});

  world.form.Txt_Folder.SetText("C:\\data");
  world.files.RefreshFileListBox();
  EXPECT_EQ(world.form.Lst_LocalFiles.count(), 1) << "an error leaves the list";
  ASSERT_EQ(world.dialogs.boxes.size(), 1U);
  EXPECT_TRUE(world.dialogs.boxes[0].text.ends_with("\r\nFileListRefresh"));
}

struct DeleteCase {
  const char* name;
  std::vector<std::int64_t> selected;  ///< the last one has the focus
  int answer;                          ///< position, 1 Yes
  const char* missing;                 ///< a file that someone else removes first
  std::string box;                     ///< the last box ends so
  std::vector<std::string> left;       ///< files, in the order of the list
};

TEST(LocalFiles, DeletesAfterAQuestion) {
  const std::vector<DeleteCase> rows = {
      {"no focus", {}, 1, "", "Choose a file", {"00002.epd", "00003.epd", "a0001.epd"}},
      {"focused", {1}, 1, "", "data/00003.epd ?", {"00002.epd", "a0001.epd"}},
      {"refused", {1}, 2, "", "data/00003.epd ?", {"00002.epd", "00003.epd", "a0001.epd"}},
      {"several", {0, 2}, 1, "", "Delete all selected files ?", {"00003.epd"}},
      {"one that cannot be deleted ends it", {0, 1, 2}, 1, "00003.epd", "\r\nFileListDelete", {"a0001.epd"}},
  };
  for (const DeleteCase& row : rows) {
    SCOPED_TRACE(row.name);
    ListWorld world;
    world.Show(0, 0, 0);
    for (const std::int64_t selected : row.selected) world.form.Lst_LocalFiles.SetSelected(selected, true);
    if (!row.selected.empty()) world.form.Lst_LocalFiles.SetCurrent(row.selected.back());
    if (row.missing[0] != '\0') std::filesystem::remove(world.Path("data/" + std::string(row.missing)));
    world.dialogs.answers = {row.answer};
    world.files.DeleteFiles();
    EXPECT_TRUE(world.dialogs.boxes.back().text.ends_with(row.box)) << world.dialogs.boxes.back().text;
    world.files.RefreshFileListBox();
    EXPECT_EQ(world.Names(), row.left);
  }
}

TEST(LocalFiles, CostlyRefreshWaitsForTheEndOfTheOperation) {
  ListWorld world;
  world.Show(0, 0, 0);
  // The handler of the focus makes a refresh cost 100 ms.
  world.form.Lst_LocalFiles.SetCurrent(2);
  world.form.Lst_LocalFiles.on_change = [&] { world.loop.Advance(50); };
  world.files.RefreshFileListBox();
  world.slot.on_given_back = [&] { world.files.RefreshIfStale(); };
  std::filesystem::remove(world.Path("data/00002.epd"));
  ASSERT_TRUE(world.slot.Run([&] {
    world.loop.Advance(1999);
    world.files.RefreshFileListBox();
    EXPECT_EQ(world.form.Lst_LocalFiles.count(), 3);
  }));
  EXPECT_EQ(world.form.Lst_LocalFiles.count(), 2) << "made up at the end";
  std::filesystem::remove(world.Path("data/00003.epd"));
  ASSERT_TRUE(world.slot.Run([&] {
    world.loop.Advance(2000);
    world.files.RefreshFileListBox();
    EXPECT_EQ(world.form.Lst_LocalFiles.count(), 1) << "twenty times its cost later it may run again";
  }));
}

TEST(LocalFiles, EditsAndChoosesFiles) {
  ListWorld world;
  world.Show(0, 0, 0);
  world.form.Lst_LocalFiles.SetCurrent(1);
  world.form.Txt_File[1].SetText("salinity.lkp");
  world.files.EditDataFile();
  world.files.EditFile(1);
  world.files.EditTrace();
  EXPECT_EQ(world.shell.edited, (std::vector<std::string>{world.Path("data/00003.epd"), world.Path("salinity.lkp"),
                                                          world.Path("corvane.log")}));
  world.files.GetFile(0);
  EXPECT_EQ(world.dialogs.last_filter, "Lookup files(*.lkp)|*.lkp|All files(*.*)|*.*");
  EXPECT_EQ(world.form.Txt_File[0].text(), "") << "cancelled";
  world.dialogs.text_answer = "/chosen";
  world.files.GetFile(3);
  world.files.GetFolder();
  EXPECT_EQ(world.dialogs.last_filter, "Language files(*.lng)|*.lng|All files(*.*)|*.*");
  world.dialogs.text_answer = "/" + std::string(TextField::kLongestText, 'x');
  world.files.GetFolder();
  EXPECT_EQ(world.form.Txt_File[3].text() + world.form.Txt_Folder.text(), "/chosen/chosen")
      << "a path that would be cut is refused";
  EXPECT_EQ(world.dialogs.boxes.size(), 1U);
}

}  // namespace
}  // namespace corvane::test
