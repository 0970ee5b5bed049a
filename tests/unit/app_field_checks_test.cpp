#include "app/field_checks.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "history/network_settings.h"
#include "support/world.h"

namespace corvane::test {
namespace {

struct FieldCase {
  TextField& field;
  std::vector<std::string> good;
  std::vector<std::string> bad;
  std::string says;  ///< part of the sentence
};

class FieldChecksTest : public ::testing::Test {
 protected:
  FieldChecksTest() {
    world.home.Write("table.lkp", "0,0\n");
    world.home.Write("data/x", "");
    form.Lst_Units.SetCurrent(0);
    form.Lst_Relays.SetCurrent(0);
  }
  void Check(const FieldCase& row) {
    SCOPED_TRACE(row.field.name());
    const auto problem = [&](const std::string& text) {
      row.field.SetText("another text");
      row.field.SetText(text);
      return world.app().checks().ProblemOf(row.field);
    };
    for (const std::string& text : row.good) EXPECT_EQ(problem(text), "") << text;
    for (const std::string& text : row.bad) {
      EXPECT_NE(problem(text).find(row.says), std::string::npos) << text << ": " << problem(text);
      EXPECT_TRUE(problem(text).ends_with('.')) << text;
    }
  }

  World world;
  Form& form = world.Start().form();
};

TEST_F(FieldChecksTest, NumbersAndTimes) {
  const std::string huge(126, '9');
  const std::vector<FieldCase> rows = {
      {form.Txt_StartAt, {"06:00", " 0:00 ", "23:59:59"}, {"", "24:00", "6", "-1:00", huge, "\xC3\xA9"}, "06:00"},
      {form.Txt_Interval,
       {"00:15", "2", "0.5"},
       {"", "00:00", "0", "-1", "x", "3h", "0.0001", "1e300", huge},
       "above zero"},
      {form.Txt_AutomaticInterval,
       {"03:00", "12", "36"},
       {"", "00:00", "0", "-3", "x", "3 hours", "nan", "inf", huge},
       "above zero"},
      {form.Txt_Interval, {"23:59"}, {"25:00"}, "from 00:01 to 23:59"},
      {form.Txt_AutomaticInterval, {"23:59"}, {"25:00"}, "from 00:01 to 23:59"},
      {form.Txt_Timeout[0], {"1", "86400"}, {"", "0", "86401", "4,5", "-1", huge}, "from 1 to 86400."},
      {form.Txt_Timeout[2], {"0"}, {"-1"}, "from 0 to 86400."},
      {form.Txt_MaxRetries, {"1", " 15 "}, {"0", "16", "ten"}, "from 1 to 15."},
      {form.Txt_MaxOveruns, {"0", "2147483647"}, {"-1", "2147483648"}, "from 0 to 2147483647."},
      {form.Txt_UnitID, {"-2147483648", "2147483647"}, {"", "2147483648", "1.5"}, "from -2147483648 to 2147483647."},
      {form.Txt_UnitID, {"1"}, {"2"}, "has the same ID and folder"},
      {form.Txt_RelayID, {"0"}, {"x"}, "whole number"},
      {form.Txt_Depths, {"", "10;20;40", " 10 ;; 2.5"}, {"10,20", "10 cm", "-5"}, "such as 10;20;40."},
      {form.Txt_Correction[1], {"0", "1.25", "50"}, {"", "2,5", "-1", "50.1", "nan", huge}, "from 0 to 50."},
      {form.Txt_Settings, {"9600,N,8,1", "110,e,7,2"}, {"", "9600", "9600,X,8,1", "9600,N,8,1,"}, "9600,N,8,1."},
      {form.Txt_FTPServer, {"", "ftp.example.org:2121", "[::1]:21"}, {"a:0", "a:b", "ftp://a"}, "2121."},
      {form.Txt_FTPCertificate, {"", "table.lkp"}, {"missing.pem"}, "no file"},
      {form.Txt_PageFolder, {"", " ", "/"}, {"nowhere", "table.lkp"}, "There is no folder"},
      {form.Txt_LateAfter, {"1", "2.5"}, {"", "0", "2,5", "nan"}, "from 1 to 1000."},
      {form.Txt_HistoryYears, {"5"}, {"", "0", "1.5", "101"}, "whole number from 1 to 100."},
      {form.Txt_DigestAt, {"", "07:30"}, {"7", "24:00"}, "06:00."},
      {form.Txt_UnitName, {"", "anything", huge}, {}, ""},
  };
  for (const FieldCase& row : rows) Check(row);
  form.Lst_Units.SetCurrent(-1);
  Check({form.Txt_UnitID, {""}, {}, ""});
  const std::pair<const char*, const char*> periods[] = {
      {"00:01", ""},       {"04:15", ""},        {"15", ""},           {" 03:00", ""},  {"n sd", "sent 0 minutes."},
      {"24:00", "sent 0"}, {"04:16", "sent 0 "}, {"05:00", "sent 44"}, {"0", "sent 0"}, {"00:01:30", "sent 2 "}};
  for (const auto& [text, says] : periods) {
    form.Cmb_LogPeriod.SetShownText(text);
    const std::string problem = world.app().checks().ProblemOf(form.Cmb_LogPeriod);
    EXPECT_TRUE(*says == 0 ? problem.empty() : problem.find(says) != std::string::npos) << text << ": " << problem;
  }
}

TEST_F(FieldChecksTest, WhatIsMarkedOfTheNetworkTakesItsDefault) {
  for (const char* const text : {"x", "-1", "1e9", "nan", ""}) {
    for (TextField* field :
         {&form.Txt_RepairLimit, &form.Txt_LateAfter, &form.Txt_BatteryLimit, &form.Txt_HistoryYears}) {
      field->SetText(text);
      EXPECT_NE(world.app().checks().ProblemOf(*field), "") << field->name() << text;
    }
    form.Txt_DigestAt.SetText(text);
    const NetworkSettings read = ReadNetworkSettings(form);
    EXPECT_EQ(std::tuple(read.repair_limit, read.late_after, read.battery_limit, read.history_years),
              std::tuple(2000, 2.0, 11.5, 5))
        << text;
    EXPECT_FALSE(read.digest_at) << text;
  }
  form.Txt_LateAfter.SetText(" 2.5 ");
  form.Txt_DigestAt.SetText("07:30");
  EXPECT_EQ(ReadNetworkSettings(form).late_after, 2.5);
  EXPECT_EQ(ReadNetworkSettings(form).digest_at, 27000);
}

TEST_F(FieldChecksTest, FilesFoldersAndNames) {
  const std::string table = world.home.Name("table.lkp");
  const std::vector<FieldCase> rows = {
      {form.Txt_File[0], {"table.lkp", table, ".\\table.lkp"}, {"none.lkp", "/none", "\xC3\xA9"}, "There is no file /"},
      {form.Txt_File[3], {}, {""}, "choose one"},
      {form.Txt_File[1], {}, {"data", "/"}, "This is a folder"},
      {form.Txt_File[2], {}, {"C:\\table.lkp"}, "no path of this computer"},
      {form.Txt_Folder,
       {"", "data", "data/", "data/new", "data\\new\\", "/", "/new"},
       {"a/b", "/no/where"},
       "create it in"},
      {form.Txt_Folder, {}, {"table.lkp"}, "This is a file"},
      {form.Txt_Folder, {}, {"D:\\data"}, "no path of this computer"},
      {form.Txt_Prefix, {"", "site-", "\xC3\xA9"}, {"a/b", "a\\b", "/"}, "part of a file name"},
      {form.Txt_RawFileExtension, {"epd", "a.b"}, {"e/pd"}, "part of a file name"},
      {form.Txt_CalibratedFileExtension, {"txt", "EPD"}, {"epd"}, "same extension"},
      {form.Txt_DateFormat,
       {"d mmm yyyy HH:MM", "yy", "ddd"},
       {"", "HH:MM:SS", "-", "\xC3\xA9"},
       "nothing of the date"},
  };
  form.Txt_CalibratedFileExtension.SetText("txt");
  for (const FieldCase& row : rows) {
    if (&row.field == &form.Txt_CalibratedFileExtension) form.Txt_RawFileExtension.SetText("epd");
    Check(row);
  }
}

}  // namespace
}  // namespace corvane::test
