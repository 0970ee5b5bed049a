#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "page/chart_path.h"
#include "page/html.h"
#include "page/page_html.h"

namespace corvane {
namespace {

TEST(Html, ShowsTextAsItStands) {
  struct Row {
    const char* text;
    const char* html;
  };
  const Row rows[] = {
      {"North & <b>South</b>", "North &amp; &lt;b&gt;South&lt;/b&gt;"},
      {"\" onload='x()", "&quot; onload=&#39;x()"},
      {"\r\n<!--", "[13][10]&lt;!--"},
      {"\xC3\xBC \xFF \xE2\x80\xAE", "\xC3\xBC ? ?"},
      {"&amp;", "&amp;amp;"},
  };
  for (const Row& row : rows) {
    Html html;
    html.Text(row.text);
    EXPECT_EQ(html.Take(), row.html);
  }
}

TEST(Chart, DrawsExtremesAndLeavesGapsOpen) {
  struct Row {
    const char* name;
    std::vector<std::int64_t> times;  // of a span of 60, a column each
    std::vector<double> values;
    std::vector<std::size_t> breaks;
    const char* path;
  };
  const double none = std::nan("");
  const Row rows[] = {
      {"nothing", {}, {}, {}, ""},
      {"outside", {-1, 61}, {1, 2}, {}, ""},
      {"one", {0}, {7}, {}, "M0 20h1"},
      {"up and down", {0, 2, 4}, {0, 10, 5}, {}, "M0 40l5-40l10 20"},
      {"a spike within a column", {0, 2, 2, 2, 4}, {0, 0, 10, 0, 0}, {}, "M0 40h5v-40l10 40"},
      {"a gap", {0, 2, 40, 42}, {0, 10, 10, 0}, {2}, "M0 40l5-40M195 0l10 40"},
      {"a gap within what is not shown", {0, 2, 40}, {0, none, 10}, {1}, "M0 40h1M195 0h1"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::vector<std::int64_t> times = row.times;
    for (std::int64_t& time : times) time += 1000;
    EXPECT_EQ(DrawChart({times, row.values, row.breaks, DateTime(1000), DateTime(1060), 0}).path, row.path);
  }
  const std::vector<std::int64_t> times = {0, 30};
  const std::vector<double> values = {12.5, 12.6};
  const ChartPath noise = DrawChart({times, values, {}, DateTime(0), DateTime(60), 1.0});
  EXPECT_EQ(noise.path, "M0 22l145-4");
  EXPECT_EQ(noise.least, 12.5);
}

TEST(Page, OfNoUnitsSaysSo) {
  PageContents contents;
  contents.status.sentence = "There are no units";
  contents.status.now = {1'700'000'000, -5400};
  const std::string html = PageHtml(contents);
  EXPECT_NE(html.find("There are no units"), std::string::npos);
  EXPECT_NE(html.find("14 Nov 2023 20:43 (UTC-01:30)"), std::string::npos);
  EXPECT_EQ(html.find("<table"), std::string::npos);
}

}  // namespace
}  // namespace corvane
