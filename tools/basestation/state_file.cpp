#include "state_file.h"

#include <cstdio>
#include <fstream>

#include "run_time_error.h"

namespace corvane::basestation {

void LoadState(const std::string& path, Station& station) {
  std::ifstream file(path);
  try {
    station.Restore(file);
  } catch (const RunTimeError& error) {
    throw RunTimeError(path + " " + error.what());
  }
}

void SaveState(const std::string& path, const Station& station) {
  const std::string temporary = path + ".new";
  std::ofstream file(temporary, std::ios::trunc);
  station.WriteState(file);
  file.close();
  if (!file || std::rename(temporary.c_str(), path.c_str()) != 0) {
    throw RunTimeError("cannot write " + path);
  }
}

}  // namespace corvane::basestation
