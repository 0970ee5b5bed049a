#pragma once

namespace corvane {

/// The numbers that stand for open files in trace lines; 0 stands for a file that is not open.
enum FileNumber : int { kNoFile = 0, kLogFile = 1, kOutputFile = 2, kRawFile = 3, kCalibratedFile = 4 };

}  // namespace corvane
