#include "page/page_keeper.h"

#include <exception>
#include <vector>

#include "base/paths.h"
#include "base/status.h"
#include "history/network_settings.h"
#include "page/page_contents.h"
#include "page/page_html.h"

namespace corvane {

bool PageKeeper::SwitchedOn() const {
  return !ReadNetworkSettings(p_.form).page_folder.empty();
}

std::optional<WrittenPage> PageKeeper::Write(const NetworkStatus& av_Status) {
  if (!SwitchedOn()) return std::nullopt;
  WrittenPage page;
  std::string problem;
  try {
    problem = WriteInto(p_.app.AppPath(ReadNetworkSettings(p_.form).page_folder), av_Status, page).text();
  } catch (const std::exception& error) {
    problem = error.what();
  }
  if (problem.empty()) return page;
  p_.trace.Status("The page was not written: " + problem, StatusKind::Error);
  return std::nullopt;
}

Status PageKeeper::WriteInto(const std::string& as_Folder, const NetworkStatus& av_Status, WrittenPage& av_Page) {
  HistoryContents read;
  if (Status status = p_.history.Read(PageQuery(av_Status), read); !status.ok()) return status;
  PageContents contents = ContentsOf(av_Status, read);
  const std::vector<PageSeries> series = SeriesOf(av_Status, p_.form, p_.registry, p_.names);
  Status written;
  p_.loop.Aside([&] {
    AddCharts(contents, series);
    written = WritePage(as_Folder, PageHtml(contents));
  });
  av_Page.file = AddBackslash(as_Folder) + std::string(kPageName);
  const RoundKind kind = read.rounds.empty() ? RoundKind::Command : read.rounds.back().kind;
  av_Page.behind_files = kind == RoundKind::Download || kind == RoundKind::Repair;
  return written;
}

}  // namespace corvane
