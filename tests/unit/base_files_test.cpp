#include "base/files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/line_reader.h"
#include "base/paths.h"
#include "base/replacement_file.h"
#include "support/small_disk.h"
#include "support/sync_faults.h"
#include "support/temp_folder.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

/// Lines as they are delivered, each with whether its line end was there.
using Lines = std::vector<std::pair<std::string, bool>>;

Lines LinesOf(const std::string& path) {
  Lines lines;
  LineReader reader;
  EXPECT_TRUE(reader.Open(path).ok());
  for (std::string_view line; reader.Next(line);) lines.emplace_back(line, reader.terminated());
  EXPECT_TRUE(reader.status().ok());
  return lines;
}

/// A line of every interesting length before lines of both ends, so that ends fall on and around every block's edge.
TEST(LineReaders, DeliverLinesOfEveryLength) {
  const TempFolder folder;
  constexpr std::size_t kLongest = LineReader::kLongestLine;
  std::vector<std::size_t> lengths = {1, 3 * kLongest, 5 * kLongest + 1};
  for (const std::size_t edge : {kLongest, 2 * kLongest, 4 * kLongest}) {
    for (std::size_t off = 0; off < 8; ++off) lengths.push_back(edge - 4 + off);
  }
  for (const std::size_t length : lengths) {
    SCOPED_TRACE(length);
    const std::string line(length, 'x');
    const std::string cut = line.substr(0, kLongest);
    const Lines whole = {{"first", true}, {cut, true}, {"", true}, {"last", true}};
    EXPECT_TRUE(LinesOf(folder.Write("a", "first\r\n" + line + "\n\r\nlast\n")) == whole);
    EXPECT_TRUE(LinesOf(folder.Write("a", "first\r\n" + line + "\r\n\r\nlast\n")) == whole);
    EXPECT_TRUE(LinesOf(folder.Write("a", "first\r\n" + line)) == (Lines{{"first", true}, {cut, false}}));
  }
}

TEST(LineReaders, KeepWhatIsNoLineEnd) {
  const TempFolder folder;
  const Lines expected = {{"a\rb", true}, {"\0c"s, true}, {"\r", true}, {"d", false}};
  EXPECT_TRUE(LinesOf(folder.Write("a", "a\rb\n\0c\n\r\r\nd\r"s)) == expected);
}

TEST(Files, RefuseWhatIsNoFullPath) {
  std::string contents;
  OutputFile file;
  for (const std::string& path : {"data/a"s, ""s, "C:\\data"s, "/a\0b"s}) {
    for (const Status& result : {ReadFile(path, contents, 10), MakeFolder(path), RemoveFile(path), file.Create(path),
                                 CutFile(path, 0), WriteFileAtomically(path, "x")}) {
      EXPECT_NE(result.text().find("not a full path"), std::string::npos) << path;
    }
  }
}

TEST(Files, AreReadWholeUpToTheirLimit) {
  const TempFolder folder;
  const std::string path = folder.Write("a", std::string(300'000, 'x'));
  std::string contents;
  EXPECT_TRUE(ReadFile(path, contents, 300'000).ok());
  EXPECT_EQ(contents, std::string(300'000, 'x'));
  EXPECT_EQ(ReadFile(path, contents, 299'999).code(), EFBIG);
}

TEST(Files, AreListedWithoutFolders) {
  const TempFolder folder;
  folder.Write("sub/b.epd", "");
  fs::create_symlink(folder.Write("a.epd", "12345"), folder.Name("link.epd"));
  fs::create_symlink(folder.Name("gone"), folder.Name("dangling.epd"));
  fs::create_symlink(folder.Name("sub"), folder.Name("folder.epd"));
  folder.Write("unwanted", "");
  std::vector<FolderEntry> entries = {{"left over", {}}};
  ASSERT_TRUE(ListFiles(
                  folder.path(), [](std::string_view name) { return name != "unwanted"; }, entries)
                  .ok());
  std::map<std::string, std::int64_t> found;
  for (const FolderEntry& entry : entries) found[entry.name] = entry.info.size;
  EXPECT_EQ(found, (decltype(found){{"a.epd", 5}, {"link.epd", 5}}));
}

TEST(OutputFiles, TakeBackATornPart) {
  const TempFolder folder;
  OutputFile file;
  ASSERT_TRUE(file.OpenForAppending(folder.Write("raw.epd", "header\r\n")).ok());
  {
    const SmallDisk disk(20);
    EXPECT_TRUE(file.Write("one\r\n").ok());
    EXPECT_EQ(file.Write("two three four\r\n").code(), EFBIG);
  }
  EXPECT_TRUE(file.Write("five\r\n").ok());
  EXPECT_EQ(folder.Read("raw.epd"), "header\r\none\r\nfive\r\n");
  ASSERT_TRUE(file.OpenForAppending("/dev/full").ok());
  EXPECT_EQ(file.Write("x").text(), "/dev/full: No space left on device");
}

TEST(ReplacementFiles, AppearOnlyWhenWhole) {
  const TempFolder folder;
  const std::string path = folder.Write("a.txt", "old");
  folder.Write("a.txt.part", "left by a kill");
  for (const rlim_t room : {200'000, 70'000}) {
    {
      ReplacementFile file(path);
      ASSERT_TRUE(file.Open().ok());
      {
        const SmallDisk disk(room);
        file.buffer().assign(100'000, 'x');
        EXPECT_EQ(file.FlushWhenFull().ok(), room == 200'000);
      }
      file.buffer() = "the rest";
      EXPECT_FALSE(room == 70'000 && file.Commit().ok()) << "there is room again, but a part is missing";
    }
    EXPECT_EQ(folder.Read("a.txt"), "old");
    EXPECT_FALSE(fs::exists(path + ".part"));
  }
}

TEST(ReplacementFiles, AreTakenAwayAtAnEndThatDestroysNothing) {
  const TempFolder folder;
  folder.Write("b", "old");
  ReplacementFile a(folder.Name("a"));
  ReplacementFile b(folder.Name("b"));
  { const ReplacementFile gone(folder.Name("c")); }
  ASSERT_TRUE(a.Open().ok() && b.Open().ok());
  ReplacementFile::RemoveUnfinished();
  EXPECT_EQ(folder.Read("b"), "old");
  EXPECT_FALSE(fs::exists(folder.Name("a.part")) || fs::exists(folder.Name("b.part")));
  EXPECT_FALSE(a.Commit().ok()) << "what was taken away cannot be put in place";
}

TEST(ReplacementFiles, BringTheirOwnPermissionsOrKeepThoseInPlace) {
  const TempFolder folder;
  const std::string path = folder.Write("corvane.ini", "old");
  fs::permissions(folder.Write("corvane.ini.part", ""), fs::perms(0644));
  ASSERT_TRUE(WriteFileAtomically(path, "new", 0600).ok());
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600));
  EXPECT_EQ(folder.Read("corvane.ini"), "new");
  fs::permissions(path, fs::perms(0640));
  fs::create_symlink(path, folder.Name("link"));
  {
    ReplacementFile file(folder.Name("link"));
    ASSERT_TRUE(file.OpenInPlace().ok());
    file.buffer() = "in place";
    ASSERT_TRUE(file.Commit().ok());
  }
  EXPECT_TRUE(fs::is_symlink(folder.Name("link")));
  EXPECT_EQ(folder.Read("corvane.ini"), "in place");
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
  fs::create_directory(folder.Name("sub"));
  EXPECT_EQ(WriteFileAtomically(folder.Name("sub"), "x").code(), EISDIR);
  EXPECT_FALSE(fs::exists(folder.Name("sub.part")));
}

TEST(SecondNames, AreWholeCopiesWhereADiskHasNone) {
  const TempFolder folder;
  const std::string path = folder.Write("a", "text"), second = folder.Name("b");
  for (const bool copied : {false, true}) {
    folder.Write("b", "former");
    failing_links = copied ? 1 : 0;
    EXPECT_TRUE(GiveSecondName(path, second).ok());
    EXPECT_EQ(folder.Read("b"), "text");
    EXPECT_EQ(fs::hard_link_count(path), copied ? 1U : 2U);
    fs::remove(second);
  }
  failing_links = failing_syncs = 1;
  EXPECT_FALSE(GiveSecondName(path, second).ok());
  EXPECT_EQ(failing_syncs, 0) << "the copy has to reach the disk";
  EXPECT_TRUE(std::distance(fs::directory_iterator(folder.path()), {}) == 1 && folder.Read("a") == "text");
}

TEST(Paths, AreCreatedFolderByFolder) {
  const TempFolder folder;
  for (const char* const path : {"/a/b/c/", "\\d\\e//f\\\\", "/"}) {
    EXPECT_TRUE(CreatePath(folder.path() + path)) << path;
    EXPECT_TRUE(ExamineFile(WithSlashes(folder.path() + path))) << path;
  }
  for (const std::string& path : {folder.Write("file", ""), folder.Name("file/sub"), "a/b"s, ""s, "C:\\data\\x"s}) {
    EXPECT_THROW(CreatePath(path), RunTimeError) << path;
  }
}

TEST(Paths, AreTakenApartAndPutTogether) {
  const std::pair<std::string, const char*> rows[] = {
      {PlaceInFolder("/home", "a\\b.lkp"), "/home/a/b.lkp"},
      {PlaceInFolder("/home", "\\srv\\a.lkp"), "/srv/a.lkp"},
      {PlaceInFolder("/home/", "C:\\a.lkp"), "C:\\a.lkp"},
      {WithExtension("/a.b/c", "txt"), "/a.b/c.txt"},
      {WithExtension("/a.b/c.d.epd", "txt"), "/a.b/c.d.txt"},
      {FormatSize(9'999), "9,999 b"},
      {FormatSize(10'500), "11 Kb"},
      {FormatSize(10'000'000), "10 Mb"},
  };
  for (const auto& [text, expected] : rows) EXPECT_EQ(text, expected);
}

TEST(Paths, MatchPatterns) {
  for (const char* const name : {".epd", "pr01.epd", "a.epd.epd"}) EXPECT_TRUE(MatchesPattern(name, "*.epd")) << name;
  for (const char* const name : {"", "a.EPD", "pr01.epd.part"}) EXPECT_FALSE(MatchesPattern(name, "*.epd")) << name;
  EXPECT_FALSE(MatchesPattern("apr.epd", "pr*.epd"));
}

}  // namespace
}  // namespace corvane::test
