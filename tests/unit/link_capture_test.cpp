#include "link/capture.h"

#include <gtest/gtest.h>

#include "unit/link_world.h"

namespace corvane::test {
namespace {

const std::string kHeader = Frame("V2,00001,2,1,3,2010/3/12 00:00,12500");
const std::string kFirst = "2010/3/12 14:05,512,300";
const std::string kSecond = "2010/3/12 14:20,513,301";

class CaptureTest : public LinkTest {
 protected:
  CaptureTest() {
    file = folder.Name("00001.epd");
    summary.SetFile(folder.Name("summary.csv"));
    form.Lbl_Try.SetText("1");
  }
  void Start() {
    port_link.ClearBeforeCommand("test");
    link.UserCancel = false;
    link.OverunFlag = false;
    download.OutputFileName = file;
    download.SavingData = true;
    Ask(kDownload, "00000:00001:00rr 0001010000");
  }
  void Finish() {
    exchange.SetStateFinished();
    capture.CloseOutputFile();
  }
  void Line(const std::string& text) { port.ReceiveNow(text + "\r\n"); }

  std::string file;
};

TEST_F(CaptureTest, StoresHeaderAndReadings) {
  Start();
  Line("00000:00001:00rr 0001010000");
  Line(kHeader);
  EXPECT_EQ(download.ItemsPerLine, 3);
  EXPECT_EQ(link.LinesExpected, 4);
  Line(Frame(kFirst));
  EXPECT_EQ(folder.Read("00001.epd"), kHeader + "\r\n" + kFirst + "\r\n")
      << "an accepted reading is in the file at once";
  Line(Frame(kSecond));
  EXPECT_EQ(capture.OutputFileNumber(), 2);
  Line("ok");
  EXPECT_EQ(folder.Read("00001.epd"), kHeader + "\r\n" + kFirst + "\r\n" + kSecond + "\r\n");
  EXPECT_EQ(link.State, kIdle);
  EXPECT_EQ(capture.OutputFileNumber(), 0);
  EXPECT_EQ(form.Lbl_HeaderLine.text(), download.HeaderLine);
  const std::string line = folder.Read("summary.csv");
  EXPECT_NE(line.find("00000:00001:00rr 0001010000, V2, 00001, 2, 1, 3, 2010/3/12 00:00, 12500, , , 4, Ok"),
            std::string::npos)
      << line;
  for (const char* text :
       {"HEADER> V2,00001", "Header line has 7 items", "Version:V2 SiteID:00001 Fixed:2 Free:1 LinesExpected: 4",
        "Header line> V2", "Check file: ", "FileExists: False", "Opening file - append: False",
        "SaveToFile LineCount:2>2010/3/12 14:05,512,300", "Received OK - close output file"}) {
    EXPECT_TRUE(Logged(text)) << text;
  }
}

TEST_F(CaptureTest, AppendsOnlyWhatIsNewer) {
  folder.Write("00001.epd", kHeader + "\r\n" + kFirst + "\r\n2010/3/12 14:2");
  download.LastDate = DateTime::FromCivil(2010, 3, 12, 14, 5);
  Start();
  Line(Frame("V2,00001,2,1,9,other"));
  Line(Frame(kFirst));
  Line(Frame(kSecond));
  Line("$OK*04");
  EXPECT_EQ(folder.Read("00001.epd"), kHeader + "\r\n" + kFirst + "\r\n" + kSecond + "\r\n");
  EXPECT_TRUE(Logged("SaveToFile - skipping because date after: 2010-03-12 14:05:00 |2010/3/12 14:05,512,300"));
  EXPECT_TRUE(Logged("Torn tail cut off " + file + ": 2010/3/12 14:2"));
}

TEST_F(CaptureTest, RecreatesAFileOfTwentyBytes) {
  const std::string header = Frame("V2,1,2,1,-1,no lines");
  folder.Write("00001.epd", "12345678901234567\r\n ");
  Start();
  Line(header);
  EXPECT_TRUE(Logged("A-error: Lines expected=0> V2,1,2,1,-1,no lines"));
  Line(Frame(kFirst));
  EXPECT_EQ(folder.Read("00001.epd"), header + "\r\n" + kFirst + "\r\n");
}

TEST_F(CaptureTest, AbortsOnBadLines) {
  const struct {
    const char* name;
    std::vector<std::string> lines;
    const char* error;
    bool file_opened;
  } rows[] = {
      {"short header", {Frame("V2,1,2,1,3")}, "Header - wrong number of items>V2,1,2,1,3", false},
      {"header with A", {Frame("a2,1,2,1,3,4")}, "Header - no 'A' at beginning>a2,1,2,1,3,4", false},
      {"bad date", {kHeader, Frame("2000/3/12 14:05,1,2")}, "No SaveToFile - incorrect date>2000/3/12 14:05,1,2", true},
      {"bad checksum",
       {kHeader, "$2010/3/12 14:05,1,2*00"},
       "Items on line (3) <> expected ItemsPerLine (3) >|2010/3/12 14:05,1,2 CheckSumError:True",
       true},
      {"not framed",
       {kHeader, "2010/3/12 14:05,1,2"},
       "Items on line (3) <> expected ItemsPerLine (3) >|2010/3/12 14:05,1,2 CheckSumError:True",
       true},
      {"item count",
       {kHeader, Frame("2010/3/12 14:05,1")},
       "Items on line (2) <> expected ItemsPerLine (3) >|2010/3/12 14:05,1 CheckSumError:False",
       true},
  };
  for (const auto& row : rows) {
    std::filesystem::remove(file);
    const int escapes = port.escapes;
    Start();
    for (const std::string& line : row.lines) Line(line);
    EXPECT_TRUE(Logged(std::string("A-error: ") + row.error + " UserCancel:")) << row.name;
    EXPECT_EQ(port.escapes - escapes, 1) << row.name;
    EXPECT_FALSE(download.SavingData) << row.name;
    EXPECT_TRUE(link.Aborted) << row.name;
    Line(Frame(kFirst));
    EXPECT_TRUE(Logged("No save:" + kFirst)) << row.name;
    EXPECT_EQ(folder.Read("00001.epd"), row.file_opened ? kHeader + "\r\n" : "") << row.name;
    Line("ERROR 4");
    Finish();
  }
  EXPECT_NE(folder.Read("summary.csv").find(", [27], V2, 00001, "), std::string::npos);
}

TEST_F(CaptureTest, ForgivesOneBadLineForEachOverrun) {
  const std::string bad = "$2010/3/12 14:1";
  Start();
  Line(kHeader);
  port.Event(kPortOverrun);
  Line(bad);
  Line(Frame(kFirst));
  EXPECT_TRUE(download.SavingData);
  EXPECT_EQ(folder.Read("00001.epd"), kHeader + "\r\n" + kFirst + "\r\n");
  Line(bad);
  EXPECT_FALSE(download.SavingData) << "the overrun is used up";
  Finish();
  form.Txt_MaxOveruns.SetText("1");
  Start();
  Line(kHeader);
  port.Event(kPortOverrun);
  Line(bad);
  EXPECT_FALSE(download.SavingData) << "two overruns are above the limit of one";
}

TEST_F(CaptureTest, AFileThatDoesNotOpenEndsTheSession) {
  std::filesystem::create_directory(file);
  Start();
  Line(kHeader);
  EXPECT_TRUE(link.UserCancel);
  EXPECT_TRUE(Logged("A-error: The raw file " + file + " cannot be opened"));
  Line(Frame(kFirst));
  EXPECT_TRUE(Logged("Linecount=2 but output file not opened" + kFirst));
  EXPECT_EQ(port.escapes, 1);
  EXPECT_FALSE(download.SavingData);
}

TEST_F(CaptureTest, AFullDiskFailsTheUnitAndNamesTheFile) {
  Start();
  Line(kHeader);
  Line(Frame(kFirst));
  download.Output.Close();
  ASSERT_TRUE(download.Output.OpenForAppending("/dev/full").ok());
  Line(Frame(kSecond));
  Line(Frame(kSecond));
  EXPECT_TRUE(link.HalvexError);
  EXPECT_FALSE(link.UserCancel);
  EXPECT_EQ(link.ResultCode, 9);
  EXPECT_FALSE(download.SavingData);
  EXPECT_EQ(port.escapes, 1);
  EXPECT_NE(link.ResultTextOf(9).find(file), std::string::npos);
  EXPECT_EQ(form.Lbl_Status.text(), link.ResultTextOf(9));
  EXPECT_EQ(TimesLogged("A-error: The raw file " + file + " cannot be written"), 1);
  Finish();
  EXPECT_EQ(folder.Read("00001.epd"), kHeader + "\r\n" + kFirst + "\r\n");
}

TEST_F(CaptureTest, ShowsProgressWhenAsked) {
  form.Chk_ShowReply.SetTicked(true);
  int refreshed = 0;
  capture.reading_stored = [&] { ++refreshed; };
  download.LastDate = DateTime::FromCivil(2010, 3, 12, 14, 5);
  Start();
  Line(kHeader);
  Line(Frame(kFirst));
  EXPECT_EQ(form.Lbl_Status.text(), "12 Mar 2010 14:05");
  EXPECT_EQ(form.Bar_Download.value(), 50);
  Line(Frame(kSecond));
  EXPECT_EQ(refreshed, 1) << "a skipped reading is not stored";
}

}  // namespace
}  // namespace corvane::test
