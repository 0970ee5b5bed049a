#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "console/options.h"
#include "console/script.h"
#include "console/script_runner.h"
#include "form/form.h"
#include "state/run_flags.h"
#include "support/fake_loop.h"

namespace corvane::console {
namespace {

using Texts = std::vector<std::string>;

class ScriptTest : public testing::Test, public FormView {
 protected:
  ScriptTest() { form_.SetView(this); }
  ~ScriptTest() override { form_.SetView(nullptr); }

  ScriptResult Run(const std::string& text) { return runner_.Run(ParseScript("s", text, form_)); }
  /// Runs a script that must end with an error, which is returned.
  std::string ErrorOf(const std::string& text) {
    try {
      return Run(text).error;
    } catch (const UsageError& refusal) {
      return std::string("refused ") + refusal.what();
    }
  }
  void ControlChanged(const Control& control, Aspect, std::size_t) override { runner_.OnChange(control); }
  void RepaintNow(const Control&) override {}

  Form form_;
  test::FakeLoop loop_;
  RunFlags flags_;
  Texts answers_;
  Texts printed_;
  ScriptRunner runner_{form_,
                       loop_,
                       flags_,
                       {[this](const std::string& text) { answers_.push_back(text); }, [](const std::string&) {},
                        [this](const std::string& text) { printed_.push_back(text); }}};
};

TEST_F(ScriptTest, ReadsItsLinesAndPrintsWhatIsShown) {
  for (List* list : {&form_.Lst_Units, &form_.Lst_LocalFiles}) list->SetRows({"a", "b", "c"});
  const ScriptResult result =
      Run("# comment\r\n\n  set txt_unitname  North  field # 2 \r\nset Txt_Prefix \" a\"\nanswer yes\n"
          "select Lst_Units 1\ncheck Lst_Units 2 1\nselect Lst_LocalFiles 0 2\nshow Lst_Units\nshow Lst_LocalFiles\n");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(form_.Txt_UnitName.text(), "North  field # 2");
  EXPECT_EQ(form_.Txt_Prefix.text(), " a");
  EXPECT_EQ(answers_, Texts{"yes"});
  EXPECT_EQ(printed_, (Texts{"Lst_Units[0]: a", "Lst_Units[1]: > b", "Lst_Units[2]: [x] c", "Lst_LocalFiles[0]: > a",
                             "Lst_LocalFiles[1]: b", "Lst_LocalFiles[2]: > c"}));
}

TEST_F(ScriptTest, StopsAtBadLinesAndAtWhatAPersonCouldNotDo) {
  form_.Lst_Units.SetRows({"a"});
  form_.Cmd_Convert.SetEnabled(false);
  form_.Txt_OstrelHost.SetVisible(false);
  form_.mnu_File.SetEntries({{"-"}, {"E&xit", false}});
  const std::tuple<const char*, std::string, const char*> rows[] = {
      {"refused s:2: ", "sett X 1", "there is no statement \"sett\""},
      {"refused s:2: ", "set Nope 1", "there is no control \"Nope\""},
      {"refused s:2: ", "set", "needs the name of a control"},
      {"refused s:2: ", "set Lbl_Status x", "Lbl_Status cannot be used with set"},
      {"refused s:2: ", "click Cmd_Process 9", "there is no control \"Cmd_Process_9\""},
      {"refused s:2: ", "check Lst_Units 0 2", "from 0 to 1"},
      {"refused s:2: ", "open Lst_Units -1", "is no whole number"},
      {"refused s:2: ", "wait 1 2", "\"2\" is too much"},
      {"refused s:2: ", "wait-for Lbl_Status 5", "wait-for needs NAME TEXT SECONDS"},
      {"s:2: ", "click Cmd_Convert", "Cmd_Convert is disabled now"},
      {"s:2: ", "set Txt_OstrelHost x", "Txt_OstrelHost is not shown"},
      {"s:2: ", "select Lst_Units 1", "Lst_Units has no row 1"},
      {"s:2: ", "select Lst_Units 0 0", "Lst_Units takes one row"},
      {"s:2: ", "menu mnu_File 0", "mnu_File entry 0 does not exist"},
      {"s:2: ", "menu mnu_File 1", "mnu_File entry 1 is disabled now"},
      {"s:2: ", "set Opt_WhichFile 3", "from 0 to 2"},
      {"s:2: ", "set Cmb_Port_0 COM99", "Cmb_Port_0 has no entry \"COM99\""},
  };
  for (const auto& [begins, statement, says] : rows) {
    const std::string error = ErrorOf("\n" + statement + "\nset Chk_Backup 1\n");
    EXPECT_TRUE(error.starts_with(begins)) << error;
    EXPECT_NE(error.find(says), std::string::npos) << error;
  }
  EXPECT_FALSE(form_.Chk_Backup.ticked());
}

TEST_F(ScriptTest, WaitsUntilATextShowsOrTimeRunsOut) {
  loop_.After(3000, [this] {
    form_.Lbl_Status.SetText("Download: Site 1");
    form_.Lbl_Status.SetText("gone again");
  });
  EXPECT_EQ(Run("wait-for Lbl_Status Site 1 10").error, "");
  EXPECT_EQ(loop_.MonotonicMilliseconds(), 3000);
  EXPECT_EQ(Run("wait 500\nwait-for Lbl_Status \"Site 1\" 2").error,
            "s:2: Lbl_Status did not show \"Site 1\" within 2 s; it shows \"gone again\"");
}

TEST_F(ScriptTest, EndsWhenTheProgramClosesAndAddsUpProblems) {
  form_.Cmd_Convert.on_click = [this] { flags_.problems = 2; };
  form_.Cmd_Close.on_click = [this] { flags_.closing = true; };
  const ScriptResult result = Run("click Cmd_Convert\nclick Cmd_Convert\nclick Cmd_Close\nset Chk_Backup 1\n");
  EXPECT_EQ(result.error, "");
  EXPECT_EQ(result.problems, 4);
  EXPECT_FALSE(form_.Chk_Backup.ticked());
}

}  // namespace
}  // namespace corvane::console
