// Lines of listings as servers send them, and what is read from them.
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "curl/listing_parser.h"

namespace corvane {
namespace {

const DateTime kNow = DateTime::FromCivil(2024, 3, 5, 12, 0, 0);

/// "folder|link|file name size time", or what else the line is.
std::string Read(ListingForm form, std::string_view line) {
  ListingEntry entry;
  const ListingLine kind = ParseListingLine(form, line, kNow, entry);
  if (kind != ListingLine::Entry) return kind == ListingLine::Nothing ? "nothing" : "unknown";
  const CivilTime time = entry.record.last_written.ToCivil();
  char text[64] = "";
  if (!entry.record.last_written.IsNone()) {
    std::snprintf(text, sizeof text, " %d-%02d-%02d %02d:%02d:%02d", static_cast<int>(time.year), time.month, time.day,
                  time.hour, time.minute, time.second);
  }
  const char* what = entry.is_link ? "link '" : entry.record.is_folder ? "folder '" : "file '";
  return what + entry.record.name + "' " + std::to_string(entry.record.size) + text;
}

TEST(FtpListing, LinesOfListAndOfMlsdWhoseTimesBecomeLocal) {
  setenv("TZ", "UTC-02:00", 1);
  tzset();
  const std::pair<const char*, const char*> list[] = {
      {"-rw-r--r--    1 1000     1000         5000 Mar 05 10:27 a b  c", "file 'a b  c' 5000 2024-03-05 10:27:00"},
      {"drwxr-xr-x   2 owner    group        4096 Mar  5  2023 folder", "folder 'folder' 0 2023-03-05 00:00:00"},
      {"-rw-rw-r--+  1 DOM\\user Domain Users 12 Dec 31 23:59  x ", "file ' x ' 12 2023-12-31 23:59:00"},
      {"-rw-r--r--   1 owner 7 Mar 6 11:00 soon", "file 'soon' 7 2024-03-06 11:00:00"},
      {"-rw-r--r--   1 owner 7 Mar 6 13:00 not so soon", "file 'not so soon' 7 2023-03-06 13:00:00"},
      {"-rw-r--r--   1 ftp ftp 4294967297 feb 29  2024 Mar 5 10:00 x",
       "file 'Mar 5 10:00 x' 4294967297 2024-02-29 00:00:00"},
      {"lrwxrwxrwx   1 o g 4 Mar  5  2023 name -> to", "link 'name' 0 2023-03-05 00:00:00"},
      {"d [RWCEAFMS] admin   512 Jan 16 18:53 login", "folder 'login' 0 2024-01-16 18:53:00"},
      {"03-05-24  02:03PM       <DIR>          my folder", "folder 'my folder' 0 2024-03-05 14:03:00"},
      {"12-31-1999  12:05AM          1234567 two  blanks.txt", "file 'two  blanks.txt' 1234567 1999-12-31 00:05:00"},
      {"03-05-99  14:03                  0 empty", "file 'empty' 0 1999-03-05 14:03:00"},
      {"total 12", "nothing"},
      {"", "nothing"},
      {"drwxr-xr-x 2 o g 4096 Mar  5  2023 ..", "nothing"},
      {"brw-rw---- 1 root disk 8, 0 Mar  5 10:03 sda", "unknown"},
      {"-rw-r--r-- 1 o g 5 Mar  5  2023 ../../etc/passwd", "unknown"},
      {"-rw-r--r-- 1 o g 5 Mar  5  2023 a\x1b[31m", "unknown"},
      {"-rw-r--r-- 1 o g 5 Mar  5  2023 ", "unknown"},
      {"-rw-r--r-- 1 o g 99999999999999999999 Mar  5  2023 x", "unknown"},
      {"-rw-r--r-- 1 o g 5 M\xc3\xa4r  5  2023 x", "unknown"},
      {"13-05-24  02:03PM       <DIR>          month 13", "unknown"},
      {"03-05-24  02:03PM       <DIR>", "unknown"},
      {"could not list", "unknown"},
  };
  const std::pair<const char*, const char*> facts[] = {
      {"type=file;size=12;modify=20240305223015; a b", "file 'a b' 12 2024-03-06 00:30:15"},
      {"Modify=20240305223015.123;TYPE=File;Size=4294967297;  x", "file ' x' 4294967297 2024-03-06 00:30:15"},
      {"type=dir;sizd=4096;modify=20240101000000;perm=el; f", "folder 'f' 0 2024-01-01 02:00:00"},
      {"type=OS.unix=slink:/else;size=3; l", "link 'l' 3"},
      {"size=5;modify=never; no time", "file 'no time' 5"},
      {"type=cdir;modify=20240305223015; .", "nothing"},
      {"type=pdir; /above", "nothing"},
      {" bare", "file 'bare' 0"},
      {"type=file;size=12;", "unknown"},
      {"type=file; a/b", "unknown"},
      {"what is this?", "unknown"},
  };
  for (const auto& [line, read] : list) EXPECT_EQ(Read(ListingForm::List, line), read) << line;
  for (const auto& [line, read] : facts) EXPECT_EQ(Read(ListingForm::Facts, line), read) << line;
  unsetenv("TZ");
  tzset();
}

}  // namespace
}  // namespace corvane
