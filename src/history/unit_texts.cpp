#include "history/unit_texts.h"

#include <cmath>

#include "base/format.h"
#include "base/numbers.h"
#include "history/status_texts.h"
#include "history/unit_status.h"

namespace corvane {
namespace {

constexpr double kSlopeShown = 0.005;  ///< volts a day

std::string AgoText(Moment av_When, Moment av_Now) {
  const std::int64_t ago = av_Now - av_When;
  return ago < 0 ? "in " + SpanText(ago) : SpanText(ago) + " ago";
}

}  // namespace

std::string LastReadingText(const UnitStatus& av_Unit) {
  if (av_Unit.last_reading.IsNone()) return "";
  if (!av_Unit.reading_age) return WhenText(av_Unit.last_reading);
  const DateTime now = av_Unit.last_reading + *av_Unit.reading_age;
  const bool this_year = FormatDate(now, "yyyy") == FormatDate(av_Unit.last_reading, "yyyy");
  return (this_year ? FormatDate(av_Unit.last_reading, "d mmm HH:MM") : WhenText(av_Unit.last_reading)) + " (" +
         BriefSpanText(*av_Unit.reading_age) + (*av_Unit.reading_age < 0 ? " ahead)" : ")");
}

std::string LastContactText(const UnitStatus& av_Unit, Moment av_Now) {
  if (av_Unit.last_contact.IsNone()) return "";
  return av_Unit.contact + ", " + AgoText(av_Unit.last_contact, av_Now);
}

std::string BatteryText(const UnitStatus& av_Unit) {
  if (!av_Unit.battery) return "";
  const std::string volts = FixedText(*av_Unit.battery, 2) + " V";
  if (av_Unit.battery_days) {
    return volts + ", " + CountText(static_cast<std::int64_t>(*av_Unit.battery_days), "day", "days") + " left";
  }
  if (!av_Unit.battery_slope || std::fabs(*av_Unit.battery_slope) < kSlopeShown) return volts;
  return volts + (*av_Unit.battery_slope > 0 ? ", +" : ", ") + FixedText(*av_Unit.battery_slope, 2) + " V a day";
}

std::string CompleteText(const UnitStatus& av_Unit) {
  return av_Unit.complete ? FixedText(std::floor(*av_Unit.complete * 1000) / 10, 1) : "";
}

std::string KnownToText(const UnitStatus& av_Unit, Moment av_Now) {
  if (av_Unit.state == UnitState::Off || !av_Unit.complete || av_Unit.last_answered.IsNone()) return "";
  const bool lately = av_Now - av_Unit.last_answered <= kHeardLately;
  return lately ? "" : "to " + FormatDate(av_Unit.last_answered.Local(), "d mmm");
}

std::string GapsText(const UnitStatus& av_Unit) {
  if (av_Unit.gaps == 0) return "";
  std::string text = std::to_string(av_Unit.gaps) + ": " + CountText(av_Unit.missing, "reading", "readings");
  if (av_Unit.lost > 0) text += ", " + std::to_string(av_Unit.lost) + " lost";
  return text;
}

std::string DeliveredText(const UnitStatus& av_Unit, Moment av_Now) {
  std::string when = av_Unit.delivered.IsNone() ? "" : AgoText(av_Unit.delivered, av_Now);
  const DateTime last = av_Unit.delivered_to;
  if (!when.empty() && !last.IsNone() && av_Unit.delivered.Local() - last > kHeardLately)
    when += ", up to " + WhenText(last);
  if (av_Unit.delivery_problem.empty()) return when;
  return (when.empty() ? "never" : when) + ", then: " + av_Unit.delivery_problem;
}

}  // namespace corvane
