// Measures single steps of the core: loading and saving the settings, and finding the last date of a raw file.
//   corvane-bench-core settings UNITS FOLDER   prints "load S save S" (seconds), the settings file is made in FOLDER
//   corvane-bench-core last-date FILE          prints the milliseconds of one look
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

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::strcmp(argv[1], "settings") == 0) return MeasureSettings(std::atoi(argv[2]), argv[3]);
  if (argc == 3 && std::strcmp(argv[1], "last-date") == 0) return MeasureLastDate(argv[2]);
  std::fprintf(stderr, "usage: corvane-bench-core settings UNITS FOLDER | last-date FILE\n");
  return 2;
}
