// Where the marks of an axis stand, and what is written at them.
#pragma once

#include <vector>

#include <QString>

#include "lang/phrases.h"
#include "window/plot/plot_line.h"

namespace corvane::window {

/// A mark of an axis. `context` is what the text leaves open (the day of a time, the year of a day); empty where it is
/// that of the mark before.
struct Tick {
  double at = 0;
  QString text;
  QString context;
};

/// Round numbers from `least` to `most`, at most about `count`.
[[nodiscard]] std::vector<Tick> NumberTicks(double least, double most, int count);
/// Round times of the span, at most about `count`.
[[nodiscard]] std::vector<Tick> TimeTicks(const TimeSpan& span, int count, const Phrases& phrases = {});
/// A time as it is written beside a value.
[[nodiscard]] QString TimeText(double seconds, const Phrases& phrases);

}  // namespace corvane::window
