#include <gtest/gtest.h>

#include <vector>

#include "data/batch_conversion.h"
#include "support/scripted_port.h"
#include "unit/data_world.h"

namespace corvane::test {
namespace {

/// Four units (1, 2 of client 1; 3 inactive; 4 served by FTP) with a raw file each, unit 2 selected; tables in place.
struct BatchWorld : DataWorld {
  BatchWorld() {
    for (const char* name : {"m.lkp", "s.lkp", "c.lkp"}) Write(name, "0,0\n1000,10\n");
    form.Txt_File[0].SetText("m.lkp");
    form.Txt_File[1].SetText("s.lkp");
    form.Txt_File[2].SetText("c.lkp");
    form.Txt_Folder.SetText("data");
    for (std::int32_t id = 1; id <= 4; ++id) {
      AddUnit(id, id <= 2 ? 1 : 0).MoistureCorrection = static_cast<float>(id);
      Write("data/0000" + std::to_string(id) + ".epd", "h,s,4,0\n2010/3/12 4:00,12000,29300,5\n");
    }
    for (const int number : {0, 1}) form.Cmb_Client.Add("client", number);
    for (const int number : {0, 1, 2, 3}) form.Cmb_GetFrom.Add("source", number);
    for (std::int64_t row = 0; row < 4; ++row) form.Lst_Units.SetChecked(row, row != 2);
    registry.Units[3].Active = 0;
    registry.Units[4].GetFrom = kFromFtp;
    units.Select(2);
    files.RefreshFileListBox();
  }
  /// The units whose calibrated file is there, with the correction factor written in it.
  [[nodiscard]] std::string Converted() const {
    std::string found;
    for (const char id : {'1', '2', '3', '4'}) {
      const std::string text = Read(std::string("data/0000") + id + ".txt");
      const std::size_t at = text.find("Mois_Correc=");
      if (at != std::string::npos) found += std::string(1, id) + ":" + text[at + 12] + " ";
    }
    return found;
  }
  void SelectFiles(const std::vector<std::int64_t>& rows) {
    for (const std::int64_t row : rows) form.Lst_LocalFiles.SetSelected(row, true);
    form.Lst_LocalFiles.SetCurrent(rows.empty() ? -1 : rows.back());
  }

  ScriptedPort port{loop};
  PortDevices devices;
  LinkWriter writer{link, port, trace};
  ReplyTimer timer{form, link, loop, writer, trace};
  PortLink port_link{form, link, port, devices, states, writer, timer, bars, trace};
  UnitEditor units{{form, registry, states, slot, messages}};
  BatchConversion batch{form,      flags, link,      registry, names, file_list, files, lookups,
                        converter, units, port_link, loop,     bars,  messages,  trace};
};

struct RunCase {
  const char* name;
  bool all;
  std::int32_t get_from;
  std::int32_t client;
  const char* expected;
};

constexpr RunCase kRuns[] = {
    {"all active units, each with its own factors", true, -1, -1, "1:1 2:2 4:4 "},
    {"one connection type", true, kFromFtp, -1, "4:4 "},
    {"one client", true, -1, 1, "1:1 2:2 "},
    {"no unit of that client", true, -1, 9, ""},
    {"the selected unit", false, -1, -1, "2:2 "},
    {"the selected unit, of another connection type", false, kFromFtp, -1, ""},
};

TEST(BatchConversion, ConvertsTheUnitsOfARun) {
  for (const RunCase& row : kRuns) {
    SCOPED_TRACE(row.name);
    BatchWorld world;
    world.flags.error_counter = 7;
    world.batch.ConvertAllUnits(row.all, row.get_from, row.client);
    EXPECT_EQ(world.Converted(), row.expected);
    EXPECT_EQ(world.units.Selected(), 2);
    EXPECT_EQ(world.form.Lbl_Status.text(), row.expected[0] == '\0' ? "" : "Finished...");
    EXPECT_EQ(world.flags.error_counter, 0) << "reset at the start";
    EXPECT_TRUE(world.dialogs.boxes.empty());
  }
}

TEST(BatchConversion, TheSelectedUnitNeedNotBeActiveAndItsEditsCount) {
  BatchWorld world;
  world.units.Select(3);
  world.form.Txt_Correction[0].SetText("9");
  world.batch.ConvertAllUnits(false, -1, -1);
  EXPECT_EQ(world.Converted(), "3:9 ");
}

TEST(BatchConversion, CancelStopsARunAndKeepsTheStatus) {
  BatchWorld world;
  world.loop.Post([&] {
    world.link.UserCancel = true;
    world.form.Lbl_Status.SetText("Cancel...");
  });
  world.batch.ConvertAllUnits(true, -1, -1);
  EXPECT_EQ(world.Converted(), "1:1 ");
  EXPECT_EQ(world.form.Lbl_Status.text(), "Cancel...");
  EXPECT_EQ(world.units.Selected(), 2);
}

TEST(BatchConversion, ABadTableStopsTheCommand) {
  BatchWorld world;
  world.Write("s.lkp", "");
  world.SelectFiles({0});
  world.batch.ConvertAllUnits(true, -1, -1);
  world.batch.ConvertSelectedFiles();
  EXPECT_EQ(world.Converted(), "");
  EXPECT_EQ(world.dialogs.boxes.size(), 2U);
}

TEST(BatchConversion, AllUnitsReportTheirErrors) {
  BatchWorld world;
  world.Write("data/00001.epd", "h,s,4,0\nx\ny\n");
  world.batch.ConvertAllUnits(true, -1, -1);
  EXPECT_EQ(world.dialogs.Texts(), std::vector<std::string>{"Convert error(s): 2"});
  EXPECT_EQ(world.dialogs.boxes[0].count_down, "10");
}

struct SelectedCase {
  const char* name;
  std::vector<std::int64_t> rows;
  std::string expected;
  std::vector<std::string> boxes;
};

TEST(BatchConversion, ConvertsTheSelectedFiles) {
  const std::string summary = "\r\nLines: 1\r\nError(s):1\r\nTime: 3 secs";
  const std::vector<SelectedCase> rows = {
      {"none", {}, "", {"Choose a file"}},
      {"one without errors", {3}, "4:4 ", {}},
      {"one with errors", {0}, "1:1 ", {"File:00001.epd" + summary}},
      {"no raw file", {5}, "", {"Only raw files can be converted"}},
      {"no unit", {4}, "", {"Cannot find a unit for raw file: 00009.epd"}},
      {"several",
       {0, 2, 4, 5},
       "1:1 3:3 ",
       {"Cannot find a unit for raw file: 00009.epd", "Only raw files can be converted",
        "File:selected\r\nLines: 2\r\nError(s):1\r\nTime: 3 secs"}},
  };
  for (const SelectedCase& row : rows) {
    SCOPED_TRACE(row.name);
    BatchWorld world;
    world.Write("data/00001.epd", "h,s,4,0\n2010/3/12 4:00,12000,29300,5\nx\n");
    world.Write("data/00009.epd", "h,s,4,0\n2010/3/12 4:00,12000,29300,5\n");
    world.Write("data/a.zip", "");
    world.file_list.SetPath(world.Path("data"));
    world.file_list.SetPattern("*");
    world.file_list.Refresh(world.form.Lst_LocalFiles);
    world.SelectFiles(row.rows);
    // The first event of the conversion takes its time.
    world.loop.Post([&] { world.loop.Advance(3999); });
    world.batch.ConvertSelectedFiles();
    EXPECT_EQ(world.Converted(), row.expected);
    EXPECT_EQ(world.dialogs.Texts(), row.boxes);
  }
}

}  // namespace
}  // namespace corvane::test
