#include "page_command.h"

#include <filesystem>
#include <system_error>

#include "base/paths.h"
#include "history_reading.h"
#include "page/page_contents.h"
#include "page/page_html.h"

namespace corvane::console {
namespace {

int Refuse(const Desk& desk, const std::string& why) {
  desk.output.Error("corvanectl: " + why);
  return kNotStarted;
}

std::string FullFolder(const std::string& folder) {
  std::error_code error;
  if (folder.starts_with('/')) return folder;
  return AddBackslash(std::filesystem::current_path(error).string()) + folder;
}

}  // namespace

int MakePage(Desk& desk, const Options& options) {
  HistoryReading reading(desk.app.app().Folder());
  if (const Status read = reading.ReadForStatus(); !read.ok()) return Refuse(desk, read.text());
  const NetworkStatus network = reading.StatusOf({});
  HistoryContents history;
  if (const Status read = reading.Read(PageQuery(network), history); !read.ok()) return Refuse(desk, read.text());
  PageContents contents = ContentsOf(network, history);
  AddCharts(contents, SeriesOf(network, desk.app.form(), desk.app.registry(), desk.app.names()));
  const std::string folder = FullFolder(options.arguments[0]);
  const Status written = WritePage(folder, PageHtml(contents));
  if (!written.ok()) return Refuse(desk, "the page cannot be written: " + written.text());
  desk.output.Line("The page is " + AddBackslash(folder) + std::string(kPageName));
  return kAllWell;
}

}  // namespace corvane::console
