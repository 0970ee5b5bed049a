// Practising on a simulated network: nothing of it is real, and nothing of it stays.
#pragma once

#include <string>
#include <vector>

#include "base/dates.h"
#include "base/status.h"
#include "platform/practice_ground.h"

namespace corvane {

/// The text file that marks an application folder as one for practice, and says so to whoever finds it.
inline constexpr const char* kPracticeMark = "PRACTICE.txt";

/// True when `as_Folder` is an application folder for practice: what it shows is invented, and must say so.
[[nodiscard]] bool IsPractice(const std::string& as_Folder);

/// A file of an application folder for practice.
struct PracticeFile {
  std::string name;
  std::string contents;
};

/// What a practice in `as_Folder` begins with: the mark, the settings of a small network, invented calibration tables.
[[nodiscard]] std::vector<PracticeFile> PracticeFiles(const std::string& as_Folder);
/// The arguments of the simulated base station: the same network, with readings of each minute since yesterday's
/// beginning and clocks that go on from `av_Now`.
[[nodiscard]] std::vector<std::string> PracticeStation(DateTime av_Now);

/// Prepares a practice: a folder of its own, filled, with a simulated base station at its port COM1.
///
/// Sets `as_Folder` to its full path. After a failure nothing is left, and the text says what to do.
Status BeginPractice(PracticeGround& av_Ground, PracticeGround::Station av_Station, std::string& as_Folder);

}  // namespace corvane
