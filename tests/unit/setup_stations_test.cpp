// Units, relays and clients as a table: what is read, what it comes to, what is put in.
#include <gtest/gtest.h>

#include "base/csv.h"
#include "setup/stations_question.h"
#include "support/world.h"

namespace corvane::test {
namespace {

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

TEST(Csv, IsTakenApart) {
  struct Row {
    const char* text;
    const char* rows;  ///< "line: cell|cell" each
    const char* faults;
  };
  const Row rows[] = {
      {"a,b\r\n1,2\r\n", "1: a|b\n2: 1|2\n", ""},
      {"a;b\n\"1;\n2\";\"say \"\"hi\"\"\"\n;;\n3;4", "1: a|b\n2: 1;~2|say \"hi\"\n5: 3|4\n", ""},
      {"a\tb,c\td\r1\t2\t3\r", "1: a|b,c|d\n2: 1|2|3\n", ""},
      {"sep=;\na;b,c,d\n", "2: a|b,c,d\n", ""},
      {"\"a,\";b\n5\" pipe;2\n", "1: a,|b\n2: 5\" pipe|2\n", ""},
      {"a,b\n\"1\"x,2\n3,\"4\n5,6\n", "1: a|b\n2: 1x|2\n3: 3|4\n4: 5|6\n", "2: behind\n3: open\n"},
      {"", "", ""},
  };
  for (const Row& row : rows) {
    const CsvContents contents = ParseCsv(row.text);
    std::string text;
    for (const CsvRow& each : contents.rows) {
      text += std::to_string(each.line) + ":";
      for (std::string cell : each.cells) {
        std::ranges::replace(cell, '\n', '~');
        text += (&cell == &each.cells.front() || text.ends_with(':') ? " " : "|") + cell;
      }
      text += "\n";
    }
    EXPECT_EQ(text, row.rows) << row.text;
    std::string faults;
    for (const CsvFault& fault : contents.faults) {
      faults += std::to_string(fault.line) + (fault.problem == CsvProblem::OpenQuote ? ": open\n" : ": behind\n");
    }
    EXPECT_EQ(faults, row.faults) << row.text;
  }
}

/// Direct, Tower (5) and Ridge (7); Acme (1, north) and Bert (2); River (11, Tower, Acme), Hill (12), hill (13, Ridge,
/// Bert) and a unit that refers to a relay that is not there.
Registry Network() {
  Registry registry;
  for (const auto& [name, id] : {std::pair("Direct", 0), std::pair("Tower", 5), std::pair("Ridge", 7)}) {
    registry.Relays.Append({name, id, 1});
  }
  registry.Clients.Append({"Acme", 1, "north", "secret", "acme"});
  registry.Clients.Append({"Bert", 2, "", "", ""});
  const auto add = [&registry](const char* name, int id, int relay, int client) {
    Unit unit;
    unit.Name = name;
    unit.ID = id;
    unit.Active = 1;
    unit.RelayID = relay;
    unit.ClientID = client;
    unit.MoistureCorrection = 0.1F;
    unit.Depths = "10;20";
    registry.Units.Append(unit);
  };
  add("River", 11, 5, 1);
  add("Hill", 12, 0, 0);
  add("hill", 13, 7, 2);
  add("Lost", 14, 99, 0);
  return registry;
}

StationsPlan PlanOf(const Registry& registry, const std::string& file, bool deletes = false) {
  return PlanStations(registry, ReadStations(file), {deletes, [](std::int64_t position) {
                                                       return position == 1 ? "/data/00011.epd" : std::string();
                                                     }});
}

std::string FaultsIn(const StationsPlan& plan) {
  std::string text;
  for (const StationFault& fault : plan.faults) text += fault.Sentence() + "\n";
  return text;
}

TEST(Stations, TellWhatATableWouldChange) {
  struct Row {
    const char* file;
    const char* changes;
    bool deletes = false;
  };
  const Row rows[] = {
      {"Name,ID\nRiver,11\nHill,12\n", ""},
      {"Name,ID,Relay\nRiver flat,23,tower\n", "adds unit \"River flat\" (23) behind \"Tower\"\n"},
      {"name;id;client;active;sensor depths\nRiver flat;23;ACME;nein;10;\nHill;12;;FALSCH;5\n",
       "changes unit \"Hill\" (12): Active \"yes\" becomes \"no\", Sensor depths (cm) \"10;20\" becomes 5\n"
       "adds unit \"River flat\" (23) for \"Acme\"\n"},
      // A name is changed where client and ID are known, an ID where the name is; places stay.
      {"Name,ID,Client\nBrook,11,Acme\nHill,22,None\n",
       "changes unit \"River\" (11): Name \"River\" becomes \"Brook\"\n"
       "changes unit \"Hill\" (12): ID 12 becomes 22\n"},
      {"Name,ID,Client\nRiver,17,Acme\n",
       "changes unit \"River\" (11): ID 11 becomes 17; its raw file keeps its name and folder: move it, or all "
       "readings "
       "are fetched anew: /data/00011.epd\n"},
      {"Name,ID,Active\nhill,,no\n", "changes unit \"hill\" (13): Active \"yes\" becomes \"no\"\n"},
      // Units follow a relay that is told by its name; what is named goes where it says.
      {"Kind,Name,ID,Relay\nRelay,Tower,6,\nUnit,River,11,Tower\nUnit,Hill,12,Tower\n",
       "changes relay \"Tower\" (5): ID 5 becomes 6; 1 unit follows it\n"
       "changes unit \"Hill\" (12): Relay \"Direct\" becomes \"Tower\"\n"},
      {"Kind,Name,ID,Folder\nClient,Cora,,cora\nclient,Acme,1,north\nCLIENT,Dora,7,\n",
       "adds client \"Cora\" (3), folder \"cora\"\nadds client \"Dora\" (7), folder \"\"\n"},
      // A client that nobody entered is made; names that mean none, German headings, depths as people write them.
      {"Nr.;Stationsname;Relais;Kunde;Tiefen (cm);Nummer\n1;Au;Ridge;Cora & Co/2;10,20,40;31\n2;Hang;-;cora & co/2;7,5 "
       "/ 15;32\n"
       "3;Ufer;0;keiner;10 20;33\n",
       "adds client \"Cora & Co/2\" (3), folder \"Cora & Co_2\"\nadds unit \"Au\" (31) behind \"Ridge\" for \"Cora & "
       "Co/2\"\nadds unit \"Hang\" (32) for \"Cora & Co/2\"\nadds unit \"Ufer\" (33)\n"},
      {"Art,Name,ID,Relais\nRelais,Ridge,7,\nStation,Hill,12,Ridge\n",
       "changes unit \"Hill\" (12): Relais \"Direct\" becomes \"Ridge\"\n"},
      {"Name,ID,Relay,Moisture correction\nRiver,11,ID 7,\"0,5\"\nLost,14,99,0.1\n",
       "changes unit \"River\" (11): Relay \"Tower\" becomes \"Ridge\", Moisture correction 0.1 becomes 0.5\n"},
      {"Name,ID\nRiver,11\nHill,12\nhill,13\n", "deletes unit \"Lost\" (14)\n", true},
      {"Kind,Name,ID,Relay\nRelay,Tower,5,\nUnit,Hill,12,Direct\nUnit,hill,13,Tower\nUnit,Lost,14,ID 99\n",
       "changes unit \"hill\" (13): Relay \"ID 7\" becomes \"Tower\"\n"
       "deletes unit \"River\" (11); its raw file stays: /data/00011.epd\ndeletes relay \"Ridge\" (7)\n",
       true},
  };
  const Registry registry = Network();
  for (const Row& row : rows) {
    const StationsPlan plan = PlanOf(registry, row.file, row.deletes);
    EXPECT_EQ(FaultsIn(plan) + Joined(plan.changes), row.changes) << row.file;
  }
}

TEST(Stations, TellEveryFaultOfATable) {
  struct Row {
    std::string file;
    const char* faults;
    bool deletes = false;
  };
  const Row rows[] = {
      {"", "the file is empty; its first line holds the headings, Name among them\n"},
      {std::string("PK\0", 3), "this is no text in UTF-8 or Windows-1252; save the table as CSV in UTF-8\n"},
      {"Name|ID\nRiver|11\n",
       "line 1: this is no table of stations: no column has the heading Name (or Station, or Site). The first line "
       "holds the headings, such as Name, ID (or Radio ID, or Number), Relay, Client and Depths, with commas, "
       "semicolons or tabs between them\n"},
      {"Name,Relay\nRiver,\nA,Towr\nB,\n",
       "line 1: no column has the heading ID (or Radio ID, or Number): units and relays that are new need one\n"
       "line 3, Relay: there is no relay \"Towr\"; write the name of one, or Direct, or add a row of the kind relay\n"},
      {"Name,ID,Name\nRiver,11\n", "line 1, Name: there are two columns of this name\n"},
      {"Name,ID\nRiver,11,5\n", "line 2: there are more cells than headings, the first of them \"5\"\n"},
      {"Name,ID\nA,21\nB,21\nC,12\n",
       "line 3, ID: the unit on line 2 has the same ID and folder: both would share one raw file\n"},
      {"Name,ID,Client\nA,14,Bert\n",
       "line 2, ID: the unit \"Lost\", of which the table has no row, has the same ID and folder: both would share one "
       "raw file\n"},
      {"Name,ID\n,21\n\"a\nb\",22\nx,y\nz,\n",
       "line 2, Name: the name is empty\n"
       "line 3, Name: the text holds a line break or a control character; write it in one line\n"
       "line 5, ID: This is no whole number from -2147483648 to 2147483647.\n"
       "line 6, ID: it is a new unit and needs an ID\n"},
      {"Name,ID\nBrook,21\n brook ,22\n", "line 3, Name: the unit on line 2 of the same client has the same name\n"},
      {"Name,ID,Relay,Client,Active,Get readings by,Salinity correction,Sensor depths (cm)\n"
       "A,21,Towr,ID 9,perhaps,post,51,deep\n",
       "line 2, Active: write yes or no, not \"perhaps\"\n"
       "line 2, Relay: there is no relay \"Towr\"; write the name of one, or Direct, or add a row of the kind relay\n"
       "line 2, Client: there is no client \"ID 9\"; write the name of one, or None, or add a row of the kind client\n"
       "line 2, Get readings by: \"post\" is none of None, Radio, Hand held, ftp\n"
       "line 2, Salinity correction: This is no number (with \".\" as the decimal point) from 0 to 50.\n"
       "line 2, Sensor depths (cm): These are no depths; write them in centimetres from the first sensor on, such as "
       "10;20;40.\n"},
      {"Kind,Name,ID,Folder,Password style\nTower,A,21,,\nUnit,B,22,north,\nRelay,Other,0,,4\nClient,Acme,5,,\n",
       "line 2, Kind: \"Tower\" is none of Unit, Relay and Client\n"
       "line 3, Folder: a unit has nothing in this column; empty the cell\n"
       "line 4, Password style: This is no whole number from 1 to 3.\n"
       "line 4, ID: Direct, and it alone, is the relay with the ID 0\n"
       "line 5, ID: the ID of a client does not change: \"Acme\" has 1; write that, or empty the cell\n"},
      {"Kind,Name,ID\nRelay,Tower,5\nRelay,Ridge,5\n", "line 3, ID: the relay on line 2 has the same ID\n"},
      {"Kind,Name,ID\nRelay,Ridge,7\n",
       "the relay \"Tower\" (5) has no row and would be deleted, but units refer to it (1); give it a row, or them "
       "another one\n",
       true},
      // All of them at once, whatever else a line has, but nothing that only follows from another.
      {"Kind,Name,ID,Relay,Client\nMast,East,8\nRelay,West,x\nRelay,Tower,5\nUnit,A,21,East,Acme,\nUnit,A,2x,West,"
       "Acme\n"
       "Unit,B,11,Tower,Acme,5\nUnit,C,\"23\"3,none\nUnit,\"D,21,0,Acme\nUnit,E,21,Ridge,Acme\n",
       "line 2, Kind: \"Mast\" is none of Unit, Relay and Client\n"
       "line 3, ID: This is no whole number from -2147483648 to 2147483647.\n"
       "line 6, ID: This is no whole number from -2147483648 to 2147483647.\n"
       "line 6, Name: the unit on line 5 of the same client has the same name\n"
       "line 7: there are more cells than headings, the first of them \"5\"\n"
       "line 8: text stands behind the closing quote (\") of a cell; a quote within is written twice\n"
       "line 9: a quote (\") begins here and has no end\n"
       "line 10, ID: the unit on line 5 has the same ID and folder: both would share one raw file\n"},
      {"Name,ID\nnull,21\n", "line 2, Name: the word \"null\" stands for an empty text; write another one\n"},
  };
  const Registry registry = Network();
  for (const Row& row : rows) EXPECT_EQ(FaultsIn(PlanOf(registry, row.file, row.deletes)), row.faults) << row.file;
}

/// What was exported comes back as it was, whatever the names are and through whatever a spreadsheet saves.
TEST(Stations, ComeBackAsTheyWere) {
  Registry registry = Network();
  const char* const names[] = {"=1+1",        "'=1",    "+a", "-x",     "@a",    "\"quoted\"", "semi;colon", "a, b",
                               "caf\xC3\xA9", " ends ", "'",  "Direct", "tower", "ID 7",       "\xE9t\xE9"};
  for (const char* name : names) {
    registry.Units.Append(registry.Units[1]);
    registry.Units[registry.Units.count()].Name = name;
    registry.Relays.Append({name, registry.Units.count() + 100, 0});
    registry.Units[registry.Units.count()].RelayID = registry.Units.count() + 100;
    registry.Clients.Append({name, registry.Units.count() + 100, name, "", name});
  }
  registry.Units.Append(registry.Units[1]);
  registry.Units[2].GetFrom = kFromWebData;
  registry.Units[3].Name = "";
  std::string file = StationsFile(TableOf(registry));
  for (const char* run : {",=", ",+a", ",-x", ",@"}) EXPECT_EQ(file.find(run), std::string::npos) << run;
  for (const bool deletes : {false, true}) {
    const StationsPlan plan = PlanOf(registry, file, deletes);
    EXPECT_EQ(FaultsIn(plan) + Joined(plan.changes), "");
    EXPECT_EQ(plan.units.size(), static_cast<std::size_t>(registry.Units.count()));
  }
  const Registry plain = Network();
  file = StationsFile(TableOf(plain));
  std::ranges::replace(file, ',', ';');
  file = "sep=;\r\n" + file.substr(3);
  EXPECT_EQ(FaultsIn(PlanOf(plain, file)) + Joined(PlanOf(plain, file).changes), "");
}

TEST(Stations, ArePutInAsByHand) {
  World world(SmallNetwork(3) +
              "Name2=North\nMoistureCorrection2=0.25\nDepths2=10\n[Relays]\nNumRelays=2\nName2=Tower\n" + "ID2=5\n");
  Application& app = world.Start();
  app.life().OnWindowActivate("");
  Form& form = app.form();
  app.units().ReselectUnit(2);
  form.Lst_Units.SetMark(1, RowMark::Problem);
  form.Txt_UnitID.SetText("22");
  form.Cmd_Undo.SetVisible(true);
  const StationTable table = ReadStations(
      "Kind,Name,ID,Relay,Client\nRelay,Tower,6\nUnit,North,22,Tower\nUnit,New,40,Tower,Cora\n"
      "Client,Cora\n");
  StationsQuestion question = app.commands().AskStations();
  const StationsPlan plan = question.Answer(table, true);
  EXPECT_EQ(FaultsIn(plan), "");
  (void)app.slot().Run([&] { EXPECT_FALSE(app.commands().PutInStations(question, plan)) << "an operation runs"; });
  form.Txt_UnitName.SetText("Nord");
  EXPECT_FALSE(app.commands().PutInStations(question, plan)) << "the lists are others now";
  form.Txt_UnitName.SetText("North");
  EXPECT_EQ(form.Lst_Units.count(), 3);
  ASSERT_TRUE(app.commands().PutInStations(question, plan));
  EXPECT_EQ(form.Lst_Units.count(), 2);
  EXPECT_EQ(form.Lst_Units.text(1), "New");
  EXPECT_TRUE(form.Lst_Units.checked(1));
  EXPECT_EQ(form.Lst_Units.mark(0), RowMark::Problem);
  EXPECT_EQ(form.Lst_Units.current(), 0) << "the unit that was selected";
  EXPECT_EQ(form.Txt_UnitID.text(), "22");
  EXPECT_EQ(form.Cmb_Relay.shown_text(), "Tower");
  EXPECT_EQ(form.Cmb_Client.count(), 2);
  EXPECT_FALSE(form.Cmd_Undo.visible());
  app.life().OnWindowClose();
  const std::string saved = world.home.Read("corvane.ini");
  for (const char* line : {"NumUnits=2", "Name1=North", "RelayID1=6", "MoistureCorrection1=0.25", "Depths1=10",
                           "RelayID2=6", "ClientID2=3", "NumClients=1", "Folder1=F3"}) {
    EXPECT_NE(saved.find(line), std::string::npos) << line << "\n" << saved;
  }
}

TEST(Stations, TenThousandArePutIn) {
  World world(SmallNetwork(0));
  Application& app = world.Start();
  std::string file = "Kind,Name,ID,Relay\n";
  for (int unit = 1; unit <= 10'000; ++unit) {
    const std::string number = std::to_string(unit);
    if (unit % 10 == 0) file += "Relay,Relay at " + number + "," + std::to_string(unit + 20'000) + ",\n";
    file += "Unit,Station " + number + "," + number + ",Relay at " + std::to_string((unit + 9) / 10 * 10) + "\n";
  }
  const StationTable table = ReadStations(file);
  StationsQuestion question = app.commands().AskStations();
  const StationsPlan plan = question.Answer(table, false);
  EXPECT_EQ(FaultsIn(plan).substr(0, 200), "");
  EXPECT_EQ(plan.changes.size(), 11'000U);
  EXPECT_TRUE(app.commands().PutInStations(question, plan));
  EXPECT_EQ(app.registry().Units[9'999].RelayID, 30'000);
  question = app.commands().AskStations();
  EXPECT_TRUE(question.Answer(ReadStations(question.File()), true).changes.empty());
}

}  // namespace
}  // namespace corvane::test
