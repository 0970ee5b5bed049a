// A practice as people begin and end it, and what is left of one that was killed.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <fstream>

#include "desktop/practice_folder.h"
#include "setup/practice.h"
#include "support/child.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;

class PracticeTest : public testing::Test {
 protected:
  PracticeTest() { setenv("XDG_CACHE_HOME", cache_.path().c_str(), 1); }
  ~PracticeTest() override {
    std::error_code ignored;
    fs::remove_all(Root(), ignored);  // its base stations end
    EXPECT_TRUE(Until([this] { return !StationRuns(Root()); }));
    unsetenv("XDG_CACHE_HOME");
  }
  [[nodiscard]] std::string Root() const { return cache_.Name("corvane-PRACTICE"); }
  [[nodiscard]] std::string Folder(int number) const { return Root() + "/" + std::to_string(number); }
  /// Whether a base station runs that belongs into this folder.
  static bool StationRuns(const std::string& folder) {
    for (const auto& process : fs::directory_iterator("/proc")) {
      std::ifstream file(process.path() / "cmdline");
      const std::string words{std::istreambuf_iterator<char>(file), {}};
      if (words.find("corvane-basestation") != words.npos && words.find(folder) != words.npos) return true;
    }
    return false;
  }
  /// A program that ends gives its files back last.
  static bool IsHeld(const std::string& file) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    const bool held = flock(descriptor, LOCK_EX | LOCK_NB) != 0;
    close(descriptor);
    return held;
  }
  int Run(Words arguments) {
    arguments.insert(arguments.begin(), CORVANECTL_PATH);
    Child program(arguments);
    const int status = program.Wait();
    output_ = program.output();
    return status;
  }
  [[nodiscard]] bool Printed(const std::string& text) const { return output_.find(text) != std::string::npos; }

  TempFolder cache_;
  std::string output_;
};

TEST_F(PracticeTest, BringsInAWholeDayStaysAndLeavesNothing) {
  ASSERT_EQ(Run({"practise"}), 0) << output_;
  EXPECT_TRUE(Printed("4 units: 4 fine")) << output_;
  EXPECT_TRUE(Printed("\n  corvanectl --home " + Folder(1) + " download\n")) << output_;
  for (const char* file : {"data/orchards/practice00002.txt", "backup/river/practice00004.zip", "PRACTICE.txt"}) {
    EXPECT_TRUE(fs::exists(Folder(1) + "/" + file)) << file;
  }
  EXPECT_EQ(Run({"--home", Folder(1), "get-date"}), 0) << output_;
  EXPECT_EQ(Run({"practise", "--quiet"}), 0) << "beside the first: " << output_;
  EXPECT_EQ(output_, "");
  EXPECT_TRUE(StationRuns(Folder(1)) && StationRuns(Folder(2)));

  Child works({CORVANECTL_PATH, "--home", Folder(2), "run", "--automatic"});
  EXPECT_TRUE(works.Shows("Running in"));
  EXPECT_EQ(Run({"practise", "--end", "--home", "/tmp"}), 1);
  EXPECT_TRUE(Printed("/tmp is no folder for practice")) << output_;
  EXPECT_EQ(Run({"practise", "--end"}), 1);
  EXPECT_TRUE(Printed("a program works in the practice " + Folder(2))) << output_;
  EXPECT_TRUE(fs::exists(Folder(2)) && !fs::exists(Folder(1)));
  works.Signal(SIGTERM);
  works.Wait();
  EXPECT_EQ(Run({"practise", "--end", "--home", Folder(2) + "/"}), 0) << output_;
  EXPECT_EQ(Run({"practise", "--end"}), 0) << "there is none: " << output_;
  EXPECT_TRUE(fs::is_empty(cache_.path()));
  EXPECT_FALSE(StationRuns(Root()));

  Child begins({CORVANECTL_PATH, "practise"});
  EXPECT_TRUE(begins.Shows("Download: Practice hill"));
  begins.Signal(SIGTERM);
  EXPECT_EQ(begins.Wait(), 128 + SIGTERM) << begins.output();
  EXPECT_TRUE(fs::is_empty(cache_.path())) << "one that is broken off leaves nothing either";
}

TEST_F(PracticeTest, OneThatWasKilledGoesWithTheNext) {
  const std::string program_folder = fs::path(CORVANECTL_PATH).parent_path();
  PracticeFolder ground(program_folder);
  std::string ours;
  ASSERT_TRUE(BeginPractice(ground, PracticeGround::Station::EndsWithUs, ours).ok());
  EXPECT_TRUE(IsPractice(ours));
  {
    std::string other;
    PracticeFolder killed(program_folder);
    ASSERT_TRUE(BeginPractice(killed, PracticeGround::Station::EndsWithUs, other).ok());
    EXPECT_EQ(other, Folder(2));
  }
  EXPECT_TRUE(Until([this] { return !IsHeld(Folder(2) + "/basestation.log"); })) << "it ends with its program";
  EXPECT_TRUE(fs::exists(Folder(2)));
  fs::create_directories(Root() + "/mine");
  std::string third;
  PracticeFolder next(program_folder);
  ASSERT_TRUE(next.MakeFolder(third).ok());
  EXPECT_EQ(third, Folder(2));
  EXPECT_FALSE(fs::exists(third + "/PRACTICE.txt")) << "a new one in place of the old";
  EXPECT_TRUE(fs::exists(ours) && StationRuns(ours)) << "what is used stays";
  EXPECT_TRUE(fs::exists(Root() + "/mine")) << "as does what is no practice";

  const std::string bare = cache_.Name("bare");
  PracticeFolder without(bare);
  std::string none;
  const Status failed = BeginPractice(without, PracticeGround::Station::EndsWithUs, none);
  EXPECT_NE(failed.text().find("corvane-basestation belongs into " + bare), std::string::npos) << failed.text();
  EXPECT_FALSE(fs::exists(Folder(3)));
}

}  // namespace
}  // namespace corvane::test
