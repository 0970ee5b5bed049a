#include "base/files.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "base/paths.h"
#include "support/temp_folder.h"

namespace corvane::test {
namespace {

using namespace std::string_literals;

/// Lets a file of this process grow to `bytes` at most, as a full disk would.
class SmallDisk {
 public:
  explicit SmallDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit small{bytes, before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
  }
  ~SmallDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

 private:
  void (*handler_)(int);
  rlimit before_{};
};

std::size_t FilesIn(const TempFolder& folder) {
  std::vector<FolderEntry> entries;
  EXPECT_TRUE(ListFiles(folder.path(), entries).ok());
  return entries.size();
}

unsigned ModeOf(const std::string& path) {
  struct stat found {};
  return stat(path.c_str(), &found) == 0 ? found.st_mode & 0777U : 0;
}

struct Delivered {
  std::string text;
  bool terminated;
  bool operator==(const Delivered&) const = default;
};

std::vector<Delivered> LinesOf(const std::string& path) {
  std::vector<Delivered> lines;
  LineReader reader;
  EXPECT_TRUE(reader.Open(path).ok());
  for (std::string_view line; reader.Next(line);) {
    lines.push_back({std::string(line), reader.terminated()});
  }
  EXPECT_TRUE(reader.status().ok());
  return lines;
}

/// A line of every interesting length before lines of both ends, so that ends fall on and around every block's edge.
TEST(LineReaders, DeliverLinesOfEveryLength) {
  const TempFolder folder;
  constexpr std::size_t kLongest = LineReader::kLongestLine;
  std::vector<std::size_t> lengths = {0, 1, 3 * kLongest, 5 * kLongest + 1};
  for (std::size_t off = 0; off < 8; ++off) {
    for (const std::size_t edge : {kLongest, 2 * kLongest, 4 * kLongest}) lengths.push_back(edge - 4 + off);
  }
  for (const std::string& ending : {std::string("\n"), std::string("\r\n"), std::string()}) {
    for (const std::size_t length : lengths) {
      SCOPED_TRACE("length " + std::to_string(length) + " ending " + std::to_string(ending.size()));
      const std::string line(length, 'x');
      const std::string before = "first\r\n" + line + ending;
      const std::string after = ending.empty() ? "" : "\r\nlast\n";
      std::vector<Delivered> expected = {{"first", true}};
      if (!before.ends_with("first\r\n")) expected.push_back({line.substr(0, kLongest), !ending.empty()});
      if (!ending.empty()) expected.insert(expected.end(), {{"", true}, {"last", true}});
      ASSERT_TRUE(LinesOf(folder.Write("a", before + after)) == expected);
    }
  }
}

TEST(LineReaders, KeepWhatIsNoLineEnd) {
  const TempFolder folder;
  const std::string text("a\rb\n\0c\n\r\r\nd\r", 12);
  const std::vector<Delivered> expected = {{"a\rb", true}, {"\0c"s, true}, {"\r", true}, {"d", false}};
  EXPECT_TRUE(LinesOf(folder.Write("a", text)) == expected);
  EXPECT_TRUE(LinesOf(folder.Write("b", "")).empty());
}

TEST(Files, RefuseWhatIsNoFullPath) {
  std::string contents;
  std::vector<FolderEntry> entries;
  OutputFile file;
  LineReader reader;
  for (const std::string& path : {std::string("data/a"), std::string(), std::string("C:\\data"), "/a\0b"s}) {
    SCOPED_TRACE(path);
    const Status results[] = {ReadFile(path, contents, 10),
                              ListFiles(path, entries),
                              MakeFolder(path),
                              RemoveFile(path),
                              file.Create(path),
                              reader.Open(path),
                              CutFile(path, 0),
                              WriteFileAtomically(path, "x")};
    for (const Status& result : results) EXPECT_NE(result.text().find("not a full path"), std::string::npos);
    EXPECT_FALSE(ExamineFile(path));
  }
}

TEST(Files, AreReadWholeUpToTheirLimit) {
  const TempFolder folder;
  const std::string text(300'000, 'x');
  const std::string path = folder.Write("a", text);
  std::string contents;
  EXPECT_TRUE(ReadFile(path, contents, 300'000).ok());
  EXPECT_EQ(contents, text);
  EXPECT_EQ(ReadFile(path, contents, 299'999).code(), EFBIG);
  EXPECT_EQ(contents, "");
  EXPECT_EQ(ReadFile(folder.path(), contents, 10).code(), EISDIR);
  EXPECT_TRUE(ReadAt(path, 299'990, 100, contents).ok());
  EXPECT_EQ(contents, std::string(10, 'x'));
}

TEST(Files, AreListedWithoutFolders) {
  const TempFolder folder;
  folder.Write("a.epd", "12345");
  folder.Write("sub/b.epd", "");
  std::filesystem::create_symlink(folder.Name("a.epd"), folder.Name("link.epd"));
  std::filesystem::create_symlink(folder.Name("gone"), folder.Name("dangling.epd"));
  std::filesystem::create_symlink(folder.Name("sub"), folder.Name("folder.epd"));
  std::vector<FolderEntry> entries = {{"left over", {}}};
  ASSERT_TRUE(ListFiles(folder.path(), entries).ok());
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0].name, "a.epd");
  EXPECT_EQ(entries[1].name, "link.epd");
  EXPECT_EQ(entries[1].info.size, 5);
}

TEST(OutputFiles, TakeBackATornPart) {
  const TempFolder folder;
  const std::string path = folder.Write("raw.epd", "header\r\n");
  OutputFile file;
  ASSERT_TRUE(file.OpenForAppending(path).ok());
  {
    const SmallDisk disk(20);
    EXPECT_TRUE(file.Write("one\r\n").ok());
    const Status failed = file.Write("two three four\r\n");
    EXPECT_EQ(failed.code(), EFBIG);
    EXPECT_EQ(failed.text().find(path), 0U);
  }
  EXPECT_TRUE(file.Write("five\r\n").ok());
  EXPECT_EQ(folder.Read("raw.epd"), "header\r\none\r\nfive\r\n");
  ASSERT_TRUE(file.OpenForAppending("/dev/full").ok());
  EXPECT_EQ(file.Write("x").text(), "/dev/full: No space left on device");
  file.Close();
  EXPECT_FALSE(file.Write("x").ok());
}

TEST(ReplacementFiles, AppearOnlyWhenWhole) {
  const TempFolder folder;
  const std::string path = folder.Write("a.txt", "old");
  folder.Write("a.txt.part", "left by a kill");
  {
    ReplacementFile file(path);
    ASSERT_TRUE(file.Open().ok());
    file.buffer().assign(100'000, 'x');
    ASSERT_TRUE(file.FlushWhenFull().ok());
    EXPECT_TRUE(file.buffer().empty());
  }
  EXPECT_EQ(folder.Read("a.txt"), "old");
  EXPECT_EQ(FilesIn(folder), 1U);
  {
    ReplacementFile file(path);
    ASSERT_TRUE(file.Open().ok());
    {
      const SmallDisk disk(70'000);
      file.buffer().assign(100'000, 'x');
      EXPECT_FALSE(file.FlushWhenFull().ok());
    }
    file.buffer() = "the rest";
    EXPECT_FALSE(file.Commit().ok());  // the disk has room again, but a part is missing
  }
  EXPECT_EQ(folder.Read("a.txt"), "old");
  EXPECT_EQ(FilesIn(folder), 1U);
}

TEST(ReplacementFiles, ReportATargetThatCannotBeReplaced) {
  const TempFolder folder;
  ASSERT_TRUE(MakeFolder(folder.Name("sub")).ok());
  EXPECT_EQ(WriteFileAtomically(folder.Name("sub"), "x").code(), EISDIR);
  EXPECT_EQ(FilesIn(folder), 0U);
  EXPECT_EQ(WriteFileAtomically(folder.Name("missing/a"), "x").code(), ENOENT);
}

TEST(ReplacementFiles, BringTheirOwnPermissions) {
  const TempFolder folder;
  const std::string path = folder.Write("corvane.ini", "old");
  ASSERT_EQ(chmod(path.c_str(), 0644), 0);
  folder.Write("corvane.ini.part", "");
  ASSERT_TRUE(WriteFileAtomically(path, "new", 0600).ok());
  EXPECT_EQ(ModeOf(path), 0600U);
  EXPECT_EQ(folder.Read("corvane.ini"), "new");
}

TEST(Paths, AreCreatedFolderByFolder) {
  const TempFolder folder;
  for (const char* const path : {"/a/b/c", "/a/b/c/", "\\d\\e//f\\\\", "/"}) {
    EXPECT_TRUE(CreatePath(folder.path() + path)) << path;
    EXPECT_TRUE(ExamineFile(WithSlashes(folder.path() + path))) << path;
  }
  folder.Write("file", "");
  for (const std::string& path : {folder.Name("file"), folder.Name("file/sub"), std::string("a/b"), std::string()}) {
    EXPECT_THROW(CreatePath(path), RunTimeError) << path;
  }
  try {
    CreatePath("C:\\data\\x");
    FAIL() << "a path of another system was created";
  } catch (const RunTimeError& error) {
    EXPECT_EQ(std::string(error.what()).find("\"C:/data/x\""), 0U);
  }
}

TEST(Paths, AreTakenApartAndPutTogether) {
  const std::pair<std::string, const char*> rows[] = {
      {AddBackslash("/a"), "/a/"},
      {AddBackslash("a\\"), "a\\"},
      {PlaceInFolder("/home", "a\\b.lkp"), "/home/a/b.lkp"},
      {PlaceInFolder("/home", "/a.lkp"), "/a.lkp"},
      {PlaceInFolder("/home", "\\srv\\a.lkp"), "/srv/a.lkp"},
      {PlaceInFolder("/home/", "C:\\a.lkp"), "C:\\a.lkp"},
      {std::string(FileNameOf("/a\\b.c")), "b.c"},
      {std::string(FolderOf("/a/b")), "/a"},
      {std::string(ExtensionOf("/a.b/c")), ""},
      {WithExtension("/a.b/c", "txt"), "/a.b/c.txt"},
      {WithExtension("/a.b/c.d.epd", "txt"), "/a.b/c.d.txt"},
      {FormatSize(9'999), "9,999 b"},
      {FormatSize(10'000), "10 Kb"},
      {FormatSize(10'500), "11 Kb"},
      {FormatSize(9'999'999), "10,000 Kb"},
      {FormatSize(10'000'000), "10 Mb"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(text, expected);
}

TEST(Paths, MatchPatterns) {
  const char* const matching[][2] = {{"a.epd", "*.epd"}, {".epd", "*.epd"}, {"pr01.epd", "pr*.epd"},
                                     {"aXbXb", "a*Xb"},  {"", "**"},        {"a", "a*"}};
  const char* const others[][2] = {
      {"a.epd.part", "*.epd"}, {"a.EPD", "*.epd"}, {"apr.epd", "pr*.epd"}, {"a", ""}, {"", "a*"}, {"aXb", "a*Xbc"}};
  for (const auto& [name, pattern] : matching) EXPECT_TRUE(MatchesPattern(name, pattern)) << name << " " << pattern;
  for (const auto& [name, pattern] : others) EXPECT_FALSE(MatchesPattern(name, pattern)) << name << " " << pattern;
}

}  // namespace
}  // namespace corvane::test
