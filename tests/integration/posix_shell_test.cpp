#include "desktop/posix_shell.h"

#include <cerrno>
#include <tuple>

#include <gtest/gtest.h>

#include "support/child.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;

class PosixShellTest : public testing::Test {
 protected:
  PosixShellTest() { setenv("XDG_CONFIG_HOME", folder.Name("config").c_str(), 1); }
  ~PosixShellTest() override { unsetenv("XDG_CONFIG_HOME"); }

  const std::string entry = "config/autostart/corvane.desktop";
  TempFolder folder;
  PosixShell shell{"corvane"};
};

TEST_F(PosixShellTest, LogOnEntryStartsThisProgramWithItsHome) {
  const std::string program = "\nExec=\"" + fs::read_symlink("/proc/self/exe").string() + "\"";
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {"", " /M /D", " /M /D\n"},
      {"/data/my site", "/M", " --home \"/data/my site\" /M\n"},
      {"/a\"b$c`d\\e%f", "", " --home \"/a\\\\\"b\\\\$c\\\\`d\\\\\\\\e%%f\"\n"},
  };
  for (const auto& [home, arguments, exec] : rows) {
    EXPECT_EQ(PosixShell("corvane", home).WriteLogOnEntry(arguments).text(), "");
    EXPECT_NE(folder.Read(entry).find(program + exec), std::string::npos) << folder.Read(entry);
  }
  EXPECT_FALSE(PosixShell("corvane", "/a\nHidden=true").WriteLogOnEntry("/M").ok());
  EXPECT_TRUE(shell.HasLogOnEntry());
  for (int turn = 0; turn < 2; ++turn) EXPECT_TRUE(shell.DeleteLogOnEntry().ok());
  EXPECT_FALSE(shell.HasLogOnEntry());
  EXPECT_TRUE(fs::is_empty(folder.Name("config/autostart")));
}

TEST_F(PosixShellTest, LogOnEntryIsThereUnlessHidden) {
  const std::pair<const char*, bool> rows[] = {{"[Desktop Entry]\nHidden=false", true},
                                               {"[Desktop Entry]\r\n Hidden = true\r\n", false},
                                               {"[Other]\nHidden=true\n", true},
                                               {"[Desktop Entry]\nHidden=true", false}};
  for (const auto& [contents, present] : rows) {
    folder.Write(entry, contents);
    EXPECT_EQ(shell.HasLogOnEntry(), present) << contents;
  }
  setenv("XDG_CONFIG_HOME", folder.Write("file", "").c_str(), 1);
  EXPECT_FALSE(shell.WriteLogOnEntry("/M").ok());
}

TEST_F(PosixShellTest, EditorGetsItsArgumentsUntouchedAndLeavesNoZombie) {
  const std::string seen = folder.Name("seen");
  const std::string editor =
      folder.Write("editor", "#!/bin/sh\nprintf '%s|' \"$@\" > " + seen + ".new\nmv " + seen + ".new " + seen + "\n");
  fs::permissions(editor, fs::perms::owner_all);
  setenv("VISUAL", (editor + "  --wait\t$HOME ").c_str(), 1);
  ASSERT_EQ(shell.OpenEditor("/data/a file; true").text(), "");
  EXPECT_TRUE(Until([&] { return fs::exists(seen); }));
  EXPECT_EQ(folder.Read("seen"), "--wait|$HOME|/data/a file; true|");
  siginfo_t child{};
  EXPECT_TRUE(Until([&] { return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) != 0; }));

  setenv("VISUAL", "/no/such/editor", 1);
  EXPECT_EQ(shell.OpenEditor("/data/file").code(), ENOENT);
  unsetenv("VISUAL");
}

TEST_F(PosixShellTest, InstanceLockIsPerFolderAndEndsWithItsHolder) {
  const pid_t holder = fork();
  if (holder == 0) {
    PosixShell other("corvane");
    folder.Write(other.TakeInstanceLock(folder.path()).ok() ? "taken" : "refused", "");
    pause();
  }
  EXPECT_TRUE(Until([&] { return fs::exists(folder.Name("taken")); }));
  EXPECT_EQ(shell.TakeInstanceLock(folder.path()).code(), EWOULDBLOCK);
  fs::create_directory(folder.Name("other"));
  EXPECT_TRUE(shell.TakeInstanceLock(folder.Name("other")).ok());
  fs::create_directories(folder.Name("odd/corvane.lock"));
  EXPECT_EQ(shell.TakeInstanceLock(folder.Name("odd")).code(), EISDIR);
  kill(holder, SIGKILL);
  waitpid(holder, nullptr, 0);
  EXPECT_TRUE(shell.TakeInstanceLock(folder.path()).ok());
  EXPECT_FALSE(PosixShell("corvane").TakeInstanceLock(folder.path()).ok());
}

}  // namespace
}  // namespace corvane::test
