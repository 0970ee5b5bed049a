#include "window/plot/plot_export.h"

#include <array>
#include <cerrno>
#include <optional>
#include <vector>

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include "base/format.h"
#include "base/number_fields.h"
#include "base/outside_text.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "window/plot/plot_painter.h"
#include "window/plot/plot_phrases.h"

namespace corvane::window {
namespace {

constexpr double kPicturePixels = 2;
constexpr int kPaperDots = 300;  // an inch
constexpr double kWindowDots = 96;
constexpr double kMillimetresPerInch = 25.4;

void PaintOn(QPaintDevice& device, double scale, const PlotContents& contents, const PlotLayout& layout) {
  QPainter painter(&device);
  painter.scale(scale, scale);
  painter.setFont(layout.font);
  PlotPainter(painter, QRectF(QPointF(), layout.size), contents, layout.span).Paint(PlotColours::OfPaper());
}

void WriteSvg(QBuffer& out, const PlotContents& contents, const PlotLayout& layout) {
  QSvgGenerator generator;
  generator.setOutputDevice(&out);
  generator.setSize(layout.size.toSize());
  generator.setViewBox(QRectF(QPointF(), layout.size));
  generator.setTitle("Corvane");
  PaintOn(generator, 1, contents, layout);
}

void WritePdf(QBuffer& out, const PlotContents& contents, const PlotLayout& layout) {
  QPdfWriter writer(&out);
  writer.setResolution(kPaperDots);
  writer.setPageSize(QPageSize(layout.size / kWindowDots * kMillimetresPerInch, QPageSize::Millimeter));
  writer.setPageMargins(QMarginsF());
  writer.setTitle("Corvane");
  PlotLayout on_paper = layout;
  // The painter counts dots; a font of points would be scaled twice.
  on_paper.font.setPixelSize(QFontInfo(layout.font).pixelSize());
  PaintOn(writer, kPaperDots / kWindowDots, contents, on_paper);
}

/// A field of a comma-separated file, as a spreadsheet reads it.
std::string TitleField(const PlotContents& contents, const PlotLine& line) {
  const QString title = contents.axis_titles[static_cast<std::size_t>(line.axis())];
  const QString quantity = title.section(" (", 0, 0);
  const bool named = line.name().contains(quantity, Qt::CaseInsensitive);
  const std::string text =
      SpreadsheetField((line.name() + (named ? title.mid(quantity.size()) : ", " + title)).toStdString());
  std::string field = "\"";
  for (const char c : text) field += c == '"' ? "\"\"" : std::string(1, c);
  return field + "\"";
}

}  // namespace

QImage PictureOf(const PlotContents& contents, const PlotLayout& layout) {
  QImage image((layout.size * kPicturePixels).toSize(), QImage::Format_RGB32);
  image.setDevicePixelRatio(kPicturePixels);
  PaintOn(image, 1, contents, layout);
  return image;
}

Status SavePicture(const std::string& file, const PlotContents& contents, const PlotLayout& layout) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  const QString name = QString::fromStdString(file);
  if (name.endsWith(".svg", Qt::CaseInsensitive)) {
    WriteSvg(buffer, contents, layout);
  } else if (name.endsWith(".pdf", Qt::CaseInsensitive)) {
    WritePdf(buffer, contents, layout);
  } else if (!PictureOf(contents, layout).save(&buffer, "PNG")) {
    return Status(EINVAL, "the picture cannot be made");
  }
  return WriteFileAtomically(file, buffer.data().toStdString());
}

Status SaveTable(const std::string& file, const PlotContents& contents, const TimeSpan& span,
                 const std::function<bool()>& cancelled) {
  ReplacementFile out(file);
  if (Status opened = out.Open(); !opened.ok()) return opened;
  std::string& text = out.buffer();
  text += contents.phrases.Text(kPlotSays.date);
  std::vector<std::size_t> next;
  for (const PlotLine& line : contents.lines) {
    text += "," + TitleField(contents, line);
    next.push_back(line.FirstFrom(span.from));
  }
  text += kLineBreak;
  DateWriter dates("yyyy-mm-dd hh:nn");
  std::array<char, kLongestFixed> number{};
  while (true) {
    std::optional<std::int64_t> when;
    for (std::size_t i = 0; i < next.size(); ++i) {
      const PlotLine& line = contents.lines[i];
      if (next[i] < line.size() && (!when || line.TimeAt(next[i]) < *when)) when = line.TimeAt(next[i]);
    }
    if (!when || static_cast<double>(*when) > span.to) break;
    dates.AppendTo(text, DateTime(*when));
    for (std::size_t i = 0; i < next.size(); ++i) {
      const PlotLine& line = contents.lines[i];
      text += ',';
      if (next[i] >= line.size() || line.TimeAt(next[i]) != *when) continue;
      const int decimals = contents.decimals[static_cast<std::size_t>(line.axis())];
      text.append(number.data(), PutFixed(number.data(), line.ValueAt(next[i]++), decimals));
    }
    text += kLineBreak;
    if (Status flushed = out.FlushWhenFull(); !flushed.ok()) return flushed;
    if (cancelled()) return Status(ECANCELED, "it was cancelled");
  }
  return out.Commit();
}

}  // namespace corvane::window
