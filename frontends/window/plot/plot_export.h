// A plot as a file.
#pragma once

#include <functional>
#include <string>

#include <QFont>
#include <QImage>
#include <QSizeF>

#include "base/status.h"
#include "window/plot/plot_line.h"

namespace corvane::window {

/// How a plot is drawn on paper.
struct PlotLayout {
  TimeSpan span;
  QSizeF size;  ///< in the window's pixels
  QFont font;
};

/// The plot on white, each pixel of the window being two by two.
[[nodiscard]] QImage PictureOf(const PlotContents& contents, const PlotLayout& layout);
/// Writes the plot as the ending of the name says: .svg, .pdf, any other as PNG.
Status SavePicture(const std::string& file, const PlotContents& contents, const PlotLayout& layout);
/// Writes the readings of the span as comma-separated values: the date, then a column for each line.
Status SaveTable(const std::string& file, const PlotContents& contents, const TimeSpan& span,
                 const std::function<bool()>& cancelled);

}  // namespace corvane::window
