#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/messages.h"

namespace corvane {

/// Hands on the points of a lookup file in their order; throws `RunTimeError` when it cannot be read.
void ReadLookupPoints(const std::string& as_File, const std::function<void(double x, double y)>& av_Take);

/// The points of a lookup file, joined by lines, clamped outside their range. Format: docs/formats/lookup-file.md.
class LookupTable {
 public:
  /// Reads the file in place of what the table held; throws `RunTimeError` when it cannot be read.
  void Read(const std::string& as_File);
  /// The calibrated value; 0 when the table is empty. The search starts where the last one ended.
  [[nodiscard]] double Lookup(double ad_X) {
    if (points_.size() < 2) return 0;
    const Point* at = points_.data() + position_;
    if (ad_X < at->X) {
      while (ad_X < at->X) --at;  // ends at the sentinel
    } else {
      const Point* const last = &points_.back();
      while (at != last && ad_X >= at[1].X) ++at;
    }
    position_ = static_cast<std::size_t>(at - points_.data());
    return ad_X * at->Slope + at->Intercept;
  }
  /// Number of points.
  [[nodiscard]] std::size_t Count() const { return points_.empty() ? 0 : points_.size() - 1; }

 private:
  struct Point {
    double X = 0;
    double Y = 0;
    double Slope = 0;
    double Intercept = 0;
  };
  void ComputeSegments();

  std::size_t position_ = 0;
  std::vector<Point> points_;  ///< index 0 is the sentinel below the first point
};

/// A lookup table of the settings, read when it is first used; what is wrong with it is shown.
class CLookup {
 public:
  explicit CLookup(Messages& av_Messages) : messages_(av_Messages) {}

  /// Stores the file's full name; the next use reads it.
  void SetFile(std::string_view as_File);
  /// Stores the name and reads the file; true if the table holds at least one point.
  [[nodiscard]] bool Initialise(std::string_view as_File);
  /// Reads the file if it is not loaded; false after an error, which has been shown. **Yields** then.
  bool Load();
  /// The calibrated value; 0 when the table failed or is empty.
  [[nodiscard]] double Lookup(double ad_X) { return loaded_ || (!failed_ && Load()) ? table_.Lookup(ad_X) : 0; }
  /// Number of points.
  [[nodiscard]] std::size_t Count() const { return table_.Count(); }

 private:
  void ReportError(std::string_view as_Description, std::string_view as_Operation);

  Messages& messages_;
  std::string file_name_;
  bool loaded_ = false;
  bool failed_ = false;
  LookupTable table_;
};

/// The three tables of the settings page.
struct Lookups {
  explicit Lookups(Messages& av_Messages) : Moisture(av_Messages), Salinity(av_Messages), Correction(av_Messages) {}

  CLookup Moisture;
  CLookup Salinity;
  CLookup Correction;
};

}  // namespace corvane
