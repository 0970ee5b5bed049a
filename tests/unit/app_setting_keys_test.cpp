#include "app/setting_keys.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "base/near_words.h"
#include "base/status.h"
#include "support/world.h"

namespace corvane::test {
namespace {

TEST(SettingKeys, EntersWhatAHandWouldAndRefusesTheRest) {
  World world("[Units]\nNumUnits=3\nName3=South\n[Relays]\nName2=Tower\nID2=7\n");
  Application& app = world.Start();
  SettingKeys& keys = app.keys();
  const std::tuple<const char*, const char*, const char*> taken[] = {
      {"port", "COM5", "5"},
      {"General.Automatic", "1", "1"},
      {"LogSize", "2.5", "2.5"},
      {"name3", "Orchard", "Orchard"},
      {"Units.RelayID3", "tower", "7"},
      {"Active3", "0", "0"},
      {"SalinityCorrection1", "1.5", "1.5"},
      {"Clients.Folder1", "", ""},
      {"Relays.PasswordStyle2", "2", "2"},
      {"LogPeriod", "01:23", "01:23"},
      {"ID1", "2", "2"},
  };
  for (const auto& [key, value, stored] : taken) {
    const std::string odd = keys.Enter(key, value);
    EXPECT_EQ(keys.Find(key).value, stored) << key;
    // Intended: two units may bear one ID, and somebody hears of it.
    EXPECT_EQ(odd.empty(), std::string(key) != "ID1") << odd;
  }
  EXPECT_EQ(app.form().Lst_Units.text(2), "Orchard");

  const std::tuple<const char*, const char*, const char*> in_words[] = {
      {"AutomaticInterval", "6", "6 days"},      {"AutomaticInterval", "36", "36 hours"},
      {"Interval", "1:30", "1 hour 30 minutes"}, {"Timeout", "1", "1 second"},
      {"LogSize", "0", "without end"},           {"LogPeriod", "00:15", "15 minutes"},
      {"HistoryYears", "5", "5 years"},          {"Prefix", "6", ""}};
  for (const auto& [key, value, words] : in_words) {
    static_cast<void>(keys.Enter(key, value));
    EXPECT_EQ(keys.Find(key).words, words) << key;
  }
  static_cast<void>(keys.Enter("AutomaticInterval", "03:00"));

  const std::string long_text(127, 'x');
  const std::tuple<const char*, std::string, const char*> refused[] = {
      {"Prot", "5", "no key \"Prot\"; did you mean Port?"},
      {"Folder1", "a", "did you mean Clients.Folder1?"},
      {"Name9", "a", "there is no key"},
      {"Port", "51", "it has COM1 to COM50"},
      {"Kelvin", "yes", "from 0 to 1"},
      {"GetFrom3", "9", "1 (None), 0 (Radio)"},
      {"AutomaticInterval", "0:00", "no interval above zero"},
      {"LogSize", "-1", "no number from 0"},
      {"MoistureLookupFile", "/not/there", "There is no file"},
      {"BackupDestination", "/not/there", "There is no folder"},
      {"Prefix", "null", "empty text"},
      {"Prefix", "a\nb", "one line"},
      {"Prefix", "a\xFF", "UTF-8"},
      {"FTPFolder", long_text, "at most 126"},
      {"NextDownload", "1", "the program gives it"},
      {"Clients.ID1", "1", "the program gives it"},
      {"Relays.Name1", "x", "always Direct"},
  };
  for (const auto& [key, value, says] : refused) {
    try {
      keys.Enter(key, value);
      ADD_FAILURE() << key << " took " << value;
    } catch (const RunTimeError& error) {
      EXPECT_NE(std::string(error.what()).find(says), std::string::npos) << error.what();
    }
  }
  EXPECT_EQ(keys.Find("AutomaticInterval").value, "03:00");
  EXPECT_EQ(keys.Find("FTPFolder").value, "");
  for (const char* const key : {"password", "General.FTPPassword", "Clients.Password2"}) {
    EXPECT_TRUE(SettingKeys::NamesPassword(key) && keys.Find(key).password) << key;
  }
  EXPECT_FALSE(SettingKeys::NamesPassword("Password2"));
}

TEST(NearWords, GuessWhatWasMeant) {
  const std::vector<std::string> words = {"download", "convert", "send", "set-date", "set-delays"};
  const std::pair<const char*, const char*> rows[] = {{"downlod", "download"}, {"Donwload", "download"},
                                                      {"snd", "send"},         {"set-dtae", "set-date"},
                                                      {"conv", "convert"},     {"x", ""},
                                                      {"upload-all", ""},      {"", ""}};
  for (const auto& [typed, meant] : rows) EXPECT_EQ(NearestWord(typed, words), meant) << typed;
}

}  // namespace
}  // namespace corvane::test
