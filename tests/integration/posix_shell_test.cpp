#include "posix/posix_shell.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "posix/posix_loop.h"
#include "support/pty_pair.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

std::string Contents(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

class PosixShellTest : public testing::Test {
 protected:
  PosixShellTest() {
    std::string pattern = (fs::temp_directory_path() / "corvane-shell-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
    entry = folder / "config/autostart/corvane.desktop";
  }
  ~PosixShellTest() override {
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("VISUAL");
    fs::remove_all(folder);
  }

  fs::path folder;
  fs::path entry;
  PosixLoop loop;
};

TEST_F(PosixShellTest, LogOnEntryStartsThisProgramWithItsHome) {
  const std::string program = "Exec=\"" + fs::read_symlink("/proc/self/exe").string() + "\"";
  struct Row {
    std::string home, arguments, exec;
  };
  for (const Row& row : std::vector<Row>{
           {"", "/M", program + " /M\n"},
           {"", " /M /D", program + " /M /D\n"},
           {"/data/my site", "/M", program + " --home \"/data/my site\" /M\n"},
           {"/a\"b$c`d\\e%f", "", program + " --home \"/a\\\\\"b\\\\$c\\\\`d\\\\\\\\e%%f\"\n"},
       }) {
    PosixShell shell("corvane", row.home);
    const Status status = shell.WriteLogOnEntry(row.arguments);
    EXPECT_TRUE(status.ok()) << status.text();
    EXPECT_TRUE(shell.HasLogOnEntry());
    EXPECT_NE(Contents(entry).find("\n" + row.exec), std::string::npos) << Contents(entry);
  }
  PosixShell two_lines("corvane", "/a\nHidden=true");
  EXPECT_FALSE(two_lines.WriteLogOnEntry("/M").ok());
  EXPECT_EQ(std::distance(fs::directory_iterator(entry.parent_path()), {}), 1);
}

TEST_F(PosixShellTest, LogOnEntryIsThereUnlessHidden) {
  PosixShell shell("corvane");
  EXPECT_FALSE(shell.HasLogOnEntry());
  struct Row {
    const char* contents;
    bool present;
  };
  fs::create_directories(entry.parent_path());
  for (const Row& row : {Row{"[Desktop Entry]\nExec=x\n", true}, Row{"[Desktop Entry]\nHidden=false", true},
                         Row{"[Desktop Entry]\r\n Hidden = true\r\n", false}, Row{"[Other]\nHidden=true\n", true},
                         Row{"[Desktop Entry]\nHidden=true", false}, Row{"", true}}) {
    std::ofstream(entry) << row.contents;
    EXPECT_EQ(shell.HasLogOnEntry(), row.present) << row.contents;
  }
  EXPECT_TRUE(shell.DeleteLogOnEntry().ok());
  EXPECT_FALSE(fs::exists(entry));
  EXPECT_TRUE(shell.DeleteLogOnEntry().ok());
  std::ofstream(folder / "config/file");
  setenv("XDG_CONFIG_HOME", (folder / "config/file").c_str(), 1);
  EXPECT_FALSE(shell.WriteLogOnEntry("/M").ok());
}

TEST_F(PosixShellTest, EditorGetsItsArgumentsUntouchedAndLeavesNoZombie) {
  const fs::path editor = folder / "editor";
  const fs::path seen = folder / "seen";
  std::ofstream(editor) << "#!/bin/sh\nprintf '%s|' \"$@\" > " << seen << ".new\nmv " << seen << ".new " << seen
                        << "\n";
  fs::permissions(editor, fs::perms::owner_all);
  setenv("VISUAL", (editor.string() + "  --wait\t$HOME ").c_str(), 1);
  PosixShell shell("corvane");
  const Status status = shell.OpenEditor("/data/a file; true");
  ASSERT_TRUE(status.ok()) << status.text();
  const auto tick = loop.MakeTimer([] {});
  tick->Start(5);
  EXPECT_TRUE(RunUntil(loop, [&] { return fs::exists(seen); }));
  EXPECT_EQ(Contents(seen), "--wait|$HOME|/data/a file; true|");
  siginfo_t child{};
  EXPECT_TRUE(
      RunUntil(loop, [&] { return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD; }));

  setenv("VISUAL", "/no/such/editor", 1);
  EXPECT_EQ(shell.OpenEditor("/data/file").code(), ENOENT);
}

TEST_F(PosixShellTest, InstanceLockIsPerFolderAndEndsWithItsHolder) {
  PosixShell shell("corvane");
  int ready[2] = {-1, -1};
  ASSERT_EQ(pipe2(ready, O_CLOEXEC), 0);
  const pid_t holder = fork();
  if (holder == 0) {
    PosixShell other("corvane");
    const char answer = other.TakeInstanceLock(folder.string()) ? 'y' : 'n';
    static_cast<void>(!write(ready[1], &answer, 1));
    pause();
    _exit(0);
  }
  char answer = 0;
  ASSERT_EQ(read(ready[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'y');
  EXPECT_FALSE(shell.TakeInstanceLock(folder.string()));
  fs::create_directory(folder / "other");
  EXPECT_TRUE(shell.TakeInstanceLock((folder / "other").string()));
  kill(holder, SIGKILL);
  waitpid(holder, nullptr, 0);
  EXPECT_TRUE(shell.TakeInstanceLock(folder.string()));
  EXPECT_TRUE(shell.TakeInstanceLock(folder.string()));
  PosixShell late("corvane");
  EXPECT_FALSE(late.TakeInstanceLock(folder.string()));
  close(ready[0]);
  close(ready[1]);
}

}  // namespace
}  // namespace corvane
