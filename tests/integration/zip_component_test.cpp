#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "posix/posix_loop.h"
#include "support/small_disk.h"
#include "support/temp_folder.h"
#include "zip/libzip_component.h"

namespace corvane::test {
namespace {

class ZipArchives : public testing::Test {
 protected:
  int Zip(const std::string& source, const std::string& into) {
    zip.SetZipFilename(into);
    zip.SetFilesToProcess(source);
    return zip.Zip();
  }
  int Unzip(const std::string& from, const std::string& name, const std::string& into) {
    zip.SetZipFilename(from);
    zip.SetFilesToProcess(name);
    zip.SetUnzipFolder(into);
    return zip.Unzip();
  }
  /// Runs a command in the folder; true when it succeeded.
  [[nodiscard]] bool Shell(const std::string& command) const {
    return std::system(("cd '" + folder.path() + "' && { " + command + "; } >shell.out 2>&1").c_str()) == 0;
  }
  /// Runs Python code in the folder; what it prints is the answer.
  std::string Python(const std::string& code) const {
    folder.Write("code.py", "import zipfile\n" + code);
    EXPECT_TRUE(Shell("python3 code.py")) << folder.Read("shell.out");
    return folder.Read("shell.out");
  }
  /// Makes "a.zip" by a Python statement that writes into `z`, and another that changes its bytes `b`.
  void Make(const std::string& fill, const std::string& change = "pass") const {
    Python("with zipfile.ZipFile('a.zip', 'w', zipfile.ZIP_DEFLATED) as z:\n  " + fill +
           "\nb = bytearray(open('a.zip', 'rb').read())\n" + change + "\nopen('a.zip', 'wb').write(b)\n");
  }
  /// The entries of "a.zip" as Python reads them, after `unzip` has tested it.
  std::string Entries() const {
    EXPECT_TRUE(Shell("unzip -tqq a.zip")) << folder.Read("shell.out");
    return Python(
        "for i in zipfile.ZipFile('a.zip').infolist():\n"
        "  print(ascii(i.filename), i.compress_type + (i.flag_bits & 6), "
        "zipfile.ZipFile('a.zip').read(i)[:20].decode())\n");
  }
  /// What a run may not leave behind.
  [[nodiscard]] bool HasTemporary() const {
    const std::filesystem::directory_iterator all(folder.path());
    return std::any_of(begin(all), end(all), [](const auto& entry) {
      return entry.path().filename().string().find(".part") != std::string::npos;
    });
  }

  TempFolder folder;
  PosixLoop loop;
  LibzipComponent zip{loop};
  const std::string archive = folder.Name("a.zip");
};

TEST_F(ZipArchives, OtherProgramsReadWhatIsZipped) {
  struct Row {
    std::string name;
    std::string entry;
  };
  for (const Row& row : {Row{"u1.csv", "'u1.csv' 8 text\n"},
                         Row{"Gr\xC3\xB6\xC3\x9F"
                             "e 1.csv",
                             "'Gr\\xf6\\xdfe 1.csv' 8 text\n"},
                         Row{"packed.Zip", "'packed.Zip' 0 text\n"}}) {
    std::filesystem::remove(archive);
    ASSERT_EQ(Zip(folder.Write("sub/" + row.name, "text"), archive), kZipOk) << zip.LastErrorText();
    EXPECT_EQ(Entries(), row.entry);
  }
  const mode_t mask = umask(022);
  umask(mask);
  struct stat found {};
  ASSERT_EQ(stat(archive.c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777U, 0666U & ~mask);
  std::filesystem::remove(archive);
  EXPECT_EQ(Zip(folder.Write("none", ""), archive), kZipOk);
  EXPECT_EQ(Entries(), "'none' 8 \n");
}

TEST_F(ZipArchives, UpdateReplacesItsEntryAndKeepsTheOthers) {
  Make("z.writestr('other/x.csv', 'x'); z.writestr('u1.csv', 'old'); z.writestr('y.csv', 'y')");
  std::filesystem::permissions(archive, std::filesystem::perms(0600));
  folder.Write("killed.zip.part.ab12cd", "left over");
  folder.Write("own.zip.backup", "stays");
  ASSERT_EQ(Zip(folder.Write("u1.csv", "new"), archive), kZipOk) << zip.LastErrorText();
  EXPECT_EQ(Entries(), "'other/x.csv' 8 x\n'y.csv' 8 y\n'u1.csv' 8 new\n");
  EXPECT_EQ(std::filesystem::status(archive).permissions(), std::filesystem::perms(0600));
  EXPECT_FALSE(HasTemporary());
  EXPECT_EQ(folder.Read("own.zip.backup"), "stays");
  const std::string odd = folder.Write("\xF6.csv", "no UTF-8");
  for (int run = 0; run < 2; ++run) EXPECT_EQ(Zip(odd, archive), kZipOk) << zip.LastErrorText();
  EXPECT_EQ(Unzip(archive, "\xF6.csv", folder.Name("")), kZipOk) << zip.LastErrorText();
  EXPECT_EQ(Python("print(len(zipfile.ZipFile('a.zip').namelist()))"), "4\n");
}

TEST_F(ZipArchives, FileThatIsNoArchiveGivesWayToAFreshOne) {
  const std::string source = folder.Write("u1.csv", "new");
  for (const char* const change : {"b = b''", "b = b'foreign' * 99", "b = b[:40]", "b = b[:-30]", "b = b[:-1]",
                                   "b[b.rfind(b'PK\\1\\2') + 43] = 9", "b[b.rfind(b'PK\\1\\2') + 21] = 9"}) {
    Make("z.writestr('x.csv', 'x' * 50)", change);
    const std::string before = folder.Read("a.zip");
    EXPECT_EQ(Zip(folder.Name("gone"), archive), kZipFilesSkipped);
    EXPECT_EQ(folder.Read("a.zip"), before) << change;
    EXPECT_EQ(Zip(source, archive), kZipOk) << change << zip.LastErrorText();
    EXPECT_EQ(Entries(), "'u1.csv' 8 new\n") << change;
  }
}

TEST_F(ZipArchives, FailedZipSaysWhyAndLeavesTheOldArchive) {
  Make("z.writestr('x.csv', 'x')");
  const std::string before = folder.Read("a.zip");
  const std::string source = folder.Write("u1.csv", "new");
  std::string noise(200'000, ' ');
  for (char& c : noise) c = static_cast<char>(std::rand());
  const std::string large = folder.Write("large.csv", noise);
  struct Row {
    std::string source;
    std::string archive;
    int code;
    std::string named;
  };
  for (const Row& row :
       {Row{folder.Name("gone.csv"), archive, kZipFilesSkipped, "gone.csv"},
        Row{folder.path(), archive, kZipReadProblem, folder.path()}, Row{archive, archive, kZipBadProperties, "a.zip"},
        Row{"u1.csv", archive, kZipBadProperties, "u1.csv"},
        Row{source, folder.Name("none/a.zip"), kZipTemporaryFile, "none/a.zip"},
        Row{source, "/proc/a.zip", kZipTemporaryFile, "/proc/a.zip"},
        Row{source, folder.path(), kZipCreateProblem, folder.path()}, Row{large, archive, kZipDiskFull, "a.zip"}}) {
    const SmallDisk disk(100'000);
    EXPECT_EQ(Zip(row.source, row.archive), row.code) << row.named;
    EXPECT_NE(zip.LastErrorText().find(row.named), std::string::npos) << zip.LastErrorText();
    EXPECT_EQ(folder.Read("a.zip"), before) << row.named;
    EXPECT_FALSE(HasTemporary()) << row.named;
  }
}

TEST_F(ZipArchives, UnzipFindsTheNameAndWritesNowhereElse) {
  struct Row {
    std::string fill;
    std::string wanted;
    std::string text;
  };
  for (const Row& row :
       {Row{"z.writestr('u1.csv', 'plain')", "u1.csv", "plain"},
        Row{"z.writestr('u1.csv', 'stored', zipfile.ZIP_STORED)", "dir\\u1.csv", "stored"},
        Row{"z.writestr('a/u1.csv', 'deep'); z.writestr('U1.CSV', 'case'); z.writestr('u1.csv', 'exact')", "u1.csv",
            "exact"},
        Row{"z.writestr('a/u1.csv', 'deep'); z.writestr('U1.CSV', 'case')", "u1.csv", "case"},
        Row{"z.writestr('../../u1.csv', 'up')", "u1.csv", "up"},
        Row{"z.writestr('/etc/u1.csv', 'absolute')", "u1.csv", "absolute"},
        Row{"z.writestr('c:\\\\data\\\\u1.csv', 'other separators')", "u1.csv", "other separators"},
        Row{"z.writestr('\\xf6.csv', 'umlaut')", "\xC3\xB6.csv", "umlaut"}}) {
    Make(row.fill);
    const std::string name = row.wanted.substr(row.wanted.find('\\') + 1);
    folder.Write("outside", "safe");
    std::filesystem::remove_all(folder.Name("in"));
    std::filesystem::create_directory(folder.Name("in"));
    std::filesystem::create_symlink("../outside", folder.Name("in/" + name));
    ASSERT_EQ(Unzip(archive, row.wanted, folder.Name("in")), kZipOk) << row.fill << zip.LastErrorText();
    EXPECT_EQ(folder.Read("in/" + name), row.text) << row.fill;
    EXPECT_EQ(folder.Read("outside"), "safe") << "a link at the place is replaced, not followed";
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Name("in")), {}), 1) << row.fill;
  }
}

TEST_F(ZipArchives, BadArchiveLeavesTheOldFile) {
  struct Row {
    std::string fill;
    std::string change;
    int code;
  };
  const std::string text = "import random; z.writestr('u1.csv', bytes(random.randbytes(3000)))";
  for (const Row& row :
       {Row{text, "b = b[:20]", kZipCorrupt}, Row{text, "b = b[:1500]", kZipCorrupt},
        Row{text, "b = b[:-1]", kZipCorrupt}, Row{text, "b = b''", kZipCorrupt}, Row{text, "b[1500] ^= 1", kZipCorrupt},
        Row{"pass", "pass", kZipNothingToDo}, Row{"z.writestr('u2.csv', 'x')", "pass", kZipNothingToDo},
        Row{text, "b[b.rfind(b'PK\\1\\2') + 8] |= 1", kZipReadProblem},
        Row{"z.writestr('u1.csv', bytes(70 << 20))", "pass", kZipCorrupt},
        Row{text, "b[b.rfind(b'PK\\1\\2') + 25] = 1", kZipCorrupt},
        Row{text, "b[b.rfind(b'PK\\1\\2') + 25] = 99", kZipCorrupt}}) {
    Make(row.fill, row.change);
    folder.Write("u1.csv", "old");
    EXPECT_EQ(Unzip(archive, "u1.csv", folder.path()), row.code) << row.fill << row.change;
    EXPECT_NE(zip.LastErrorText().find(archive), std::string::npos) << zip.LastErrorText();
    EXPECT_EQ(folder.Read("u1.csv"), "old") << row.fill << row.change;
    EXPECT_FALSE(HasTemporary()) << row.fill << row.change;
  }
}

TEST_F(ZipArchives, UnzipRefusesWhatItCannotWrite) {
  Make("z.writestr('u1.csv', 'x' * 9999); z.writestr('..', 'x')");
  EXPECT_TRUE(Shell("zip -q -P secret locked.zip code.py")) << folder.Read("shell.out");
  folder.Write("u1.csv", "old");
  struct Row {
    std::string archive;
    std::string name;
    std::string into;
    int code;
  };
  for (const Row& row :
       {Row{archive, "", folder.path(), kZipBadProperties}, Row{archive, "..", folder.path(), kZipBadProperties},
        Row{archive, "sub/..", folder.path(), kZipBadProperties},
        Row{archive, "u1\n.csv", folder.path(), kZipBadProperties},
        Row{archive, "u1.csv", folder.Name("none"), kZipCreateProblem},
        Row{folder.Name("none.zip"), "u1.csv", folder.path(), kZipNoArchive},
        Row{folder.path(), "u1.csv", folder.path(), kZipNoArchive},
        Row{folder.Name("locked.zip"), "code.py", folder.path(), kZipReadProblem},
        Row{archive, "u1.csv", "/proc", kZipCreateProblem}, Row{archive, "u1.csv", folder.path(), kZipDiskFull}}) {
    const SmallDisk disk(5000);
    EXPECT_EQ(Unzip(row.archive, row.name, row.into), row.code) << row.name << row.archive;
    EXPECT_NE(zip.LastErrorText(), "");
    EXPECT_EQ(folder.Read("u1.csv"), "old") << row.name;
    EXPECT_FALSE(HasTemporary());
  }
}

TEST_F(ZipArchives, LargeRunsReportProgressKeepTheLoopGoingAndCanBeAborted) {
  std::string text;
  for (int line = 0; text.size() < 25'000'000; ++line) {
    text += "$2011/5/1 00:00," + std::to_string(line * 7919LL % 99'991) + ",2931" + std::to_string(line % 10) +
            ",1,1500,910,29300*5A\r\n";
  }
  const std::string source = folder.Write("u1.csv", text);
  const auto size = static_cast<std::int64_t>(text.size());
  std::int64_t last = loop.MonotonicMilliseconds(), gap = 0;
  const auto heart = loop.MakeTimer([&] {
    gap = std::max(gap, loop.MonotonicMilliseconds() - last);
    last = loop.MonotonicMilliseconds();
  });
  heart->Start(5);
  std::vector<std::int64_t> totals, done;
  zip.SetProgressHandlers([&](std::int64_t total) { totals.push_back(total); },
                          [&](std::int64_t some) { done.push_back(some); });
  const std::string into = folder.Name("in");
  std::filesystem::create_directory(into);
  for (const bool zips : {true, false}) {
    totals.clear();
    done.clear();
    ASSERT_EQ(zips ? Zip(source, archive) : Unzip(archive, "u1.csv", into), kZipOk) << zip.LastErrorText();
    EXPECT_EQ(totals, std::vector<std::int64_t>{size});
    EXPECT_TRUE(std::is_sorted(done.begin(), done.end()));
    EXPECT_EQ(done.back(), size);
    EXPECT_GE(done.size(), 5U);
    EXPECT_LE(done.size(), 60U);
    EXPECT_LT(gap, 250) << zips;
  }
  EXPECT_TRUE(folder.Read("in/u1.csv") == text);

  const std::string before = folder.Read("a.zip");
  std::int64_t aborted = 0;
  zip.SetProgressHandlers({}, [&](std::int64_t) {
    if (aborted == 0) aborted = loop.MonotonicMilliseconds();
    zip.Abort();
  });
  for (const bool zips : {true, false}) {
    aborted = 0;
    EXPECT_EQ(zips ? Zip(source, archive) : Unzip(archive, "u1.csv", into), kZipAborted);
    EXPECT_LT(loop.MonotonicMilliseconds() - aborted, 1000);
    EXPECT_TRUE(folder.Read("a.zip") == before && folder.Read("in/u1.csv") == text);
    EXPECT_FALSE(HasTemporary());
  }
}

}  // namespace
}  // namespace corvane::test
