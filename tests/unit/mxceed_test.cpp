#include "transfer/mxceed.h"

#include <string>

#include <gtest/gtest.h>

#include "support/lower.h"

namespace corvane::test {
namespace {

/// An archive component after a run that failed.
class FailedZip : public ZipComponent {
 public:
  void SetPreservePaths(bool /*preserve*/) override {}
  void SetZipFilename(const std::string& /*path*/) override {}
  [[nodiscard]] const std::string& ZipFilename() const override { return archive; }
  void SetFilesToProcess(const std::string& /*files*/) override {}
  void SetUnzipFolder(const std::string& /*folder*/) override {}
  void SetOverwrite(std::int32_t /*overwrite*/) override {}
  [[nodiscard]] std::int16_t Zip() override { return kZipOk; }
  [[nodiscard]] std::int16_t Unzip() override { return kZipOk; }
  void Abort() override {}
  [[nodiscard]] bool DiskWasNotEmpty() const override { return disk_not_empty; }
  [[nodiscard]] std::string LastErrorText() const override { return "the cause"; }
  void SetProgressHandlers(std::function<void(std::int64_t)> /*on_total*/,
                           std::function<void(std::int64_t)> /*on_done*/) override {}

  std::string archive = "/data/u1.zip";
  bool disk_not_empty = false;
};

TEST(ZipError, TextsAndQuietCodes) {
  struct Row {
    std::int16_t code;
    std::string message;
    bool quiet = false;
    bool disk_not_empty = false;
  };
  for (const Row& row : {
           Row{40, "Some files were skipped while Zip: C:\\data\\u1.csv", true},
           Row{110, "Archive file is corrupted - try using the Fix option on it"},
           Row{140, "Nothing to do", true},
           Row{150, "Disk full while Zip: C:\\data\\u1.csv"},
           Row{150, "A full disk was inserted instead of an empty one", false, true},
           Row{160, "Archive file is corrupted - try using the Fix option on it"},
           Row{190, "The Zip: C:\\data\\u1.csv operation was aborted", true},
           Row{300, "Problem writing to file while Zip: C:\\data\\u1.csv", false, true},
           Row{999, "Error 999 occured while Zip: C:\\data\\u1.csv the specified files"},
           Row{0, ""},
           Row{-5, ""},
       }) {
    SCOPED_TRACE(row.code);
    Lower lower;
    FailedZip zip;
    zip.disk_not_empty = row.disk_not_empty;
    ShowZipError(row.code, "Zip: C:\\data\\u1.csv", zip, lower.messages, lower.trace);
    const bool logged = lower.Log().find(row.message + " [the cause]\r\n") != std::string::npos;
    EXPECT_EQ(logged, !row.message.empty()) << lower.Log();
    ASSERT_EQ(lower.dialogs.boxes.size(), row.quiet || row.message.empty() ? 0U : 1U);
    if (lower.dialogs.boxes.empty()) continue;
    EXPECT_EQ(lower.dialogs.boxes[0].text, row.message + "\r\nZipFile: /data/u1.zip");
    EXPECT_EQ(lower.dialogs.boxes[0].icon, BoxIcon::Stop);
  }
}

TEST(ZipError, UnattendedRunShowsOneTimedBoxForEachCode) {
  Lower lower;
  lower.dialogs.answer_plain_boxes = false;
  lower.flags.automatic_run = true;
  const FailedZip zip;
  for (const std::int16_t code : {kZipWriteProblem, kZipWriteProblem, kZipCreateProblem})
    ShowZipError(code, "Zip: x", zip, lower.messages, lower.trace);
  ASSERT_EQ(lower.dialogs.boxes.size(), 2U);
  EXPECT_EQ(lower.dialogs.boxes[1].icon, BoxIcon::Stop);
  EXPECT_EQ(lower.loop.MonotonicMilliseconds(), 20000);
}

}  // namespace
}  // namespace corvane::test
