#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "link/port_choices.h"
#include "support/world.h"

namespace corvane::test {
namespace {

TEST(PortChoices, ShowPortsWithTheirDevices) {
  FakeLoop loop;
  ScriptedPort port(loop);
  PortDevices devices;
  PortChoices choices(devices, port);
  const std::string radio = "/dev/serial/by-id/radio";
  const std::string lengthy = "/dev/serial/by-id/" + std::string(120, 'x');
  port.devices_there = {{radio, "/dev/ttyUSB0", ""},
                        {lengthy, "/dev/ttyUSB1", ""},
                        {"/dev/ttyS0", "/dev/ttyS0", "no permission to use /dev/ttyS0"}};
  EXPECT_TRUE(choices.Assign(40, " " + radio + " ").ok());
  for (const char* refused : {"ttyUSB0", "/dev/tty\nUSB0", lengthy.c_str()}) {
    EXPECT_FALSE(choices.Assign(3, refused).ok()) << refused;
  }
  EXPECT_FALSE(choices.Assign(51, radio).ok());

  const std::tuple<int, bool, const char*> rows[] = {
      {1, false, "COM1   /dev/ttyS0   (no permission)"}, {3, false, "COM3   /dev/ttyS2   (not there)"},
      {5, false, "COM5   /dev/ttyUSB0   (there)"},       {40, true, "COM40   /dev/serial/by-id/radio   (there)"},
      {50, false, "COM50   no device assigned"},
  };
  const std::vector<PortChoice> all = choices.LookAtAll();
  ASSERT_EQ(all.size(), 50U);
  for (const auto& [number, own, text] : rows) {
    const PortChoice& choice = all[static_cast<std::size_t>(number - 1)];
    EXPECT_EQ(choice.text, text);
    EXPECT_EQ(choice.own, own) << text;
    EXPECT_EQ(choice.problem.empty(), choice.presence == "there") << text;
  }
  std::vector<std::string> found;
  for (const DeviceChoice& choice : choices.Devices()) found.push_back(choice.path + "|" + choice.ports);
  EXPECT_EQ(found, (std::vector<std::string>{radio + "|COM5, COM40", "/dev/ttyUSB1|COM6", "/dev/ttyS0|COM1"}));
  EXPECT_TRUE(choices.Assign(40, "").ok());
  EXPECT_EQ(choices.Look(40).device, "");
}

/// Does something once, when the direct terminal shows its second row.
struct AtTheFirstLine : FormView {
  AtTheFirstLine(World& at, std::function<void(World&)> what) : world(at), run(std::move(what)) {}
  void ControlChanged(const Control& control, Aspect, std::size_t) override {
    if (&control != &world.form().Lst_Direct || world.form().Lst_Direct.count() != 2) return;
    if (const auto now = std::exchange(run, nullptr)) now(world);
  }
  void RepaintNow(const Control&) override {}

  World& world;
  std::function<void(World&)> run;
};

/// What the direct terminal shows of two pieces, with something that happens while the first line is handled.
std::vector<std::string> RowsOf(const std::string& piece, const std::function<void(World&)>& during_the_first_line) {
  World world("[Ports]\nCOM1=/dev/base\n");
  Form& form = world.Start().form();
  form.Chk_Direct.SetTicked(true);
  AtTheFirstLine view(world, during_the_first_line);
  form.SetView(&view);
  world.port.on_line = nullptr;
  world.loop.After(1000, [&] {
    try {
      world.port.ReceiveNow(piece);
    } catch (const std::runtime_error&) {
    }
    world.port.ReceiveNow("!\rlast\r");
  });
  form.Cmd_Direct.Click();
  form.SetView(nullptr);
  std::vector<std::string> rows;
  for (std::int64_t row = 1; row < form.Lst_Direct.count(); ++row) rows.push_back(form.Lst_Direct.text(row));
  return rows;
}

TEST(PortLink, LinesKeepTheirOrderWhateverTheFirstOneBrings) {
  const std::vector<std::string> nested =
      RowsOf("one\rtwo\r", [](World& world) { world.port.ReceiveNow("three\rfour"); });
  EXPECT_EQ(nested, (std::vector<std::string>{"one", "two", "three", "four!", "last"}));
  const std::vector<std::string> thrown = RowsOf("one\rtwo", [](World&) { throw std::runtime_error("not taken"); });
  EXPECT_EQ(thrown, (std::vector<std::string>{"one", "two!", "last"})) << "an exception costs its own line only";
  const std::vector<std::string> closed = RowsOf("one\rtwo\r", [](World& world) {
    world.port.Event(kPortEndOfInput);
    world.app().life().OnWindowClose();
  });
  EXPECT_EQ(closed, std::vector<std::string>{"one"}) << "the port may go while lines are cut";
}

}  // namespace
}  // namespace corvane::test
