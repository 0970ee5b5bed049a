// Zips or unzips one file as the transfer commands do and prints the seconds that it took.
//
// usage: corvane-bench-zip zip FILE ARCHIVE
//        corvane-bench-zip unzip ARCHIVE FOLDER NAME     (full paths; NAME is the file's name in the archive)
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include "posix/posix_loop.h"
#include "zip/libzip_component.h"

int main(int argc, char** argv) {
  using namespace corvane;
  const std::string_view what = argc > 1 ? argv[1] : "";
  const bool zips = what == "zip" && argc == 4;
  if (!zips && !(what == "unzip" && argc == 5)) {
    std::fprintf(stderr, "usage: corvane-bench-zip zip FILE ARCHIVE | unzip ARCHIVE FOLDER NAME\n");
    return 2;
  }
  PosixLoop loop;
  LibzipComponent zip(loop);
  zip.SetZipFilename(argv[zips ? 3 : 2]);
  zip.SetFilesToProcess(argv[zips ? 2 : 4]);
  if (!zips) zip.SetUnzipFolder(argv[3]);
  const auto begin = std::chrono::steady_clock::now();
  const int result = zips ? zip.Zip() : zip.Unzip();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  if (result != kZipOk) {
    std::fprintf(stderr, "corvane-bench-zip: %d %s\n", result, zip.LastErrorText().c_str());
    return 1;
  }
  std::printf("%.4f\n", seconds.count());
  return 0;
}
