#include "setup/practice.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "base/files.h"
#include "base/format.h"
#include "base/paths.h"
#include "base/profile.h"
#include "state/settings_file.h"

namespace corvane {
namespace {

constexpr std::int64_t kSecondsAMinute = 60;
constexpr const char* kDayAfterWhichItEnds = "86400";

constexpr const char* kMarkText =
    "PRACTICE\n"
    "\n"
    "This folder is for practising with Corvane. Its stations are simulated, its readings and its calibration tables\n"
    "are invented: use none of them for real data. The folder goes away, with all that is in it, when the practice\n"
    "ends: with its window, or by \"corvanectl practise --end\".\n";

constexpr const char* kSettings =
    "; PRACTICE: a simulated network with invented readings and tables\n"
    "[General]\n"
    "Folder=data\n"
    "Port=1\n"
    "Settings=9600,N,8,1\n"
    "Prefix=practice\n"
    "UnitWait=0.1\n"
    "Timeout=5\n"
    "DataTimeout=5\n"
    "LogSize=20\n"
    "GoOnPastFailures=1\n"
    "Backup=1\n"
    "BackupDestination=backup\n"
    "[Units]\n"
    "NumUnits=4\n"
    "Name1=Practice orchard\n"
    "ID1=1\n"
    "ClientID1=1\n"
    "Depths1=10;30;60\n"
    "Name2=Practice hill\n"
    "ID2=2\n"
    "RelayID2=1\n"
    "ClientID2=1\n"
    "Depths2=10;30;60\n"
    "Name3=Practice river\n"
    "ID3=3\n"
    "RelayID3=1\n"
    "ClientID3=2\n"
    "Depths3=10;30;60\n"
    "Name4=Practice nursery\n"
    "ID4=4\n"
    "RelayID4=2\n"
    "ClientID4=2\n"
    "Depths4=10;30;60\n"
    "[Relays]\n"
    "NumRelays=3\n"
    "Name2=Practice tower\n"
    "ID2=1\n"
    "Name3=Practice hill top\n"
    "ID3=2\n"
    "[Clients]\n"
    "NumClients=2\n"
    "Name1=Practice Orchards\n"
    "ID1=1\n"
    "Folder1=orchards\n"
    "Name2=Practice River Farm\n"
    "ID2=2\n"
    "Folder2=river\n";
/// The units of the settings, with the relay that each is behind.
constexpr const char* kPlaces = "1,2@1,3@1,4@2";

constexpr const char* kMoistureTable =
    "0,0\n500,2\n1000,7.5\n1500,14.5\n2000,22\n2500,29.5\n3000,36\n3500,42\n4095,48\n";
constexpr const char* kSalinityTable = "0,0\n500,0.4\n1000,0.9\n1500,1.6\n2000,2.5\n2500,3.7\n3000,5.2\n4095,9.5\n";
constexpr const char* kCorrectionTable = "0,0\n1,-0.2\n2,-0.6\n4,-1.5\n10,-3.8\n";

Status Fill(const std::string& folder) {
  for (const PracticeFile& file : PracticeFiles(folder)) {
    OutputFile output;
    Status written = output.Create(AddBackslash(folder) + file.name, kOwnerOnly);
    if (written.ok()) written = output.Write(file.contents);
    if (!written.ok()) return written;
  }
  return Status::Ok();
}

Status Prepare(PracticeGround& ground, PracticeGround::Station station, const std::string& folder) {
  if (AddBackslash(folder).size() + std::string(kPracticeDevice).size() > kLongestValue) {
    return {ENAMETOOLONG, "the folder for practice has too long a name, " + folder +
                              ": name a shorter one with the variable XDG_CACHE_HOME"};
  }
  const Status filled = Fill(folder);
  return filled.ok() ? ground.StartStation(folder, PracticeStation(ground.Now()), station) : filled;
}

}  // namespace

bool IsPractice(const std::string& as_Folder) {
  return ExamineFile(AddBackslash(as_Folder) + kPracticeMark).has_value();
}

std::vector<PracticeFile> PracticeFiles(const std::string& as_Folder) {
  ProfileFile settings;
  settings.Parse(kSettings);
  settings.Set("Ports", "COM1", AddBackslash(as_Folder) + kPracticeDevice);
  return {{kPracticeMark, kMarkText},
          {std::string(kSettingsFile), settings.Text()},
          {"moisture.lkp", kMoistureTable},
          {"salinity.lkp", kSalinityTable},
          {"salcorr.lkp", kCorrectionTable}};
}

std::vector<std::string> PracticeStation(DateTime av_Now) {
  const DateTime start = av_Now.Midnight() - kSecondsPerDay;
  // One at the start, and one behind each whole minute.
  const std::int64_t readings = (av_Now - start) / kSecondsAMinute + 1;
  return {"--units",       kPlaces,
          "--interval",    "1",
          "--start",       FormatDate(start, "yyyy/mm/dd HH:MM"),
          "--readings",    std::to_string(readings),
          "--clock-speed", "1",
          "--idle-exit",   kDayAfterWhichItEnds};
}

Status BeginPractice(PracticeGround& av_Ground, PracticeGround::Station av_Station, std::string& as_Folder) {
  if (const Status made = av_Ground.MakeFolder(as_Folder); !made.ok()) return made;
  Status prepared = Prepare(av_Ground, av_Station, as_Folder);
  // What cannot be removed now goes with the next practice.
  if (!prepared.ok()) static_cast<void>(av_Ground.Remove(as_Folder));
  return prepared;
}

}  // namespace corvane
