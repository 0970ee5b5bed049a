// The whole link over a scripted port, with virtual time and a temporary folder.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "link/capture.h"
#include "link/exchange.h"
#include "link/port_link.h"
#include "link/reply_handler.h"
#include "support/world.h"

namespace corvane::test {

/// "$" + items + "*" + checksum.
inline std::string Frame(const std::string& items) {
  return Framed(items).erase(items.size() + 4);
}

class LinkTest : public ::testing::Test {
 protected:
  LinkTest() {
    bars.Unit.SetBar(form.Bar_Unit);
    bars.Download.SetBar(form.Bar_Download);
    trace.SetLogFile(folder.Name("corvane.log"));
    for (CheckBox& box : form.Chk_Trace) box.SetTicked(true);
    form.Cmb_Port[0].Add("3", 3);
    form.Cmb_Port[0].SetCurrent(0);
    form.Txt_Settings.SetText("9600,N,8,1");
    form.Txt_Timeout[0].SetText("45");
    form.Txt_Timeout[1].SetText("20");
    port.SetEventHandler([this](int code) { port_link.OnPortEvent(code); });
    port_link.line_received = [this] {
      lines.push_back(link.ReplyLine);
      replies.HandleReply();
    };
  }

  [[nodiscard]] int TimesLogged(const std::string& text) const {
    const std::string log = folder.Read("corvane.log");
    int times = 0;
    for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) ++times;
    return times;
  }
  [[nodiscard]] bool Logged(const std::string& text) const { return TimesLogged(text) > 0; }
  void Ask(std::int16_t command, const std::string& line = "00000:00001:00rt ") {
    ASSERT_TRUE(port_link.OpenPort(0));
    exchange.SendCommand(line);
    exchange.SetState(command);
  }

  TempFolder folder;
  FakeLoop loop;
  FakeShell shell;
  ScriptedPort port{loop};
  Form form;
  LinkState link;
  DownloadState download;
  RunFlags flags;
  PortDevices devices;
  ProgressBars bars;
  CommandStates states{form};
  Trace trace{form, link, loop, shell};
  LinkWriter writer{link, port, trace};
  ReplyTimer timer{{form, link, loop, writer, trace}};
  Pauser pauser{link, flags, loop, trace};
  Exchange exchange{{form, link, flags, loop, writer, timer, pauser, trace}};
  DownloadSummary summary{{form, link, download, flags, loop, trace}};
  DownloadCapture capture{{form, link, download, loop, writer, exchange, summary, bars, trace}};
  ReplyHandler replies{{form, link, loop, exchange, capture, summary, trace}};
  PortLink port_link{{form, link, port, devices, states, writer, timer, bars, trace}};
  std::vector<std::string> lines;
};

}  // namespace corvane::test
