#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "rounds/batch_conversion.h"
#include "support/scripted_port.h"
#include "unit/data_world.h"

namespace corvane::test {
namespace {

const std::string kRaw = "h,s,4,0\n2010/3/12 4:00,12000,29300,5\n";

/// Four units (1, 2 of client 1; 3 inactive; 4 served by FTP) with a raw file each, unit 2 selected; tables in place.
struct BatchWorld : DataWorld {
  BatchWorld() {
    for (const int table : {0, 1, 2}) form.Txt_File[table].SetText(Write("a.lkp", "0,0\n1000,10\n"));
    form.Txt_Folder.SetText("data");
    for (std::int32_t id = 1; id <= 4; ++id) {
      AddUnit(id, id <= 2 ? 1 : 0).MoistureCorrection = static_cast<float>(id);
      Write("data/0000" + std::to_string(id) + ".epd", kRaw);
    }
    for (const int number : {0, 1, 2, 3}) {
      form.Cmb_Client.Add("client", number);
      form.Cmb_GetFrom.Add("source", number);
      form.Lst_Units.SetChecked(number, number != 2);
    }
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
      if (!text.empty()) found += std::string(1, id) + ":" + text.at(text.find("Mois_Correc=") + 12) + " ";
    }
    return found;
  }

  ScriptedPort port{loop};
  PortDevices devices;
  LinkWriter writer{link, port, trace};
  ReplyTimer timer{{form, link, loop, writer, trace}};
  PortLink port_link{{form, link, port, devices, states, writer, timer, bars, trace}};
  UnitEditor units{{form, registry, states, slot, messages}};
  BatchConversion batch{form,      flags, link,      registry, names, file_list, files, lookups,
                        converter, units, port_link, loop,     bars,  messages,  trace};
};

TEST(BatchConversion, ConvertsTheUnitsOfARun) {
  constexpr std::tuple<bool, std::int32_t, std::int32_t, const char*> kRows[] = {
      {true, -1, -1, "1:1 2:2 4:4 "}, {true, kFromFtp, -1, "4:4 "}, {true, -1, 1, "1:1 2:2 "}, {true, -1, 9, ""},
      {false, -1, -1, "2:2 "},        {false, kFromFtp, -1, ""},
  };
  for (const auto& [all, get_from, client, expected] : kRows) {
    SCOPED_TRACE(testing::Message() << all << " from " << get_from << " client " << client);
    BatchWorld world;
    world.Write("data/00001.epd", kRaw + "x\ny\n");
    world.flags.error_counter = 7;
    world.batch.ConvertAllUnits(all, get_from, client);
    const std::string converted = world.Converted();
    EXPECT_EQ(converted, expected);
    EXPECT_EQ(world.units.Selected(), 2);
    EXPECT_EQ(world.form.Lbl_Status.text(), converted.empty() ? "" : "Finished...");
    EXPECT_EQ(world.dialogs.Texts(), std::vector<std::string>(converted[0] == '1' ? 1 : 0, "Convert error(s): 2"));
  }
}

TEST(BatchConversion, TheSelectedUnitNeedNotBeActiveAndItsEditsCount) {
  BatchWorld world;
  world.units.Select(3);
  world.form.Txt_Correction[0].SetText("9");
  world.batch.ConvertAllUnits(false, -1, -1);
  EXPECT_EQ(world.Converted(), "3:9 ");
}

TEST(BatchConversion, CancelStopsARunBeforeItIsFinished) {
  BatchWorld world;
  world.loop.Post([&] { world.link.UserCancel = true; });
  world.batch.ConvertAllUnits(true, -1, -1);
  EXPECT_EQ(world.Converted(), "1:1 ");
  EXPECT_NE(world.form.Lbl_Status.text(), "Finished...");
}

TEST(BatchConversion, ABadTableStopsTheCommand) {
  BatchWorld world;
  world.Write("a.lkp", "");
  world.batch.ConvertAllUnits(true, -1, -1);
  EXPECT_EQ(world.Converted(), "");
  EXPECT_EQ(world.dialogs.boxes.size(), 1U);
}

TEST(BatchConversion, ConvertsTheSelectedFiles) {
  const std::tuple<std::vector<std::int64_t>, std::string, std::vector<std::string>> rows[] = {
      {{}, "", {"Choose a file"}},
      {{3}, "4:4 ", {}},
      {{0}, "1:1 ", {"File:00001.epd\r\nLines: 1\r\nError(s):1\r\nTime: 3 secs"}},
      {{5}, "", {"Only raw files can be converted"}},
      {{0, 2, 4},
       "1:1 3:3 ",
       {"Cannot find a unit for raw file: 00009.epd", "File:selected\r\nLines: 2\r\nError(s):1\r\nTime: 3 secs"}},
  };
  for (const auto& [selected, expected, boxes] : rows) {
    SCOPED_TRACE(testing::PrintToString(selected));
    BatchWorld world;
    world.Write("data/00001.epd", kRaw + "x\n");
    world.Write("data/00009.epd", kRaw);
    world.Write("data/a.zip", "");
    world.file_list.SetPattern("*");
    world.file_list.Refresh(world.form.Lst_LocalFiles);
    for (const std::int64_t row : selected) world.form.Lst_LocalFiles.SetSelected(row, true);
    world.form.Lst_LocalFiles.SetCurrent(selected.empty() ? -1 : selected.back());
    // The first event of the conversion takes its time.
    world.loop.Post([&] { world.loop.Advance(3999); });
    world.batch.ConvertSelectedFiles();
    EXPECT_EQ(world.Converted(), expected);
    EXPECT_EQ(world.dialogs.Texts(), boxes);
  }
}

}  // namespace
}  // namespace corvane::test
