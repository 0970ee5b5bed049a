// Measures the scan of a raw file for what it lacks, with tables that all of its sensors are checked against.
//   corvane-bench-completeness FILE   prints "whole S again MS" (seconds; milliseconds behind ten more readings, which
//   are
//                                     appended to the file)
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "data/completeness.h"

namespace {

using namespace corvane;

double Seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void AppendReadings(const std::string& file, DateTime after) {
  std::ofstream raw(file, std::ios::app | std::ios::binary);
  for (int i = 1; i <= 10; ++i) {
    const CivilTime when = (after + i * 900).ToCivil();
    raw << when.year << '/' << when.month << '/' << when.day << ' ' << (when.hour < 10 ? "0" : "") << when.hour << ':'
        << (when.minute < 10 ? "0" : "") << when.minute
        << ",12500,29300,1,1500,900,29300,1500,900,29300,1500,900,29300\r\n";
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: corvane-bench-completeness FILE\n");
    return 2;
  }
  ScanHints hints;
  hints.moisture = TableRange{50, 4000};
  hints.salinity = TableRange{50, 4000};
  RawScan first;
  RawScan again;
  const double whole = Seconds([&] { first = ScanRawFile(argv[1], {}, hints); });
  AppendReadings(argv[1], first.scan.last);
  const double more = Seconds([&] { again = ScanRawFile(argv[1], first.scan, hints); });
  std::printf("whole %.3f s again %.3f ms\n", whole, more * 1000);
  return !again.whole && again.scan.readings == first.scan.readings + 10 ? EXIT_SUCCESS : EXIT_FAILURE;
}
