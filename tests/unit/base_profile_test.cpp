#include "base/profile.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace corvane::test {
namespace {

using namespace std::string_literals;

/// A profile loaded from `text`.
ProfileFile Loaded(const std::string& text) {
  ProfileFile profile;
  profile.Parse(text);
  return profile;
}

struct ReadCase {
  const char* name;
  std::string text;
  const char* expected;  ///< of the key "Name1" in "Units", "-" when it is missing
  bool broken;
};

const ReadCase kReads[] = {
    {"letter case", "[UNITS]\nnAME1=a\n", "a", false},
    {"blanks around", " [ Units ]\t\n  Name1 \t= a b \n", "a b", false},
    {"one pair of quotes", "[Units]\nName1=\"\" a \"\"\n", "\" a \"", false},
    {"an equals sign in the value", "[Units]\nName1=a=b;c\n", "a=b;c", false},
    {"the first of double keys", "[Units]\nName1=a\nNAME1=b\n", "a", false},
    {"the first of double sections", "[Units]\nID1=1\n[x]\n[units]\nName1=b\n", "-", false},
    {"comments", "[Units]\n;Name1=a\n # Name1=b\n", "-", false},
    {"a comment behind the heading", "[General]\n[Units] ; of [1]\nName1=a\n", "a", false},
    {"mixed line ends, none at the end", "[Units]\r\n\nID1=1\r\nName1=a", "a", false},
    {"NUL bytes", "[Units]\nName1=a\0\0b\0\n"s, "a  b", false},
    {"CR alone at the line ends", "[x]\r[Units]\rName1=a\rID1=2\r", "a", false},
    {"a heading without a name", "[Units]\nID1=1\n[]\nName1=a\n", "-", true},
    {"a torn heading", "[Units\nName1=a\n", "-", true},
    {"a line without a key", "[Units]\nName1=a\n=5\n", "a", true},
};

TEST(ProfileFiles, AreReadTolerantly) {
  for (const ReadCase& row : kReads) {
    const ProfileFile profile = Loaded(row.text);
    EXPECT_EQ(profile.Get("Units", "Name1", "-"), row.expected) << row.name;
    EXPECT_EQ(profile.has_broken_lines(), row.broken) << row.name;
    EXPECT_EQ(profile.has_doubled_sections(), row.name == "the first of double sections"s) << row.name;
  }
}

TEST(ProfileFiles, KeepEverythingElseOnASave) {
  constexpr std::pair<const char*, const char*> kRows[] = {
      {";\r\n[general]\r\n  KEY = \"old\" \r\nother\r\n", ";\r\n[general]\r\n  KEY = new\r\nother\r\n"},
      {"[General]\nKey=1\nKey=2\n", "[General]\nKey=new\nKey=2\n"},
      {"[General]\nA=1\n\n \n[B]\n", "[General]\nA=1\nKey=new\n\n \n[B]\n"},
      {"[General]\n[B]\nKey=1", "[General]\nKey=new\n[B]\nKey=1\n"},
      {"[General]\rA=1\r", "[General]\rA=1\rKey=new\r"},
      {"[B]\nC=1", "[B]\nC=1\n\n[General]\nKey=new\n"},
      {"\xEF\xBB\xBF[General]\r\nA=1", "\xEF\xBB\xBF[General]\r\nA=1\r\nKey=new\r\n"},
  };
  for (const auto& [before, after] : kRows) {
    ProfileFile profile = Loaded(before);
    profile.Set("General", "Key", "new");
    EXPECT_EQ(profile.Text(), after);
  }
}

TEST(ProfileFiles, BringValuesBack) {
  for (const std::string& value : {""s, " blanks "s, "\"quoted\""s, "\""s, "[x]"s, "; a=b"s, "gr\xC3\xBC\xC3\x9F"s,
                                   "a\r\nb\0c\t"s, std::string(1'000'000, 'x')}) {
    ProfileFile profile;
    profile.Set("S", "Key", "other");
    profile.Set("S", "Key", value);
    profile.Parse(profile.Text());
    EXPECT_EQ(profile.Get("S", "Key", "-"), value[0] == 'a' ? "a  b c " : value);
    EXPECT_EQ(profile.Keys("s"), std::vector<std::string>{"Key"});
  }
}

}  // namespace
}  // namespace corvane::test
