// Which questions the FTP session puts to a server for what it is asked to do: each costs a journey there and back.
#include <functional>

#include <gtest/gtest.h>

#include "curl/curl_internet_client.h"
#include "desktop/posix_shell.h"
#include "posix/posix_loop.h"
#include "state/link_state.h"
#include "support/child.h"
#include "support/recorders.h"
#include "support/temp_folder.h"
#include "transfer/my_ftp.h"

namespace corvane {
namespace {

/// The session of the program on the real client.
struct SessionWorld {
  explicit SessionWorld(int port) {
    dialogs.answer_plain_boxes = true;
    ftp.SetServer("127.0.0.1:" + std::to_string(port));
    ftp.SetUserName("user");
    ftp.SetPassword("secret");
    ftp.SetInitialFolder("/data");
    EXPECT_TRUE(ftp.Initialise());
  }

  test::TempFolder home;
  PosixLoop loop;
  PosixShell shell{"test", ""};
  test::RecordingDialogs dialogs;
  CurlInternetClient client{loop};
  Form form;
  LinkState link;
  RunFlags flags;
  AppInfo app{home.path()};
  Trace trace{form, link, loop, shell};
  Messages messages{{form, flags, loop, dialogs, trace}};
  MyFTP ftp{{form.Frm_Main, loop, client, app, messages, trace}};
};

TEST(FtpWire, NoQuestionIsPutTwice) {
  const test::ServerProcess server({"faulty_ftp_server.py", "tells_commands"});
  SessionWorld world(server.port());
  MyFTP& ftp = world.ftp;
  const auto list = [&] { return ftp.GetDirectoryList("") && !ftp.CurrentRemoteDirectory().empty(); };
  const auto fetch = [&] { return ftp.GetFile("file", world.home.Name("got")); };
  const std::tuple<const char*, std::function<bool()>, const char*> kRows[] = {
      {"login and first listing", list, "PWD CWD PWD CWD PWD TYPE"},
      {"second listing", list, "CWD PWD"},
      {"fetch", fetch, "CWD PWD TYPE SIZE"},
      {"second fetch", fetch, "CWD PWD SIZE"},
      {"listing after a fetch", list, "CWD PWD TYPE"},
  };
  for (const auto& [what, act, commands] : kRows) {
    EXPECT_TRUE(act()) << what << ": " << ftp.LastErrorText();
    EXPECT_FALSE(ftp.CreateFolder("tell"));
    EXPECT_EQ(ftp.LastErrorText(), std::string("FTP: ") + commands + "\r\nftp: CreateFolder") << what;
  }
}

}  // namespace
}  // namespace corvane
