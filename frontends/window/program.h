#pragma once

#include "window/options.h"

class QApplication;

namespace corvane::window {

enum ExitStatus : int { kClosed = 0, kNotSaved = 1, kUsage = 2, kNotStarted = 3 };

/// Runs the window until it is closed; returns the exit status.
int RunProgram(const Options& options);

/// Prints the language file of this version; returns the exit status.
int PrintLanguageTemplate();

}  // namespace corvane::window
