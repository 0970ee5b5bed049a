#include "link/capture.h"

#include <gtest/gtest.h>

#include "unit/link_world.h"

namespace corvane::test {
namespace {

const std::string kHeader = Frame("V2,00001,2,1,3,2010/3/12 00:00,12500");
const std::string kFirst = "2010/3/12 14:05,512,300";
const std::string kSecond = "2010/3/12 14:20,513,301";
const std::string kStored = kHeader + "\r\n" + kFirst + "\r\n";

class CaptureTest : public LinkTest {
 protected:
  CaptureTest() {
    summary.SetFile(folder.Name("summary.csv"));
    form.Lbl_Try.SetText("1");
    form.Txt_MaxOveruns.SetText("3");
  }
  void Start() {
    port_link.ClearBeforeCommand("test");
    capture.CloseOutputFile();
    port.escapes = 0;
    download.OutputFileName = file;
    download.SavingData = true;
    Ask(kDownload, "00000:00001:00rr 0001010000");
  }
  void Lines(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) port.ReceiveNow(text + "\r\n");
  }
  [[nodiscard]] std::string Stored() const { return folder.Read("00001.epd"); }

  const std::string file = folder.Name("00001.epd");
};

TEST_F(CaptureTest, StoresHeaderAndReadings) {
  Start();
  Lines({"00000:00001:00rr 0001010000", kHeader, Frame(kFirst)});
  EXPECT_EQ(Stored(), kStored) << "an accepted reading is in the file at once";
  Lines({Frame(kSecond), "ok"});
  EXPECT_EQ(Stored(), kStored + kSecond + "\r\n");
  EXPECT_EQ(link.State, kIdle);
  const std::string line = "00000:00001:00rr 0001010000, V2, 00001, 2, 1, 3, 2010/3/12 00:00, 12500, , , 4, Ok";
  EXPECT_NE(folder.Read("summary.csv").find(line), std::string::npos);
}

TEST_F(CaptureTest, AppendsAndShowsOnlyWhatIsNewer) {
  folder.Write("00001.epd", kStored + "2010/3/12 14:2");
  download.LastDate = DateTime::FromCivil(2010, 3, 12, 14, 5);
  form.Chk_ShowReply.SetTicked(true);
  form.Txt_DateFormat.SetText("d mmm yyyy HH:MM");
  Start();
  Lines({kHeader, Frame(kFirst), Frame(kSecond)});
  EXPECT_EQ(form.Bar_Download.value(), 75);
  EXPECT_EQ(form.Lbl_Status.text(), "12 Mar 2010 14:20");
  Lines({"$OK*04"});
  EXPECT_EQ(Stored(), kStored + kSecond + "\r\n");
  EXPECT_TRUE(Logged("SaveToFile - skipping because date after: 2010-03-12 14:05:00 |" + kFirst));
  EXPECT_TRUE(Logged("Torn tail cut off " + file + ": 2010/3/12 14:2"));
}

TEST_F(CaptureTest, RecreatesAFileOfTwentyBytes) {
  const std::string header = Frame("V2,1,2,1,-1,no lines");
  folder.Write("00001.epd", "12345678901234567\r\n ");
  Start();
  Lines({header, Frame(kFirst)});
  EXPECT_TRUE(Logged("A-error: Lines expected=0> V2,1,2,1,-1,no lines"));
  EXPECT_EQ(Stored(), header + "\r\n" + kFirst + "\r\n");
}

TEST_F(CaptureTest, AbortsOnBadLines) {
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{Frame("V2,1,2,1,3")}, "Header - wrong number of items>V2,1,2,1,3"},
      {{Frame("a2,1,2,1,3,4")}, "Header - no 'A' at beginning>a2,1,2,1,3,4"},
      {{kHeader, Frame("2000/3/12 14:05,1,2")}, "No SaveToFile - incorrect date>2000/3/12 14:05,1,2"},
      {{kHeader, "$2010,1,2*01"}, "Items on line (3) <> expected ItemsPerLine (3) >|2010,1,2 CheckSumError:True"},
      {{kHeader, "2011,1,2"}, "Items on line (3) <> expected ItemsPerLine (3) >|2011,1,2 CheckSumError:True"},
      {{kHeader, Frame("2010,1")}, "Items on line (2) <> expected ItemsPerLine (3) >|2010,1 CheckSumError:False"},
  };
  for (const auto& [texts, error] : rows) {
    std::filesystem::remove(file);
    Start();
    Lines(texts);
    EXPECT_TRUE(Logged("A-error: " + error + " UserCancel:")) << error;
    EXPECT_EQ(port.escapes, 1) << error;
    Lines({Frame(kFirst), "ERROR 4"});
    EXPECT_EQ(Stored(), texts.size() > 1 ? kHeader + "\r\n" : "") << error;
  }
  EXPECT_NE(folder.Read("summary.csv").find(", [27], V2, 00001, "), std::string::npos);
}

TEST_F(CaptureTest, ForgivesOneBadLineForEachOverrun) {
  const std::string bad = "$2010/3/12 14:1";
  Start();
  Lines({kHeader});
  port.Event(kPortOverrun);
  Lines({bad, Frame(kFirst)});
  EXPECT_EQ(Stored(), kStored);
  Lines({bad});
  EXPECT_FALSE(download.SavingData) << "the overrun is used up";
  form.Txt_MaxOveruns.SetText("1");
  Start();
  Lines({kHeader});
  port.Event(kPortOverrun);
  Lines({bad});
  EXPECT_FALSE(download.SavingData) << "two overruns are above the limit of one";
}

TEST_F(CaptureTest, AFileThatDoesNotOpenEndsTheSession) {
  std::filesystem::create_directory(file);
  Start();
  Lines({kHeader, Frame(kFirst)});
  EXPECT_TRUE(link.UserCancel);
  EXPECT_TRUE(Logged("A-error: The raw file " + file + " cannot be opened"));
  EXPECT_EQ(port.escapes, 1);
}

TEST_F(CaptureTest, AFullDiskFailsTheUnitAndNamesTheFile) {
  Start();
  Lines({kHeader, Frame(kFirst)});
  download.Output.Close();
  ASSERT_TRUE(download.Output.OpenForAppending("/dev/full").ok());
  Lines({Frame(kSecond), Frame(kSecond)});
  EXPECT_TRUE(link.HalvexError);
  EXPECT_FALSE(link.UserCancel || download.SavingData);
  EXPECT_EQ(port.escapes, 1);
  EXPECT_NE(form.Lbl_Status.text().find(file), std::string::npos);
  EXPECT_EQ(TimesLogged("A-error: The raw file " + file + " cannot be written"), 1);
}

}  // namespace
}  // namespace corvane::test
