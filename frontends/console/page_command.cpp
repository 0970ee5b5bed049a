#include "page_command.h"

#include <functional>
#include <vector>

#include "base/outside_text.h"
#include "base/paths.h"
#include "desktop/terminal.h"
#include "full_path.h"
#include "history_reading.h"
#include "page/page_contents.h"
#include "page/page_html.h"

namespace corvane::console {
namespace {

using SeriesMaker = std::function<std::vector<PageSeries>(const NetworkStatus&)>;

/// Writes the page of the application folder `home` into `folder`.
Status Make(const std::string& home, const std::string& folder, const SeriesMaker& series) {
  HistoryReading reading(home);
  if (Status read = reading.ReadForStatus(); !read.ok()) return read;
  const NetworkStatus network = reading.StatusOf({});
  HistoryContents history;
  if (Status read = reading.Read(PageQuery(network), history); !read.ok()) return read;
  PageContents contents = ContentsOf(network, history);
  AddCharts(contents, series(network));
  Status written = WritePage(folder, PageHtml(contents));
  return written.ok() ? written : Status(written.code(), "the page cannot be written: " + written.text());
}

std::string DoneText(const std::string& folder) {
  return "The page is " + AddBackslash(folder) + std::string(kPageName);
}

}  // namespace

int MakePage(Desk& desk, const Options& options) {
  const std::string folder = FullPath(options.arguments[0]);
  const Status made = Make(desk.app.app().Folder(), folder, [&desk](const NetworkStatus& network) {
    return SeriesOf(network, desk.app.form(), desk.app.registry(), desk.app.names());
  });
  if (made.ok()) {
    desk.output.Line(DoneText(folder));
  } else {
    desk.output.Error("corvanectl: " + made.text());
  }
  return made.ok() ? kAllWell : kNotStarted;
}

int MakePageOfHistory(const Options& options, const std::string& folder) {
  const std::string target = FullPath(options.arguments[0]);
  const Status made = Make(folder, target, [](const NetworkStatus&) { return std::vector<PageSeries>(); });
  if (!made.ok()) {
    WriteOut(kStandardError, Printable("corvanectl: " + made.text()) + "\n", true);
    return kNotStarted;
  }
  if (!options.quiet) WriteOut(kStandardOutput, Printable(DoneText(target)) + "\n", true);
  return kAllWell;
}

}  // namespace corvane::console
