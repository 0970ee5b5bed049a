#include <gtest/gtest.h>

#include "support/lower.h"
#include "support/world.h"

namespace corvane::test {
namespace {

TEST(Trace, LogThatCannotBeWrittenIsTriedAgainAndSaysWhatIsMissing) {
  Lower lower;
  lower.trace.SetLogFile(lower.home.Name("folder/log"));
  lower.trace.LogWrite("lost");
  EXPECT_NE(lower.form.Lbl_Status.text().find("The log cannot be written: "), std::string::npos);
  lower.home.Write("folder/other", "");
  lower.trace.Status("goes on");
  EXPECT_EQ(lower.form.Lbl_Status.text(), "goes on");
  EXPECT_EQ(lower.home.Read("folder/log"), "") << "within the same second";
  lower.loop.Advance(1000);
  lower.trace.LogWrite("\xC3\x80");
  const std::string log = lower.home.Read("folder/log");
  EXPECT_NE(log.find("Version: 0.1.000\r\n2010-03-12 10:00:01: Lines that could not be written here: 2. "),
            std::string::npos);
  EXPECT_TRUE(log.ends_with(": [195]\xC2\x80\r\n")) << log;
}

TEST(TimedMessage, AnswersByPositionAndAtTheEndOfTheCountDown) {
  struct Row {
    std::int32_t style;
    std::vector<std::int32_t> by_position;
    std::int32_t at_timeout;
  };
  const std::vector<Row> rows = {
      {kOkOnly, {1}, 1},   {kOkCancel, {1, 2}, 1},   {kAbortRetryIgnore, {3, 5, 5}, 3}, {kYesNoCancel, {6, 7, 2}, 6},
      {kYesNo, {6, 7}, 6}, {kRetryCancel, {4, 2}, 2}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.style);
    Lower lower;
    lower.dialogs.answer_plain_boxes = false;
    for (std::size_t position = 1; position <= row.by_position.size(); ++position) {
      lower.dialogs.answers = {static_cast<int>(position)};
      EXPECT_EQ(lower.messages.ShowTimedMessage("?", row.style), row.by_position[position - 1]);
    }
    // A time-out of 0 or less is none.
    const auto seconds = static_cast<std::int16_t>(-row.style);
    const std::int32_t style = row.style | kStopIcon | kSecondDefault;
    EXPECT_EQ(lower.messages.ShowTimedMessage("?", style, {}, seconds), row.at_timeout);
    EXPECT_EQ(lower.dialogs.boxes.back().buttons.size(), row.by_position.size());
    EXPECT_EQ(lower.dialogs.boxes.back().icon, BoxIcon::Stop);
    EXPECT_EQ(lower.dialogs.boxes.back().default_position, 2);
    EXPECT_EQ(lower.loop.MonotonicMilliseconds(), 10000);
    EXPECT_EQ(lower.dialogs.count_downs.front(), "9");
    EXPECT_EQ(lower.dialogs.open_boxes, 0);
  }
}

TEST(TimedMessage, ClosesWhenItsTimeIsOverWhateverRunsBeneathIt) {
  Lower lower;
  lower.loop.After(9500, [&lower] {
    for (const auto end = lower.loop.MonotonicMilliseconds() + 60000; lower.loop.MonotonicMilliseconds() < end;) {
      lower.loop.Yield();
      EXPECT_TRUE(lower.loop.MonotonicMilliseconds() < 11000 || lower.dialogs.open_boxes == 0);
    }
  });
  const auto keeps_time = lower.loop.MakeTimer([] {});
  keeps_time->Start(500);
  EXPECT_EQ(lower.messages.ShowTimedMessage("?", kYesNo), kAnswerYes);
  EXPECT_EQ(lower.dialogs.count_downs.back(), "1");
}

TEST(Messages, NothingIsShownWhileASignalEndsTheProgram) {
  Lower lower;
  lower.flags.ending_silently = true;
  lower.messages.Show("text");
  EXPECT_FALSE(lower.messages.Confirm("Delete"));
  EXPECT_EQ(lower.messages.ShowTimedMessage("text", kRetryCancel), kAnswerCancel);
  EXPECT_TRUE(lower.dialogs.boxes.empty());
  EXPECT_NE(lower.Log().find("Question: Delete ? No"), std::string::npos);
}

TEST(ProgressBar, MapsSkipsAndMirrorsIntoTheMinimisedTitle) {
  Form form;
  CProgressBar bar;
  bar.SetBar(form.Bar_Download);
  bar.SetParent(form.Frm_Main);
  bar.SetProcessText("Convert: x");
  bar.Initialise(0);
  bar.SetValue(50);
  EXPECT_EQ(form.Bar_Download.value(), 50);
  bar.SetDoSkip(true);
  EXPECT_EQ(form.Frm_Main.title(), "Corvane");
  form.Frm_Main.SetMinimised(true);
  bar.Initialise(3000);
  EXPECT_EQ(form.Frm_Main.title(), "Convert: x");
  int moves = 0;
  form.Bar_Download.on_change = [&moves] { ++moves; };
  for (std::int64_t value = 1; value <= 3000; ++value) bar.SetValue(value);
  EXPECT_EQ(moves, 30);
  EXPECT_EQ(form.Frm_Main.title(), "100%-Convert: x");
  bar.Initialise(8);
  for (int step = 0; step < 3; ++step) bar.Increment();
  EXPECT_EQ(bar.Value(), 3);
  EXPECT_EQ(form.Frm_Main.title(), "38%-Convert: x");
  bar.Clear();
  EXPECT_EQ(form.Frm_Main.title(), "");
}

TEST(Form, ChangesTakeOnePathAndEqualValuesNone) {
  Form form;
  RecordingView view;
  form.SetView(&view);
  int handled = 0;
  form.Txt_Prefix.on_change = [&handled] { ++handled; };
  form.Txt_Prefix.SetText("a\tb\n");
  form.Txt_Prefix.SetText("a b ");
  EXPECT_EQ(view.changes, std::vector<std::string>{"Txt_Prefix:0"});
  EXPECT_EQ(handled, 1);
  form.Txt_Prefix.SetText(std::string(200, 'x'));
  EXPECT_EQ(form.Txt_Prefix.text().size(), 126U);
  EXPECT_EQ(form.Find("txt_timeout_2"), &form.Txt_Timeout[2]);
  form.SetView(nullptr);
}

TEST(Form, ListsKeepTheirCurrentRow) {
  Form form;
  List& list = form.Lst_Units;
  list.SetRows({"a", "b", "c"});
  list.SetCurrent(1);
  list.Remove(0);
  EXPECT_EQ(list.current(), 0);
  EXPECT_TRUE(list.selected(0));
  list.Remove(0);
  EXPECT_EQ(list.current(), -1);
  list.SetCurrent(7);
  EXPECT_EQ(list.current(), -1);
}

}  // namespace
}  // namespace corvane::test
