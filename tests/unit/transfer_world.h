#pragma once

#include <string>
#include <vector>

#include "support/world.h"

namespace corvane::test {

/// A network whose units send to and come from a server with the folders /web, /web/f1 and /web/f2.
///
/// Each unit is "<active> <send to> <get from> <client>"; unit i has the ID i and, where wanted, a raw file.
class TransferWorld : public World {
 public:
  explicit TransferWorld(const std::vector<std::string>& units, const std::string& general = "")
      : World(Settings(units, general)) {
    internet.folders = {"/", "/web", "/web/f1", "/web/f2"};
    WriteTables(home);
    Start();
    form().Lst_Units.SetCurrent(0);
  }
  void GiveRawFile(int unit, const std::string& folder, const std::string& contents = "raw") {
    home.Write("data/" + folder + "/" + RawName(unit), contents);
  }
  static std::string RawName(int unit) { return "u0000" + std::to_string(unit) + ".epd"; }
  [[nodiscard]] std::string Status() { return form().Lbl_Status.text(); }
  [[nodiscard]] bool FtpLogged(const std::string& text) const {
    return home.Read("ftp.log").find(text) != std::string::npos;
  }

 private:
  static std::string Settings(const std::vector<std::string>& units, const std::string& general) {
    std::string text =
        "[General]\nPrefix=u\nFolder=data\nUnitWait=0\nFTPServer=ftp.example.org\nFTPFolder=/web\nFTPUserName=me\n"
        "FTPPassword=secret\n" +
        general +
        "[Ports]\nCOM1=/dev/base\n[Clients]\nNumClients=2\n[Units]\nNumUnits=" + std::to_string(units.size()) + "\n";
    for (std::size_t i = 1; i <= units.size(); ++i) {
      const std::string number = std::to_string(i);
      const auto fields = Split(units[i - 1], ' ');
      const char* keys[] = {"Active", "ftpFile", "GetFrom", "ClientID"};
      for (std::size_t k = 0; k < fields.size(); ++k) text += keys[k] + number + "=" + std::string(fields[k]) + "\n";
    }
    return text;
  }
};

}  // namespace corvane::test
