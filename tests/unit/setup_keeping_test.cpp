#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "app/settings_tables.h"
#include "base/checksum.h"
#include "base/files.h"
#include "base/status.h"
#include "setup/keeping.h"
#include "setup/restoring.h"
#include "support/world.h"
#include "zip/libzip_archive.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kManyBytes = 66 << 20;

ArchiveEntry EntryOf(const std::string& name, const std::string& text) {
  return {name, static_cast<std::int64_t>(text.size()), Crc32(text)};
}

/// What a refused archive is made of: the settings, its manifest, and one thing that is wrong.
struct Wrong {
  KeptManifest manifest;
  std::vector<ArchiveSource> sources;
};

class RestoringTest : public testing::Test {
 protected:
  /// Puts what `archive` holds into the folder `here`; the text of a refusal.
  std::string Restore(const std::string& archive) {
    LibzipArchive zip;
    const KeptSettings settings = SettingsToKeep(AppInfo(here.path()));
    Restoring restoring(here.path(), settings, zip);
    try {
      restoring.Examine(archive);
      before = restoring.PutIn();
      changed = restoring.changed();
      return "";
    } catch (const RunTimeError& error) {
      return error.what();
    }
  }

  TempFolder there;
  TempFolder here;
  std::string before;
  std::vector<Restoring::Changed> changed;
};

TEST_F(RestoringTest, PutsInWhatWasKeptAndKeepsWhatItReplaces) {
  TempFolder elsewhere;
  World world("[General]\nFolder=" + elsewhere.Name("gone/data") + "\nMoistureLookupFile=" +
              elsewhere.Write("m.lkp", "0,0\n1,1\n") + "\nFTPPassword=geheim\n[Clients]\nPassword1=auch\n");
  world.home.Write("salinity.lkp", "0,0\n");
  elsewhere.Write("gone/data/F1/00001.epd", "raw");
  elsewhere.Write("gone/data/00002.txt", "calibrated");
  elsewhere.Write("gone/data/00002.zip", "no");
  // Packs better than what comes from elsewhere may.
  fs::resize_file(elsewhere.Write("gone/data/00003.epd", ""), kManyBytes);
  Application& app = world.Start();
  const KeptSettings settings = SettingsToKeep(app.app());
  LibzipArchive zip;
  Keeping keeping({app.form(), app.registry(), app.app(), app.names(), settings, zip, {}});
  KeepingOrder order;
  order.archive = there.Name("net.zip");
  order.data = true;
  order.passwords = false;
  order.generations = 2;
  for (int time = 0; time < 4; ++time) EXPECT_EQ(keeping.Keep(order).files, 6);
  bool cancelled = true;
  LibzipArchive never([&cancelled] { return cancelled; });
  Keeping broken_off({app.form(), app.registry(), app.app(), app.names(), settings, never, {}});
  EXPECT_THROW(static_cast<void>(broken_off.Keep(order)), RunTimeError);
  std::vector<FolderEntry> files;
  ASSERT_TRUE(ListFiles(
                  there.path(), [](std::string_view) { return true; }, files)
                  .ok());
  EXPECT_EQ(files.size(), 3U) << "net.zip and two generations, and nothing else";
  EXPECT_EQ(fs::status(order.archive).permissions(), fs::perms::owner_read | fs::perms::owner_write);

  // On another computer: neither the data folder nor the table is there.
  fs::remove_all(elsewhere.path());
  here.Write("corvane.ini", "former");
  here.Write("history.db-wal", "former");
  ASSERT_EQ(Restore(order.archive), "");
  const std::string ini = here.Read("corvane.ini");
  EXPECT_TRUE(ini.find("FTPPassword=null\n") != std::string::npos && ini.find("Password1=null\n") != std::string::npos);
  EXPECT_EQ(here.Read("data/F1/00001.epd"), "raw");
  EXPECT_EQ(here.Read("data/00002.txt"), "calibrated");
  EXPECT_EQ(fs::file_size(here.Name("data/00003.epd")), kManyBytes);
  EXPECT_EQ(here.Read("restored/MoistureLookupFile/m.lkp"), "0,0\n1,1\n");
  EXPECT_EQ(here.Read("salinity.lkp"), "0,0\n");
  EXPECT_EQ(changed.size(), 2U);
  EXPECT_FALSE(ExamineFile(here.Name("history.db-wal")));
  EXPECT_EQ(here.Read("before-restore-1/1-history.db-wal"), "former");
  EXPECT_EQ(here.Read("before-restore-1/5-corvane.ini"), "former");
  EXPECT_FALSE(ExamineFile(here.Name("restore.part")) || ExamineFile(here.Name("restore.list")));
}

TEST_F(RestoringTest, KeepsOfAFileWhatItHeldInItsTurn) {
  const std::string first = there.Write("first", "1"), second = there.Write("second", "2"), archive = there.Name("a");
  LibzipArchive zip([this] {
    there.Write("second", "longer than it was");
    return false;
  });
  EXPECT_TRUE(zip.Add(archive, archive, {{"1", first, ""}, {"2", second, ""}}).ok());
  std::string text;
  EXPECT_TRUE(zip.Open(archive).ok() && zip.Read("2", 100, text).ok());
  EXPECT_EQ(text, "longer than it was");
  const Status failed = zip.Add(there.Name("b.part"), "b", {{"1", first, ""}, {"3", there.Name("third"), ""}});
  EXPECT_NE(failed.text().find(there.Name("third") + ": "), std::string::npos) << failed.text();
  const Status no_folder = zip.Add(there.Name("none/b.part"), "b.zip", {});
  EXPECT_TRUE(no_folder.text().starts_with("b.zip: ")) << no_folder.text();
}

TEST_F(RestoringTest, RefusesWhatIsNotWholeBeforeAnythingIsWritten) {
  const std::string settings = "[General]\nPort=7\n";
  const auto with = [&](const std::string& name) {
    return [name](Wrong& wrong) {
      wrong.sources.push_back({name, "", "x"});
      wrong.manifest.entries.push_back(EntryOf(name, "x"));
    };
  };
  const std::tuple<const char*, std::function<void(Wrong&)>> rows[] = {
      {"made by version 9.0.000", [](Wrong& wrong) { wrong.manifest.version = "9.0.000"; }},
      {"made by version", [](Wrong& wrong) { wrong.manifest.format = 2; }},
      {"leads out of the folder", with("data/../../x")},
      {"leads out of the folder", with("/etc/x")},
      {"leads out of the folder", with("data\\x")},
      {"nothing is known of", with("files/Prefix/x")},
      {"nothing is known of", with("more")},
      {"is no data file", with("data/corvane.lock")},
      {"is no data file", with("data/restore.part/1")},
      {"is not what its list", [](Wrong& wrong) { wrong.manifest.entries[0].crc ^= 1U; }},
      {"does not hold what", [](Wrong& wrong) { wrong.manifest.entries.push_back(EntryOf("data/x", "x")); }},
      {"does not hold what",
       [](Wrong& wrong) {
         wrong.sources.push_back({"data/x", "", "x"});
       }},
  };
  for (const auto& [says, spoil] : rows) {
    Wrong wrong;
    wrong.sources.push_back({std::string(kKeptSettings), "", settings});
    wrong.manifest.version = AppInfo::VersionText();
    wrong.manifest.folder = "/there";
    wrong.manifest.data_folder = "/there";
    wrong.manifest.entries.push_back(EntryOf(std::string(kKeptSettings), settings));
    spoil(wrong);
    wrong.sources.push_back({std::string(kManifestName), "", ManifestText(wrong.manifest)});
    const std::string archive = there.Name("wrong.zip");
    fs::remove(archive);
    LibzipArchive zip;
    ASSERT_TRUE(zip.Add(archive, archive, wrong.sources).ok());
    const std::string refusal = Restore(archive);
    EXPECT_NE(refusal.find(says), std::string::npos) << says << ": " << refusal;
  }
  // Whole, then cut and damaged at several places.
  const std::string body = std::string(500, 'x') + "\n";
  KeptManifest manifest;
  manifest.version = AppInfo::VersionText();
  manifest.folder = manifest.data_folder = "/there";
  manifest.entries = {EntryOf(std::string(kKeptSettings), settings + body)};
  LibzipArchive zip;
  const std::string archive = there.Name("whole.zip");
  ASSERT_TRUE(zip.Add(archive, archive,
                      {{std::string(kKeptSettings), "", settings + body},
                       {std::string(kManifestName), "", ManifestText(manifest)}})
                  .ok());
  const std::string whole = there.Read("whole.zip");
  for (std::size_t at : {std::size_t{0}, std::size_t{10}, whole.size() / 2, whole.size() - 1}) {
    EXPECT_NE(Restore(there.Write("cut.zip", whole.substr(0, at))), "") << at;
  }
  std::string damaged = whole;
  damaged[whole.find("corvane.ini") + 14] ^= 0x55;
  EXPECT_NE(Restore(there.Write("damaged.zip", damaged)), "");
  EXPECT_TRUE(fs::is_empty(here.path())) << "something was written";
  EXPECT_EQ(Restore(archive), "");
  EXPECT_EQ(here.Read("corvane.ini"), settings + body);
  fs::remove(here.Name("corvane.ini"));
  here.Write("corvane.ini/in the way", "");
  EXPECT_NE(Restore(archive).find("corvane.ini is a folder"), std::string::npos);
  EXPECT_FALSE(ExamineFile(here.Name("restore.list"))) << "it has begun";
}

TEST_F(RestoringTest, IsFinishedByTheNextStartWhereverItWasStopped) {
  const std::string names[] = {"a", "b", "c"};
  for (std::size_t stop = 0; stop < std::size(names); ++stop) {
    TempFolder home;
    home.Write("aside", "former aside");
    std::vector<RestoreMove> moves = {{"", home.Name("aside")}};
    for (std::size_t i = 0; i < std::size(names); ++i) {
      home.Write("restore.part/" + names[i], "new " + names[i]);
      home.Write(names[i] + "/file", "former " + names[i]);
      moves.push_back({names[i], home.Name(names[i] + "/file")});
    }
    ASSERT_TRUE(MakeFolder(home.Name("kept")).ok());
    ASSERT_TRUE(CommitRestore(home.path(), home.Name("kept"), moves).ok());
    // A folder in the way stops it there, as a kill would.
    const std::string in_the_way = home.Name(names[stop] + "/file");
    fs::remove(in_the_way);
    fs::create_directories(in_the_way + "/x");
    std::string done;
    EXPECT_FALSE(FinishRestore(home.path(), done).ok());
    fs::remove_all(in_the_way);
    home.Write(names[stop] + "/file", "former " + names[stop]);
    EXPECT_TRUE(FinishRestore(home.path(), done).ok());
    EXPECT_EQ(done, home.Name("kept"));
    for (std::size_t i = 0; i < std::size(names); ++i) {
      EXPECT_EQ(home.Read(names[i] + "/file"), "new " + names[i]);
      const std::string kept = home.Read("kept/" + std::to_string(i + 2) + "-file");
      EXPECT_TRUE(i == stop || kept == "former " + names[i]) << kept;
    }
    EXPECT_EQ(home.Read("kept/1-aside"), "former aside");
    EXPECT_FALSE(ExamineFile(home.Name("aside")) || ExamineFile(home.Name("restore.list")));
    EXPECT_TRUE(FinishRestore(home.path(), done).ok() && done.empty());
  }
}

TEST_F(RestoringTest, IsNotTakenForDoneWhereItsListOrItsFilesCannotBeRead) {
  const std::string good =
      "[Restore]\nBefore=" + there.path() + "\nCount=1\nStaged1=a\nTarget1=" + here.Name("a") + "\n";
  const std::string count = "Count=1", staged = "Staged1=a", target = "Target1=";
  const auto without = [&good](const std::string& line) {
    std::string list = good;
    return list.replace(list.find(line), line.size(), "x=");
  };
  const std::tuple<std::string, const char*> rows[] = {{without(count), "is damaged"},
                                                       {without(staged), "is damaged"},
                                                       {without(target), "is damaged"},
                                                       {good, "restore.part/a: "}};
  fs::create_directory(here.Name("restore.part"));
  fs::create_symlink("a", here.Name("restore.part/a"));
  here.Write("a", "former");
  for (const auto& [list, says] : rows) {
    here.Write("restore.list", list);
    std::string done;
    const Status finished = FinishRestore(here.path(), done);
    EXPECT_NE(finished.text().find(says), std::string::npos) << finished.text();
    EXPECT_TRUE(here.Read("a") == "former" && fs::is_symlink(here.Name("restore.part/a"))) << list;
    EXPECT_EQ(here.Read("restore.list"), list);
  }
}

}  // namespace
}  // namespace corvane::test
