// What the toolkit says just before it ends the process by itself.
#pragma once

namespace corvane::window {

/// From now on the toolkit's messages pass through here, to the standard error output as ever.
///
/// A fatal one, until the display is there, ends the program with `kNotStarted` and a line that names the console
/// program, instead of an abort.
void WatchToolkitMessages();
/// The display is there: fatal messages are left to the toolkit again.
void DisplayIsThere();
/// `save` is called, from any thread, when the connection to a Wayland compositor is lost. What returns from it goes on
/// to the end of the process.
void OnLostConnection(void (*save)());

/// The line that names the console program.
void SayThereIsNoDisplay();

}  // namespace corvane::window
