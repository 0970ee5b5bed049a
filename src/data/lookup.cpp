#include "data/lookup.h"

#include <limits>
#include <optional>

#include "base/files.h"
#include "base/line_reader.h"
#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

double NumberIn(std::string_view as_Field, std::int64_t al_Line) {
  const std::optional<double> number = ParseNumber(as_Field);
  if (!number) {
    throw RunTimeError("Line " + std::to_string(al_Line) + ": \"" + std::string(as_Field) + "\" is not a number");
  }
  return *number;
}

}  // namespace

void ReadLookupPoints(const std::string& as_File, const std::function<void(double x, double y)>& av_Take) {
  LineReader reader;
  Require(reader.Open(as_File));
  std::string_view line;
  std::vector<std::string_view> fields;
  for (std::int64_t number = 1; reader.Next(line); ++number) {
    if (number == 1 && line.starts_with(kByteOrderMark)) line.remove_prefix(kByteOrderMark.size());
    SplitInto(line, ',', fields);
    if (fields.size() < 2) continue;
    const double x = NumberIn(fields[0], number);
    av_Take(x, NumberIn(fields[1], number));
  }
  Require(reader.status());
}

void LookupTable::Read(const std::string& as_File) {
  position_ = 0;
  points_.assign(1, Point{});
  points_[0].X = -std::numeric_limits<double>::infinity();
  ReadLookupPoints(as_File, [this](double ad_X, double ad_Y) {
    Point point;
    point.X = ad_X;
    point.Y = ad_Y;
    points_.push_back(point);
  });
  ComputeSegments();
}

void LookupTable::ComputeSegments() {
  if (Count() == 0) return;
  for (std::size_t i = 1; i < Count(); ++i) {
    Point& start = points_[i];
    const Point& end = points_[i + 1];
    // Intended: a repeated or descending X is no error, its segment would pass the input through unchanged.
    const bool usable = end.X > start.X;
    start.Slope = usable ? (end.Y - start.Y) / (end.X - start.X) : 1;
    start.Intercept = usable ? start.Y - start.Slope * start.X : 0;
  }
  points_.front().Intercept = points_[1].Y;
  points_.back().Slope = 0;
  points_.back().Intercept = points_.back().Y;
  position_ = 1;
}

void CLookup::SetFile(std::string_view as_File) {
  file_name_ = as_File;
  loaded_ = false;
  failed_ = false;
}

bool CLookup::Initialise(std::string_view as_File) {
  SetFile(as_File);
  if (!Load()) return false;
  if (Count() == 0) ReportError("The table holds no points", "Load File: " + file_name_);
  return Count() > 0;
}

bool CLookup::Load() {
  if (loaded_) return true;
  try {
    table_.Read(file_name_);
    loaded_ = true;
  } catch (const RunTimeError& error) {
    failed_ = true;
    ReportError(error.what(), "Load File: " + file_name_);
  }
  return loaded_;
}

void CLookup::ReportError(std::string_view as_Description, std::string_view as_Operation) {
  std::string text(as_Description);
  text += kLineBreak;
  text += "CLookup:";
  text += as_Operation;
  messages_.ShowTimedMessage(text, kOkOnly | kExclamationIcon);
}

}  // namespace corvane
