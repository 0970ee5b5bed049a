// Programs that this one starts.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace corvane {

/// Starts `command` (program, arguments) in a session and process group of its own.
///
/// The program is looked up in `$PATH`. It gets `input` as its standard input and `output` as its standard and error
/// output, "/dev/null" for one below 0, and no other descriptor of ours; no signal is blocked or ignored in it.
/// Returns 0 and sets `process`, which somebody has to wait for, or the errno that kept it from starting.
[[nodiscard]] int StartProcess(const std::vector<std::string>& command, int input, int output, pid_t& process);

/// Takes the end of `process`, whenever it comes, so that it leaves no zombie; returns at once.
void ReapAside(pid_t process);

}  // namespace corvane
