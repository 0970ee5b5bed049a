#include "zip/libzip_component.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "posix/posix_loop.h"
#include "support/small_disk.h"
#include "support/temp_folder.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;

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
  /// Runs a command in the folder; what it prints is the answer.
  std::string Shell(const std::string& command) const {
    EXPECT_EQ(std::system(("cd '" + folder.path() + "' && { " + command + "; } >shell.out 2>&1").c_str()), 0)
        << folder.Read("shell.out");
    return folder.Read("shell.out");
  }
  std::string Python(const std::string& code) const {
    folder.Write("code.py", "import random, zipfile\n" + code);
    return Shell("python3 code.py");
  }
  /// Makes "a.zip" by a Python statement that writes into `z`, and another that changes its bytes `b`.
  void Make(const std::string& fill, const std::string& change = "pass") const {
    Python("with zipfile.ZipFile('a.zip', 'w', zipfile.ZIP_DEFLATED) as z:\n  " + fill +
           "\nb = bytearray(open('a.zip', 'rb').read())\n" + change + "\nopen('a.zip', 'wb').write(b)\n");
  }
  /// The entries of "a.zip" as Python reads them, after `unzip` has tested it.
  std::string Entries() const {
    Shell("unzip -tqq a.zip");
    return Python(
        "z = zipfile.ZipFile('a.zip')\nfor i in z.infolist():\n"
        "  print(ascii(i.filename), i.compress_type + (i.flag_bits & 6), z.read(i)[:20].decode())\n");
  }
  /// What a run may not leave behind.
  [[nodiscard]] bool HasTemporary() const {
    const fs::directory_iterator all(folder.path());
    return std::any_of(begin(all), end(all), [](const auto& entry) {
      return entry.path().filename().string().find(".part") != std::string::npos;
    });
  }
  /// A run that fails names what it met and leaves everything as it was.
  void ExpectFailure(const std::function<int()>& run, int code, const std::string& named) const {
    const std::string archive_before = folder.Read("a.zip"), file_before = folder.Read("u1.csv");
    EXPECT_EQ(run(), code) << named;
    EXPECT_NE(zip.LastErrorText().find(named), std::string::npos) << zip.LastErrorText();
    EXPECT_TRUE(folder.Read("a.zip") == archive_before && folder.Read("u1.csv") == file_before) << named;
    EXPECT_FALSE(HasTemporary()) << named;
  }

  TempFolder folder;
  PosixLoop loop;
  LibzipComponent zip{loop};
  const std::string archive = folder.Name("a.zip");
};

TEST_F(ZipArchives, OtherProgramsReadWhatIsZipped) {
  const std::tuple<std::string, std::string, std::string> rows[] = {{"u1.csv", "text", "'u1.csv' 8 text\n"},
                                                                    {"Gr\xC3\xB6\xC3\x9F"
                                                                     "e 1.csv",
                                                                     "text", "'Gr\\xf6\\xdfe 1.csv' 8 text\n"},
                                                                    {"packed.Zip", "text", "'packed.Zip' 0 text\n"},
                                                                    {"none", "", "'none' 8 \n"}};
  const mode_t mask = umask(022);
  umask(mask);
  for (const auto& [name, text, entry] : rows) {
    fs::remove(archive);
    ASSERT_EQ(Zip(folder.Write("sub/" + name, text), archive), kZipOk) << zip.LastErrorText();
    EXPECT_EQ(Entries(), entry);
    EXPECT_EQ(fs::status(archive).permissions(), static_cast<fs::perms>(0666U & ~mask));
  }
}

TEST_F(ZipArchives, UpdateReplacesItsEntryAndKeepsTheOthers) {
  Make("z.writestr('other/x.csv', 'x'); z.writestr('u1.csv', 'old'); z.writestr('y.csv', 'y')");
  fs::permissions(archive, fs::perms(0600));
  const auto day = std::chrono::hours(24);
  fs::last_write_time(folder.Write("killed.zip.part.ab12cd", "left over"), fs::file_time_type::clock::now() - day * 2);
  folder.Write("other.zip.part.ab12cd", "of another program");
  folder.Write("own.zip.backup", "stays");
  ASSERT_EQ(Zip(folder.Write("u1.csv", "new"), archive), kZipOk) << zip.LastErrorText();
  EXPECT_EQ(Entries(), "'other/x.csv' 8 x\n'y.csv' 8 y\n'u1.csv' 8 new\n");
  EXPECT_EQ(fs::status(archive).permissions(), fs::perms(0600));
  EXPECT_TRUE(fs::remove(folder.Name("other.zip.part.ab12cd")));
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
    ExpectFailure([&] { return Zip(folder.Name("gone"), archive); }, kZipFilesSkipped, "gone");
    EXPECT_EQ(Zip(source, archive), kZipOk) << change << zip.LastErrorText();
    EXPECT_EQ(Entries(), "'u1.csv' 8 new\n") << change;
  }
}

TEST_F(ZipArchives, FailedZipSaysWhyAndLeavesTheOldArchive) {
  Make("z.writestr('x.csv', 'x')");
  const std::string source = folder.Write("u1.csv", "new");
  std::string noise(200'000, ' ');
  for (char& c : noise) c = static_cast<char>(std::rand());
  const std::tuple<std::string, std::string, int, std::string> rows[] = {
      {folder.Name("gone.csv"), archive, kZipFilesSkipped, "gone.csv"},
      {folder.path(), archive, kZipReadProblem, folder.path()},
      {archive, archive, kZipBadProperties, "a.zip"},
      {"u1.csv", archive, kZipBadProperties, "u1.csv"},
      {source, folder.Name("none/a.zip"), kZipTemporaryFile, "none/a.zip"},
      {source, "/proc/a.zip", kZipTemporaryFile, "/proc/a.zip"},
      {source, folder.path(), kZipCreateProblem, folder.path()},
      {folder.Write("large.csv", noise), archive, kZipDiskFull, "a.zip"}};
  for (const auto& [from, into, code, named] : rows) {
    const SmallDisk disk(100'000);
    ExpectFailure([&, from = from, into = into] { return Zip(from, into); }, code, named);
  }
}

TEST_F(ZipArchives, UnzipFindsTheNameAndWritesNowhereElse) {
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {"z.writestr('u1.csv', 'plain')", "u1.csv", "plain"},
      {"z.writestr('u1.csv', 'stored', zipfile.ZIP_STORED)", "dir\\u1.csv", "stored"},
      {"z.writestr('a/u1.csv', 'deep'); z.writestr('U1.CSV', 'case'); z.writestr('u1.csv', 'exact')", "u1.csv",
       "exact"},
      {"z.writestr('a/u1.csv', 'deep'); z.writestr('U1.CSV', 'case')", "u1.csv", "case"},
      {"z.writestr('../../u1.csv', 'up')", "u1.csv", "up"},
      {"z.writestr('/etc/u1.csv', 'absolute')", "u1.csv", "absolute"},
      {"z.writestr('c:\\\\data\\\\u1.csv', 'other separators')", "u1.csv", "other separators"},
      {"z.writestr('\\xf6.csv', 'umlaut')", "\xC3\xB6.csv", "umlaut"}};
  for (const auto& [fill, wanted, text] : rows) {
    Make(fill);
    const std::string name = wanted.substr(wanted.find('\\') + 1);
    folder.Write("outside", "safe");
    fs::remove_all(folder.Name("in"));
    fs::create_directory(folder.Name("in"));
    fs::create_symlink("../outside", folder.Name("in/" + name));
    ASSERT_EQ(Unzip(archive, wanted, folder.Name("in")), kZipOk) << fill << zip.LastErrorText();
    EXPECT_EQ(folder.Read("in/" + name), text) << fill;
    EXPECT_EQ(folder.Read("outside"), "safe") << "a link at the place is replaced, not followed";
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Name("in")), {}), 1) << fill;
  }
}

TEST_F(ZipArchives, FailedUnzipSaysWhyAndLeavesTheOldFile) {
  const std::string text = "z.writestr('u1.csv', random.randbytes(3000))";
  const std::string entry = "b[b.rfind(b'PK\\1\\2') + ";
  std::vector<std::tuple<std::string, std::string, int>> contents = {
      {"pass", "pass", kZipNothingToDo},
      {"z.writestr('u2.csv', 'x')", "pass", kZipNothingToDo},
      {text, entry + "8] |= 1", kZipReadProblem},
      {"z.writestr('u1.csv', bytes(70 << 20))", "pass", kZipCorrupt}};
  for (const std::string& change :
       {std::string("b = b[:20]"), std::string("b = b[:1500]"), std::string("b = b[:-1]"), std::string("b = b''"),
        std::string("b[1500] ^= 1"), entry + "25] = 1", entry + "25] = 99"}) {
    contents.emplace_back(text, change, kZipCorrupt);
  }
  folder.Write("u1.csv", "old");
  for (const auto& [fill, change, code] : contents) {
    SCOPED_TRACE(fill + change);
    Make(fill, change);
    ExpectFailure([&] { return Unzip(archive, "u1.csv", folder.path()); }, code, archive);
  }
  Make("z.writestr('u1.csv', 'x' * 9999); z.writestr('..', 'x')");
  Shell("zip -q -P secret locked.zip code.py");
  std::vector<std::tuple<std::string, std::string, std::string, int>> places = {
      {archive, "u1.csv", folder.Name("none"), kZipCreateProblem},
      {folder.Name("none.zip"), "u1.csv", folder.path(), kZipNoArchive},
      {folder.path(), "u1.csv", folder.path(), kZipNoArchive},
      {folder.Name("locked.zip"), "code.py", folder.path(), kZipReadProblem},
      {archive, "u1.csv", "/proc", kZipCreateProblem},
      {archive, "u1.csv", folder.path(), kZipDiskFull}};
  for (const char* name : {"", "..", "sub/..", "u1\n.csv"}) {
    places.emplace_back(archive, name, folder.path(), kZipBadProperties);
  }
  for (const auto& [from, name, into, code] : places) {
    SCOPED_TRACE(from + " " + name);
    const SmallDisk disk(5000);
    ExpectFailure([&, from = from, name = name, into = into] { return Unzip(from, name, into); }, code, "");
    EXPECT_NE(zip.LastErrorText(), "");
  }
}

TEST_F(ZipArchives, LargeRunsReportProgressKeepTheLoopGoingAndCanBeAborted) {
  std::string text;
  for (int line = 0; text.size() < 25'000'000; ++line) {
    text += "$2011/5/1 00:00," + std::to_string(line * 7919LL % 99'991) + ",2931,1,1500,910,29300*5A\r\n";
  }
  const std::string source = folder.Write("u1.csv", text), into = folder.Name("in");
  fs::create_directory(into);
  const auto now = [this] { return loop.MonotonicMilliseconds(); };
  std::int64_t last = now(), gap = 0;
  const auto heart = loop.MakeTimer([&] {
    gap = std::max(gap, now() - last);
    last = now();
  });
  heart->Start(5);
  std::vector<std::int64_t> totals, done;
  const std::function<int()> runs[] = {[&] { return Zip(source, archive); },
                                       [&] { return Unzip(archive, "u1.csv", into); }};
  for (const auto& run : runs) {
    totals.clear();
    done.clear();
    zip.SetProgressHandlers([&](std::int64_t total) { totals.push_back(total); },
                            [&](std::int64_t some) { done.push_back(some); });
    ASSERT_EQ(run(), kZipOk) << zip.LastErrorText();
    EXPECT_EQ(totals, std::vector{static_cast<std::int64_t>(text.size())});
    EXPECT_TRUE(std::is_sorted(done.begin(), done.end()) && done.back() == totals[0]);
    EXPECT_TRUE(done.size() >= 5 && done.size() <= 60) << done.size();
    EXPECT_LT(gap, 250);
  }
  for (const auto& run : runs) {
    std::int64_t aborted = 0, ended = 0;
    const auto timed = [&] {
      const int result = run();
      ended = now();  // what is then looked at takes its own time
      return result;
    };
    zip.SetProgressHandlers({}, [&](std::int64_t) {
      if (aborted == 0) aborted = now();
      zip.Abort();
    });
    ExpectFailure(timed, kZipAborted, "");
    EXPECT_LT(ended - aborted, 1000);
    EXPECT_TRUE(folder.Read("in/u1.csv") == text);
  }
}

}  // namespace
}  // namespace corvane::test
