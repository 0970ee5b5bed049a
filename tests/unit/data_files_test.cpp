#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <tuple>
#include <vector>

#include "unit/data_world.h"

namespace corvane::test {
namespace {

using namespace std::string_literals;

TEST(FileNames, FollowTheNamingRule) {
  constexpr std::tuple<const char*, const char*, std::int32_t, const char*, const char*, const char*> kRows[] = {
      {"/data", "", 123456, "/data/Pr123456", "pr123456", "/data/Pr00099"},
      {"/srv\\", "North\\Field/", 7, "/srv/North/Field/Pr00007", "north/field/pr00007", "/srv/Pr00099"},
  };
  for (const auto& [folder, client_folder, id, expected, remote, example] : kRows) {
    DataWorld world;
    world.form.Txt_Prefix.SetText("Pr");
    world.form.Txt_Folder.SetText(folder);
    world.registry.Clients.Append({"Client", 4, client_folder, "", ""});
    world.AddUnit(id, 4);
    world.files.UpdateFileExamples();
    EXPECT_EQ(world.names.DataFileName(1, false), expected + ".epd"s);
    EXPECT_EQ(world.names.RemoteDataFileName(1, true), remote + ".txt"s);
    EXPECT_EQ(world.form.Lbl_FileExample[1].text(), example + ".txt"s);
    EXPECT_EQ(world.form.Lbl_DateExample.text(), "12 Mar 2010 10:00");
  }
}

/// A world whose data folder holds three raw files and others, the raw files listed by name.
struct ListWorld : DataWorld {
  ListWorld() {
    form.Txt_Folder.SetText("data");
    const auto now = std::filesystem::file_time_type::clock::now();
    std::filesystem::last_write_time(Write("data/00002.epd", std::string(12000, 'x')), now - std::chrono::hours(3));
    std::filesystem::last_write_time(Write("data/00003.epd", std::string(9999, 'x')), now - std::chrono::hours(1));
    std::filesystem::last_write_time(Write("data/a0001.epd", "x"), now - std::chrono::hours(2));
    Write("data/00002.txt", "");
    Write("data/00002.zip", "");
    files.RefreshFileListBox();
  }
  /// The listed names, each followed by a blank.
  [[nodiscard]] std::string Names() const {
    std::string listed;
    for (std::int64_t row = 0; row < form.Lst_LocalFiles.count(); ++row) {
      const std::string& text = form.Lst_LocalFiles.text(row);
      listed += text.substr(0, text.find('\t')) + " ";
    }
    return listed;
  }
};

TEST(LocalFiles, ListsFiltersAndSortsWithTheFocusOnItsFile) {
  constexpr std::tuple<int, int, int, const char*, int> kRows[] = {
      {0, 0, 1, "a0001.epd 00003.epd 00002.epd ", 2},
      {0, 2, 0, "00002.epd a0001.epd 00003.epd ", 0},
      {0, 1, 0, "a0001.epd 00003.epd 00002.epd ", 2},
      {1, 0, 0, "00002.txt ", -1},
  };
  ListWorld world;
  EXPECT_EQ(world.Names(), "00002.epd 00003.epd a0001.epd ");
  EXPECT_TRUE(world.form.Lst_LocalFiles.text(0).starts_with("00002.epd\t12 Kb\t20"));
  world.form.Lst_LocalFiles.SetCurrent(0);
  for (const auto& [which, sort, direction, expected, focus] : kRows) {
    world.form.Opt_WhichFile.SetOptionIndex(which);
    world.form.Opt_SortFile.SetOptionIndex(sort);
    world.form.Opt_Direction.SetOptionIndex(direction);
    world.files.RefreshFileListBox();
    EXPECT_EQ(world.Names(), expected);
    EXPECT_EQ(world.form.Lst_LocalFiles.current(), focus) << expected;
  }
}

TEST(LocalFiles, FolderOfTheSelectedUnitsClient) {
  ListWorld world;
  world.form.Txt_Folder.SetText(world.Name("data/"));
  world.registry.Clients.Append({"Client", 1, "F1", "", ""});
  world.AddUnit(1, 1);
  world.form.Lst_Units.SetCurrent(0);
  world.files.RefreshFileListBox();
  EXPECT_EQ(world.form.Lbl_Path.text(), world.Name("data//F1"));
  EXPECT_TRUE(world.dialogs.boxes.empty()) << "a folder that is not there yet is an empty list";
  world.Write("data/F1/00009.epd", "x");
  world.files.RefreshFileListBox();
  EXPECT_EQ(world.Names(), "00009.epd ");

  world.form.Txt_Folder.SetText("C:\\data");
  world.files.RefreshFileListBox();
  EXPECT_EQ(world.form.Lst_LocalFiles.count(), 1) << "an error leaves the list";
  EXPECT_EQ(world.dialogs.boxes.size(), 1U);
}

TEST(LocalFiles, DeletesAfterAQuestion) {
  // The selected rows (the last one has the focus), the answer (1 is Yes), the end of the last box, what is left.
  const std::tuple<std::vector<std::int64_t>, int, std::string, std::string> rows[] = {
      {{}, 1, "Choose a file", "00002.epd 00003.epd a0001.epd "},
      {{1}, 1, "data/00003.epd ?", "00002.epd a0001.epd "},
      {{1}, 2, "data/00003.epd ?", "00002.epd 00003.epd a0001.epd "},
      {{0, 2}, 1, "Delete all selected files ?", "00003.epd "},
      {{0, 1, 2}, 1, "\r\nFileListDelete", "a0001.epd "},
  };
  for (const auto& [selected, answer, box, left] : rows) {
    SCOPED_TRACE(box);
    ListWorld world;
    for (const std::int64_t row : selected) world.form.Lst_LocalFiles.SetSelected(row, true);
    if (!selected.empty()) world.form.Lst_LocalFiles.SetCurrent(selected.back());
    if (selected.size() == 3) std::filesystem::remove(world.Name("data/00003.epd"));  // by someone else
    world.dialogs.answers = {answer};
    world.files.DeleteFiles();
    EXPECT_TRUE(world.dialogs.boxes.back().text.ends_with(box)) << world.dialogs.boxes.back().text;
    world.files.RefreshFileListBox();
    EXPECT_EQ(world.Names(), left);
  }
}

TEST(LocalFiles, CostlyRefreshWaitsForTheEndOfTheOperation) {
  ListWorld world;
  // The handler of the focus makes a refresh cost 100 ms.
  world.form.Lst_LocalFiles.SetCurrent(2);
  world.form.Lst_LocalFiles.on_change = [&] { world.loop.Advance(50); };
  world.files.RefreshFileListBox();
  world.slot.on_given_back = [&] { world.files.RefreshIfStale(); };
  std::filesystem::remove(world.Name("data/00002.epd"));
  ASSERT_TRUE(world.slot.Run([&] {
    world.loop.Advance(1999);
    world.files.RefreshFileListBox();
    EXPECT_EQ(world.form.Lst_LocalFiles.count(), 3);
    world.loop.Advance(1);
    world.files.RefreshFileListBox();
    EXPECT_EQ(world.form.Lst_LocalFiles.count(), 2) << "twenty times its cost later it may run again";
    std::filesystem::remove(world.Name("data/00003.epd"));
    world.files.RefreshFileListBox();
  }));
  EXPECT_EQ(world.form.Lst_LocalFiles.count(), 1) << "made up at the end";
}

TEST(LocalFiles, EditsAndChoosesFiles) {
  ListWorld world;
  world.form.Lst_LocalFiles.SetCurrent(1);
  world.files.EditDataFile();
  EXPECT_EQ(world.shell.edited, std::vector<std::string>{world.Name("data/00003.epd")});
  world.files.GetFile(0);
  EXPECT_EQ(world.form.Txt_File[0].text(), "") << "cancelled";
  for (const std::string& chosen : {"/chosen"s, "/" + std::string(TextField::kLongestText, 'x')}) {
    world.dialogs.text_answer = chosen;
    world.files.GetFile(3);
    world.files.GetFolder();
    EXPECT_EQ(world.form.Txt_File[3].text(), "/chosen") << "a path that would be cut is refused";
    EXPECT_EQ(world.form.Txt_Folder.text(), "/chosen");
  }
}

}  // namespace
}  // namespace corvane::test
