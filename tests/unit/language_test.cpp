#include "lang/language.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/encoding.h"
#include "support/world.h"

namespace corvane::test {
namespace {

/// Captions by "<text ID>" or "<text ID>/<tab>", tool tips by "<text ID>?".
class FakeCaptions : public CaptionedWindow {
 public:
  [[nodiscard]] std::int64_t CaptionCount() const override { return static_cast<std::int64_t>(controls.size()); }
  [[nodiscard]] Caption CaptionAt(std::int64_t position) const override { return At(position); }
  void SetCaption(std::int64_t position, int tab, const std::string& text) override {
    shown[Name(position) + (At(position).tabs > 0 ? "/" + std::to_string(tab) : "")] = text;
  }
  void SetToolTip(std::int64_t position, const std::string& text) override { shown[Name(position) + "?"] = text; }
  [[nodiscard]] std::vector<Phrase> PhraseList() const override { return {kPhrase}; }
  void SetPhrases(const Phrases& taken) override { phrases = taken; }

  std::vector<Caption> controls = {{1213, 0}, {0, 0}, {300, 3}, {2147483647, 2}};
  static constexpr Phrase kPhrase{1300, "%1 of %2"};
  std::map<std::string, std::string> shown;
  Phrases phrases;

 private:
  [[nodiscard]] const Caption& At(std::int64_t position) const { return controls[static_cast<std::size_t>(position)]; }
  [[nodiscard]] std::string Name(std::int64_t position) const { return std::to_string(At(position).text_id); }
};

struct LanguageCase {
  const char* name;
  std::string file;
  std::map<std::string, std::string> shown;
  const char* message;
};

TEST(Language, CaptionsAndMessages) {
  using Shown = std::map<std::string, std::string>;
  const std::string nul(1, '\0');
  const std::vector<LanguageCase> rows = {
      {"comma", "t\r\n1213,New,&Nouveau,Create a client\r\n", {{"1213", "&Nouveau"}, {"1213?", "Create a client"}}, ""},
      {"tilde", "t\n1~~y\n1213~~a, b~c, d", {{"1213", "a, b"}, {"1213?", "c, d"}}, ""},
      {"the comma of line 2 counts", "t\n1~a,b\n1213~x~y~z\n1213,,c", {{"1213", "c"}}, ""},
      {"empty texts keep", "\n1213,,,\n1213,,late", {}, ""},
      {"tabs",
       "\n300,,One\n301,,\n303,,Four\n2147483647,,End",
       {{"300/0", "One"}, {"300/1", ""}, {"2147483647/0", "End"}},
       ""},
      {"short lines hold ID 0", "\n,\n\n0,,no\n 1213 ,,a", {{"1213", "a"}}, ""},
      {"byte order mark and UTF-8", "\xEF\xBB\xBFt\n1213,,\xC3\xA9", {{"1213", "\xC3\xA9"}}, ""},
      {"Windows-1252", "t\n1213,,\xE9\x80", {{"1213", "\xC3\xA9\xE2\x82\xAC"}}, ""},
      {"no separator", "t\n1213;a;b\n", Shown(), "No parse character in header: 1213;a;b"},
      {"no line 2", "t", Shown(), "No parse character in header: "},
      {"wrong ID", "t\n1213,,a\nx1,,b", Shown(),
       ", line 3: \"x1\" is no text ID, a whole number is needed\r\n"
       "Language:LoadFile"},
      {"ID beyond 32 bits", "t\n2147483648,,b", Shown(), "\"2147483648\" is no text ID"},
      {"UTF-16", "t" + nul + "\n" + nul + "1" + nul + "," + nul, Shown(), "is no text file in UTF-8 or Windows-1252"},
  };
  for (const LanguageCase& row : rows) {
    SCOPED_TRACE(row.name);
    World world("[General]\nLanguage=my.lng\n");
    world.home.Write("my.lng", row.file);
    Application app(Platform{world.loop, world.port, world.shell, world.dialogs, world.internet, world.zip},
                    world.home.path());
    FakeCaptions window;
    app.life().SetCaptions(&window);
    app.life().OnWindowCreate();
    EXPECT_EQ(window.shown, row.shown);
    const bool expected = *row.message != '\0';
    ASSERT_EQ(world.dialogs.boxes.size(), expected ? 1U : 0U);
    if (!expected) continue;
    EXPECT_NE(world.dialogs.boxes[0].text.find(row.message), std::string::npos);
    EXPECT_FALSE(world.dialogs.boxes[0].count_down.empty()) << "nobody may be there to click";
  }
}

TEST(Language, TextsFallBackToTheirIDAndAMissingFileIsReportedOnce) {
  World world;
  world.Start();
  EXPECT_TRUE(world.dialogs.boxes.empty()) << "without a window no language file is needed";
  Trace trace(world.form(), world.app().link(), world.loop, world.shell);
  Messages messages({world.form(), world.app().flags(), world.loop, world.dialogs, trace});
  CLanguage language(messages);
  language.SetLanguageFile(world.home.Name("none.lng"));
  FakeCaptions window;
  language.LoadCaptions(window);
  EXPECT_EQ(language.LanguageText(1213), "1213NT");
  ASSERT_EQ(world.dialogs.boxes.size(), 1U);
  EXPECT_NE(world.dialogs.boxes[0].text.find("none.lng"), std::string::npos);
  std::string many = "t\n7,,first\n7,,second\n";
  for (int id = 100; id < 100100; ++id) many += std::to_string(id) + ",,text\n";
  language.SetLanguageFile(world.home.Write("many.lng", many));
  EXPECT_EQ(language.LanguageText(7), "first");
  EXPECT_EQ(language.LanguageText(99), "99NT");
  EXPECT_EQ(language.FindEntry(100099), 100002);
}

TEST(Language, PhrasesStandInWhereTheyHoldTheSameValues) {
  const std::pair<const char*, const char*> rows[] = {
      {"1300~~%2: %1~", "100 %1: 3"}, {"1300~~%1 %2 %1 % %x~", "3 100 %1 3 % %x"},
      {"1300~~%1~", "3 of 100 %1"},   {"1300~~%1 %2 %3~", "3 of 100 %1"},
      {"1300~~~", "3 of 100 %1"},     {"1301~~%1 %2~", "3 of 100 %1"},
  };
  for (const auto& [line, says] : rows) {
    World world("[General]\nLanguage=my.lng\n");
    world.home.Write("my.lng", "t\n" + std::string(line) + "\n");
    Application app(Platform{world.loop, world.port, world.shell, world.dialogs, world.internet, world.zip},
                    world.home.path());
    FakeCaptions window;
    app.life().SetCaptions(&window);
    app.life().OnWindowCreate();
    EXPECT_EQ(window.phrases.Text(FakeCaptions::kPhrase, {"3", "100 %1"}), says) << line;
  }
}

TEST(Language, EncodingsAreToldApart) {
  for (const char* good :
       {"", "plain", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xED\x9F\xBF", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(IsUtf8(good)) << good;
  }
  for (const char* bad : {"\x80", "\xC0\xAF", "\xC3", "a\xE2\x82", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                          "\xF5\x80\x80\x80", "\xC3(", "\xFF"}) {
    EXPECT_FALSE(IsUtf8(bad)) << bad;
  }
}

}  // namespace
}  // namespace corvane::test
