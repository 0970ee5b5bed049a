// Measures single steps of the core: loading and saving the settings, and finding the last date of a raw file.
//   corvane-bench-core settings UNITS FOLDER   prints "load S save S" (seconds), the settings file is made in FOLDER
//   corvane-bench-core last-date FILE          prints the milliseconds of one look
//   corvane-bench-core history UNITS FOLDER kept|none   prints "first F next N" (milliseconds): rounds without a port,
//                                              with and without a history; the raw files are made in FOLDER/data
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "app/application.h"
#include "curl/curl_internet_client.h"
#include "data/raw_file.h"
#include "data/raw_repair.h"
#include "desktop/posix_shell.h"
#include "posix/posix_loop.h"
#include "printing_dialogs.h"
#include "serial/termios_port.h"
#include "sqlite/sqlite_history_store.h"
#include "zip/libzip_component.h"

namespace {

using namespace corvane;

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int MeasureSettings(int units, const std::string& folder) {
  std::ofstream file(folder + "/corvane.ini");
  file << "[Units]\nNumUnits=" << units << "\n";
  for (int i = 1; i <= units; ++i) {
    file << "Name" << i << "=Station number " << i << "\nID" << i << "=" << i << "\nActive" << i << "=1\nRelayID" << i
         << "=1\nftpFile" << i << "=0\nClientID" << i << "=1\nGetFrom" << i << "=0\nMoistureCorrection" << i
         << "=12.5\nSalinityCorrection" << i << "=3\n";
  }
  file.close();
  PosixLoop loop;
  TermiosPort port(loop, loop);
  PosixShell shell("corvane-bench-core", folder);
  PrintingDialogs dialogs;
  CurlInternetClient internet(loop);
  LibzipComponent zip(loop);
  Application app(Platform{loop, port, shell, dialogs, internet, zip}, folder);
  const double load = Seconds([&app] { app.life().OnWindowCreate(); });
  const double save = Seconds([&app] { app.life().OnWindowClose(); });
  std::printf("load %.3f save %.3f\n", load, save);
  return app.registry().Units.count() == units ? EXIT_SUCCESS : EXIT_FAILURE;
}

int MeasureLastDate(const std::string& file) {
  LastDateResult found;
  const double seconds = Seconds([&] {
    static_cast<void>(RepairTornTail(file));
    found = ReadLastDate(file, [] { return true; });
  });
  std::printf("%.3f\n", seconds * 1000);
  return found.last_date.IsNone() ? EXIT_FAILURE : EXIT_SUCCESS;
}

/// Appends `hours` readings, one an hour, to the raw file of each unit, the first `done` hours behind the begin.
void AddReadings(const std::string& folder, int units, int done, int hours) {
  for (int unit = 1; unit <= units; ++unit) {
    char name[64];
    std::snprintf(name, sizeof name, "/data/%05d.epd", unit);
    std::ofstream file(folder + name, std::ios::app | std::ios::binary);
    if (done == 0) file << "V2," << unit << ",4,3,1,2010/3/12 10:00\r\n";
    for (int hour = done; hour < done + hours; ++hour) {
      const CivilTime when = (DateTime::FromCivil(2010, 1, 1) + hour * 3600).ToCivil();
      file << when.year << "/" << when.month << "/" << when.day << " " << when.hour << ":00,12500,29310,1,"
           << 1500 + hour % 50 << ",900,29300\r\n";
    }
  }
}

/// What writing down a round over `units` units costs: all of them are told, each raw file has grown by a day.
int MeasureHistory(int units, const std::string& folder, bool kept) {
  std::ofstream(folder + "/corvane.ini") << "[General]\nFolder=data\n[Ports]\nCOM1=" << folder
                                         << "/none\n[Units]\nNumUnits=" << units << "\n";
  AddReadings(folder, units, 0, 2000);
  PosixLoop loop;
  TermiosPort port(loop, loop);
  PosixShell shell("corvane-bench-core", folder);
  PrintingDialogs dialogs;
  CurlInternetClient internet(loop);
  LibzipComponent zip(loop);
  SqliteHistoryStore store;
  Application app(Platform{loop, port, shell, dialogs, internet, zip, {}, {}, kept ? &store : nullptr}, folder);
  app.life().OnWindowCreate();
  app.history().after_round = [](const NetworkStatus&) {};
  const auto round = [&app] { app.commands().Process(true, kGetDate); };
  const double first = Seconds(round);
  AddReadings(folder, units, 2000, 24);
  const double next = Seconds(round);
  std::printf("first %.1f next %.1f\n", first * 1000, next * 1000);
  return app.life().OnWindowClose() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "settings") == 0) return MeasureSettings(std::atoi(argv[2]), argv[3]);
  if (argc == 3 && std::strcmp(argv[1], "last-date") == 0) return MeasureLastDate(argv[2]);
  if (argc == 5 && std::strcmp(argv[1], "history") == 0) {
    return MeasureHistory(std::atoi(argv[2]), argv[3], std::strcmp(argv[4], "kept") == 0);
  }
  std::fprintf(stderr,
               "usage: corvane-bench-core settings UNITS FOLDER | last-date FILE | history UNITS FOLDER kept|none\n");
  return 2;
}
