// Sends files to a server through the FTP session of the transfer commands, or fetches one, and prints the seconds that
// it took and the largest resident size: "1.234 s, 8.1 MB".
//
// usage: corvane-bench-ftp send HOST:PORT USER PASSWORD FOLDER FILE...
//        corvane-bench-ftp fetch HOST:PORT USER PASSWORD FOLDER NAME FILE
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "base/paths.h"
#include "curl/curl_internet_client.h"
#include "desktop/posix_shell.h"
#include "posix/posix_loop.h"
#include "printing_dialogs.h"
#include "state/link_state.h"
#include "transfer/my_ftp.h"

namespace {

using namespace corvane;

/// The session with what it needs of the program.
struct World {
  explicit World(char** login) {
    ftp.SetServer(login[0]);
    ftp.SetUserName(login[1]);
    ftp.SetPassword(login[2]);
    ftp.SetInitialFolder(login[3]);
    ftp.SetAgentName("corvane-bench-ftp");
    ftp.SetStatusLabel(form.Lbl_Status);
    ftp.SetProgressBar(form.Bar_Download);
  }

  PosixLoop loop;
  PosixShell shell{"corvane-bench-ftp", ""};
  PrintingDialogs dialogs;
  CurlInternetClient client{loop};
  Form form;
  LinkState link;
  RunFlags flags;
  AppInfo app{""};
  Trace trace{form, link, loop, shell};
  Messages messages{{form, flags, loop, dialogs, trace}};
  MyFTP ftp{{form.Frm_Main, loop, client, app, messages, trace}};
};

bool Send(MyFTP& ftp, const std::vector<std::string>& files) {
  for (const std::string& file : files) {
    if (!ftp.PutFile(file, FileNameOf(file))) return false;
  }
  return true;
}

double PeakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view what = argc > 1 ? argv[1] : "";
  const bool sends = what == "send" && argc > 6;
  if (!sends && !(what == "fetch" && argc == 8)) {
    std::fprintf(stderr, "usage: corvane-bench-ftp send|fetch HOST:PORT USER PASSWORD FOLDER FILE...|NAME FILE\n");
    return 2;
  }
  World world(argv + 2);
  const auto begin = std::chrono::steady_clock::now();
  const bool done = world.ftp.Initialise() &&
                    (sends ? Send(world.ftp, {argv + 6, argv + argc}) : world.ftp.GetFile(argv[6], argv[7]));
  world.ftp.Disconnect();
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
  if (!done) {
    std::fprintf(stderr, "corvane-bench-ftp: %s\n", world.ftp.LastErrorText().c_str());
    return 1;
  }
  std::printf("%.3f s, %.1f MB\n", seconds.count(), PeakMegabytes());
  return 0;
}
