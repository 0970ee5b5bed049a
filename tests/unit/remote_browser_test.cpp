#include "transfer/remote_browser.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "unit/transfer_world.h"

namespace corvane::test {
namespace {

class BrowserTest : public ::testing::Test {
 protected:
  BrowserTest() {
    world.internet.files = {{"/web/b.zip", "12345"}, {"/web/A.zip", ""}, {"/web/tab\tname", "x"}};
    world.internet.folders.insert("/web/Old data");
    world.form().Cmd_FTP[2].Click();
  }
  [[nodiscard]] std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    for (std::int64_t row = 0; row < list.count(); ++row) rows.push_back(list.text(row));
    return rows;
  }

  TransferWorld world{{"1 1 0 1"}};
  List& list = world.form().Lst_RemoteFiles;
};

TEST_F(BrowserTest, ShowsFoldersThenFilesByName) {
  EXPECT_EQ(Rows(),
            (std::vector<std::string>{"..\t[parent]", "f1\t[DIR]", "f2\t[DIR]", "Old data\t[DIR]",
                                      "A.zip\t0 b\t2010-03-12 08:00:00\t\t", "b.zip\t5 b\t2010-03-12 08:00:00\t\t"}))
      << "a name with a tab would be taken for another one";
  EXPECT_EQ(list.number(5), 5);
  EXPECT_EQ(world.form().Lbl_ftpRemoteFolder.text(), "/web");
  for (const Button& button : world.form().Cmd_FTP) EXPECT_TRUE(button.enabled()) << button.name();
}

TEST_F(BrowserTest, KeepsItsLinesWhenTheServerIsOutOfReach) {
  const std::vector<std::string> before = Rows();
  world.internet.errors["find"] = {kInternetTimeout};
  world.form().Cmd_FTP[2].Click();
  world.form().Cmd_FTP[3].Click();
  EXPECT_FALSE(world.form().Cmd_FTP[0].enabled() || world.form().mnu_ftp.entries()[3].enabled);
  world.internet.errors["connect"] = {kInternetCannotConnect};
  world.form().Cmd_FTP[2].Click();
  EXPECT_EQ(Rows(), before);
}

TEST_F(BrowserTest, DoubleClicksWalkTheFolders) {
  list.Open(3);
  EXPECT_EQ(world.form().Lbl_ftpRemoteFolder.text(), "/web/Old data");
  list.Open(0);
  EXPECT_EQ(world.form().Lbl_ftpRemoteFolder.text(), "/web");
  list.Open(5);
  EXPECT_EQ(world.form().Lbl_ftpRemoteFolder.text(), "/web") << "a file does nothing";
  const std::tuple<std::string, std::string> tops[] = {
      {"/", "Already at root"}, {"/web", "Already at root"}, {"web", "No delimiter - already at top"}};
  for (const auto& [folder, status] : tops) {
    world.form().Lbl_ftpRemoteFolder.SetText(folder);
    world.internet.calls.clear();
    list.Open(0);
    EXPECT_EQ(world.Status(), status);
    EXPECT_TRUE(world.internet.calls.empty());
  }
}

TEST_F(BrowserTest, CreatesFoldersInLowerCase) {
  world.dialogs.text_answer = "Data";
  world.form().mnu_ftp.Click(0);
  EXPECT_TRUE(world.internet.folders.contains("/web/data"));
  EXPECT_EQ(list.text(list.current()), "data\t[DIR]");
  world.internet.calls.clear();
  world.dialogs.text_answer = "";
  world.form().mnu_ftp.Click(0);
  EXPECT_TRUE(world.internet.calls.empty());
}

TEST_F(BrowserTest, DeletesByTheNumberOfTheLine) {
  const std::tuple<std::int64_t, std::string> rows[] = {
      {1, "rmd f1"}, {5, "dele b.zip"}, {4, "rmd A.zip"}, {0, "rmd .."}};
  for (const auto& [row, call] : rows) {
    world.form().Cmd_FTP[2].Click();
    world.internet.files["/web/b.zip"] = "12345";
    world.internet.folders.insert("/web/f1");
    world.form().Cmd_FTP[2].Click();
    list.SetCurrent(row);
    world.dialogs.answers = {1};
    world.form().Cmd_FTP[1].Click();
    EXPECT_TRUE(world.internet.Called(call)) << call;
  }
  world.internet.calls.clear();
  list.SetCurrent(1);
  world.dialogs.answers = {2};
  world.form().Cmd_FTP[1].Click();
  list.SetCurrent(-1);
  world.form().Cmd_FTP[1].Click();
  EXPECT_TRUE(world.internet.calls.empty());
  EXPECT_EQ(world.dialogs.Texts().back(), "Select a file");
}

TEST_F(BrowserTest, WorksInTheFolderThatIsShownWhateverRanMeanwhile) {
  world.internet.files["/web/Old data/b.zip"] = "older";
  list.Open(3);
  world.form().mnu_Clients.Click(5);
  list.SetCurrent(1);
  ASSERT_EQ(list.text(1).substr(0, 5), "b.zip");
  world.dialogs.answers = {1};
  world.form().Cmd_FTP[1].Click();
  EXPECT_TRUE(world.internet.files.contains("/web/b.zip"));
  EXPECT_FALSE(world.internet.files.contains("/web/Old data/b.zip"));
  list.SetCurrent(0);
  world.internet.errors["cwd"] = {kInternetExtendedError, kInternetExtendedError};
  world.internet.calls.clear();
  world.dialogs.answers = {1};
  world.form().Cmd_FTP[1].Click();
  EXPECT_EQ(world.internet.Count("rmd") + world.internet.Count("dele"), 0) << "the folder could not be entered";
}

TEST_F(BrowserTest, CreatesNothingBesideTheFolderOfTheField) {
  world.form().Txt_FTPFolder.SetText("/nowhere");
  world.internet.folders = {"/"};
  world.internet.calls.clear();
  world.dialogs.boxes.clear();
  world.form().mnu_Clients.Click(5);
  EXPECT_EQ(world.internet.Count("mkd"), 0);
  EXPECT_EQ(world.dialogs.boxes.size(), 1U);
}

TEST_F(BrowserTest, EmptyFolderIsThatOfTheLoginAgain) {
  world.internet.folders.insert("/f1");
  world.GiveRawFile(1, "F1");
  world.form().Txt_FTPFolder.SetText("");
  world.form().Cmd_FTP[2].Click();
  list.Open(1);
  ASSERT_EQ(world.form().Lbl_ftpRemoteFolder.text(), "/f1");
  world.form().mnu_ftpFile.Click(1);
  EXPECT_TRUE(world.internet.files.contains("/f1/u00001.epd"));
  EXPECT_EQ(list.text(1), "f1\t[DIR]") << "the list is that of the login's folder, too";
}

TEST_F(BrowserTest, CancelEndsTheWalkThroughTheClients) {
  world.form().Lst_Clients.SetCurrent(1);
  world.form().Txt_ClientFolder.SetText("a/b/c");
  world.internet.folders = {"/", "/web"};
  world.internet.on_call = [&](const std::string& call) {
    if (call.starts_with("mkd")) world.form().Cmd_Cancel.Click();
  };
  world.dialogs.boxes.clear();
  world.form().mnu_Clients.Click(5);
  EXPECT_EQ(world.internet.Count("mkd"), 1);
  EXPECT_TRUE(world.dialogs.boxes.empty());
}

TEST_F(BrowserTest, NamesTheLinesOfAListingThatItLeavesOut) {
  world.internet.Report({2, kListingLineSkipped, "total\tnothing", 0});
  EXPECT_TRUE(world.FtpLogged("it is not understood: total[9]nothing"));
}

TEST_F(BrowserTest, CreatesTheClientsFolders) {
  world.form().Lst_Clients.SetCurrent(1);
  world.form().Txt_ClientFolder.SetText("North\\Farm");
  world.internet.folders.erase("/web/f1");
  world.form().mnu_Clients.Click(5);
  EXPECT_TRUE(world.internet.folders.contains("/web/f1"));
  EXPECT_TRUE(world.internet.folders.contains("/web/north/farm"));
  EXPECT_EQ(world.dialogs.Texts().back(), "3 folder(s) created");
  world.dialogs.boxes.clear();
  world.form().mnu_Clients.Click(5);
  // The deeper folder is not found in the initial folder, and the server refuses to create it again.
  EXPECT_EQ(world.dialogs.Texts(),
            (std::vector<std::string>{"No such file or folder\r\nftp: CreateFolder",
                                      "north/farmCannot create folders for: ", "0 folder(s) created"}));
}

TEST_F(BrowserTest, CommandsWaitForTheirTurn) {
  world.internet.calls.clear();
  ASSERT_TRUE(world.app().slot().Run([&] {
    EXPECT_FALSE(world.form().Cmd_FTP[2].enabled() || list.enabled());
    list.Open(1);
  }));
  EXPECT_TRUE(world.internet.calls.empty());
}

}  // namespace
}  // namespace corvane::test
