#include "command_table.h"

#include <algorithm>

namespace corvane::console {
namespace {

constexpr std::size_t kMany = 1'000'000;

constexpr CommandRow kCommands[] = {
    {CommandId::Setup, "setup", "", "ask for everything that a network needs, and try it",
     "Asks for port, relays, units, folders, tables, schedule, server and backup, a question a line, with\n"
     "the present value in brackets. Tests the port, asks a unit for its clock, tries server and backup.\n"
     "\"back\" goes back; \"quit\", Ctrl-C or the end of the input changes nothing. Nothing is written before\n"
     "the end. Run again, it shows what is there. Answers may come through a pipe.",
     kEverywhere, 0, 0},
    {CommandId::Download, "download", "[UNIT...|--hand-held]", "bring in new readings and convert them",
     "Asks every active radio unit, or each UNIT (name or ID) by its own connection, for the readings\n"
     "since the last one stored, and converts what is in its raw file. With --hand-held: all units\n"
     "whose readings come through the hand-held unit. Then fetches, sends and backs up as the settings\n"
     "say. Prints a table of results.",
     kDownloadOption, 0, kMany},
    {CommandId::Convert, "convert", "[UNIT...|--file FILE...]", "convert raw files into calibrated files",
     "Converts the raw files of all active units, of each UNIT (name or ID), or each raw FILE of the\n"
     "data folder (bare name or path). Prints a table of results.",
     kConvertOption, 0, kMany},
    {CommandId::Send, "send", "[UNIT...]", "send the units' files to the FTP server",
     "Sends the file of every active unit that is sent by FTP, or of each UNIT (name or ID) that is.\n"
     "The first file that cannot be sent ends it, but with --go-on. Prints a table of results.",
     kEverywhere, 0, kMany},
    {CommandId::Fetch, "fetch", "[UNIT...]", "fetch files that other sites left on the FTP server",
     "Fetches the file of every active unit that comes by FTP, or of each UNIT (name or ID) that does,\n"
     "and converts what came raw. Prints a table of results.",
     kEverywhere, 0, kMany},
    {CommandId::Backup, "backup", "", "zip the units' files into the backup folder",
     "Needs the backup in the settings. Prints a table of results.", kEverywhere, 0, 0},
    {CommandId::Repair, "repair", "[UNIT...]", "ask units for readings that their raw files lack",
     "Looks for gaps in the raw files of all active radio units, or of each UNIT (name or ID), and asks\n"
     "the units for what is missing, the newest gaps first. What a unit still holds is put between its\n"
     "neighbours; then the file is converted and sent. Units that are read through the hand-held unit,\n"
     "by FTP or as web data cannot be asked. Prints a table of results.",
     kRepairOption, 0, kMany},
    {CommandId::GetDate, "get-date", "", "show the date and time of units", "Changes nothing.", kUnitOption, 0, 0},
    {CommandId::SetDate, "set-date", "", "set the date and time of units to this computer's",
     "Asks twice before a unit is changed.", kUnitOption, 0, 0},
    {CommandId::SetLogPeriod, "set-log-period", "HH:MM", "set how often units store a reading",
     "HH:MM is from 00:01 to 04:15. Asks twice before a unit is changed.", kUnitOption, 1, 1},
    {CommandId::SetMode, "set-mode", "TEXT", "send a mode to units", "Asks twice before a unit is changed.",
     kUnitOption, 1, 1},
    {CommandId::SetDelays, "set-delays", "TEXT", "send delays to units", "Asks twice before a unit is changed.",
     kUnitOption, 1, 1},
    {CommandId::ReadMemory, "read-memory", "", "ask units for their memory", "Changes nothing.", kUnitOption, 0, 0},
    {CommandId::TestPort, "test-port", "[radio|hand-held]", "see whether the base station answers",
     "Tests the port of the radio base station, or of the hand-held unit.", kEverywhere, 0, 1},
    {CommandId::FindPort, "find-port", "[radio|hand-held]", "look for the port that answers",
     "Tries COM1 to COM50 in turn; the port that answers is kept in the settings.", kEverywhere, 0, 1},
    {CommandId::Run, "run", "", "stay and download on schedule until ended",
     "Needs automatic download in the settings; --automatic switches it on. A port that is missing is\n"
     "reported and tried again at the next time. Ends on SIGTERM, SIGINT or SIGHUP with status 0.",
     kRunOption, 0, 0},
    {CommandId::Recover, "recover", "", "go on with what was entered before the program was killed",
     "Settings are saved when a program ends in order. What was entered before it was killed stands in\n"
     "corvane.ini.recovery; this command saves it as the settings. Without it nothing does.",
     kEverywhere, 0, 0},
    {CommandId::Units, "units", "", "list the units", "Reads only; works while another program runs.", kEverywhere, 0,
     0},
    {CommandId::Status, "status", "", "show how the network stands",
     "Prints a table of the units, the worst first, and what is wrong. Reads history.db alone, without\n"
     "settings or lock: works while another program runs, and for a user who may read that file only.\n"
     "With --check it ends with 0 well, 1 warning, 2 critical, 3 unknown.",
     kStatusOption, 0, 0},
    {CommandId::Health, "health", "UNIT", "show what is known of a unit before driving out to it",
     "Prints its last contacts, battery, clock, relay, gaps and sensors, and what to take along. Reads\n"
     "history.db alone, as status does.",
     kEverywhere, 1, 1},
    {CommandId::Note, "note", "UNIT TEXT", "write down why a unit is as it is",
     "The note shows in status and holds back alerts of the unit until it is taken away by an empty TEXT,\n"
     "or until the end of DATE. Works while another program runs.",
     kNoteOption, 2, 2},
    {CommandId::Page, "page", "FOLDER", "write how the network stands as a page for a browser",
     "Writes index.html into FOLDER, which must be there: one file that is whole in itself. Reads only the\n"
     "application folder; works while another program runs.",
     kEverywhere, 1, 1},
    {CommandId::Stations, "stations", "export|import FILE", "write or read units, relays and clients as a table",
     "export writes them as a CSV file for a spreadsheet; works while another program runs. import says\n"
     "what the file would add and change, and puts it in; where something is wrong it names every line\n"
     "and puts in nothing. What the file does not have stays, but with --delete. FILE - is the standard\n"
     "output or input. The columns: docs/formats/stations-file.md.",
     kStationsOption, 2, 2},
    {CommandId::Practise, "practise", "", "try it all on a simulated network that leaves nothing",
     "Makes an application folder of its own with a simulated base station, units and invented calibration\n"
     "tables, brings in a first whole day, and says what to try there. The base station stays behind until\n"
     "practise --end, or a day after its last use.",
     kPractiseOption, 0, 0},
    {CommandId::Set, "set", "KEY VALUE...", "enter settings",
     "Enters each VALUE as a person does in the window, and saves: nothing of it when one is not taken. KEY\n"
     "is a key of corvane.ini such as FTPServer, of a unit with its number in the list of corvanectl units\n"
     "(Name3, RelayID3), of a relay or client behind its section (Relays.Name2, Clients.Folder1); an empty\n"
     "VALUE is \"\". A relay, a client or a port is named by its name or its number. A password is no\n"
     "argument: corvanectl set FTPPassword asks for it, or reads a line from a file or pipe.",
     kEverywhere, 1, kMany},
    {CommandId::Get, "get", "[KEY]", "show settings",
     "Prints the value of KEY, or every key with its value; of a password only whether there is one. KEY as\n"
     "for set. Reads only; works while another program runs.",
     kEverywhere, 0, 1},
    {CommandId::Ports, "ports", "[assign N DEVICE|-]", "show serial ports and devices, or give a port its device",
     "Lists the devices that are there, who may use them, and what the port numbers stand for. Reads only;\n"
     "works while another program runs. assign gives the port number N, 1 to 50, the device DEVICE; -\n"
     "brings the built-in device back.",
     kEverywhere, 0, 3},
    {CommandId::Keep, "keep", "FILE.zip", "put settings, tables, history and data into one archive",
     "Keeps the settings, the tables, the language file and the history; with --with-data the raw and\n"
     "calibrated files too. The archive holds the passwords, unless --without-passwords leaves them out, and\n"
     "only its owner may read it. A FILE.zip that is there becomes FILE.1.zip, that one FILE.2.zip. Reads\n"
     "only; works while another program runs.",
     kKeepOption, 1, 1},
    {CommandId::Restore, "restore", "FILE.zip", "put what keep has kept into the application folder",
     "Looks through the whole archive first; then its files take the place of those that are there, which go\n"
     "into a folder before-restore-1 beside them. On another computer it says which settings mean another\n"
     "place now and what is missing here, with the command that mends it.",
     kEverywhere, 1, 1},
    {CommandId::Script, "script", "FILE|-", "work the controls of the main window from a file",
     "FILE (- is the standard input, read to its end) holds one statement a line:\n"
     "  set NAME VALUE            enter a value and leave the field\n"
     "  select NAME ROW...        select rows, the last one gets the focus\n"
     "  check NAME ROW 0|1        clear or tick a row\n"
     "  open NAME ROW             open a row\n"
     "  click NAME [INDEX]        press a button and wait until its work is done\n"
     "  menu NAME INDEX           choose a menu entry and wait until its work is done\n"
     "  answer TEXT               answer the next question\n"
     "  wait-for NAME TEXT SECONDS  wait until a control shows TEXT\n"
     "  wait MILLISECONDS\n"
     "  show NAME                 print what a control shows\n"
     "  activate [SWITCHES]       do what happens when the main window becomes active\n"
     "Rows and indexes count from 0. Lines that begin with # are comments.",
     kEverywhere, 1, 1},
    {CommandId::Completion, "completion", "bash|zsh", "print what lets a shell complete commands, options and names",
     "To try it in bash: source <(corvanectl completion bash). The package installs both.", kEverywhere, 1, 1},
    {CommandId::Help, "help", "[COMMAND]", "show this text, or more about a command",
     "The same as corvanectl COMMAND --help.", kEverywhere, 0, 1},
};

constexpr OptionRow kOptions[] = {
    {"--home", "DIR", "the application folder (else $CORVANE_HOME, else the user's)", kEverywhere,
     [](Options& options, const std::string& value) { options.home = value; }},
    {"--unit", "NAME|ID", "only this unit; may be repeated; else all (of commands: all active radio units)",
     kUnitOption | kStatusOption, [](Options& options, const std::string& value) { options.units.push_back(value); }},
    {"--hand-held", "", "the units read through the hand-held unit", kDownloadOption,
     [](Options& options, const std::string&) { options.hand_held = true; }},
    {"--file", "", "the names that follow are raw files", kConvertOption,
     [](Options& options, const std::string&) { options.files = true; }},
    {"--since", "DATE", "only gaps that end later, such as 2026-03-31", kRepairOption,
     [](Options& options, const std::string& value) { options.since = value; }},
    {"--automatic", "", "switch automatic download on, and keep it on in the settings", kRunOption,
     [](Options& options, const std::string&) { options.automatic = true; }},
    {"--interval", "H:MM", "set the automatic interval in the settings", kRunOption,
     [](Options& options, const std::string& value) { options.interval = value; }},
    {"--recover", "", "go on with a recovery copy of the settings, where there is one", kRunOption,
     [](Options& options, const std::string&) { options.recover = true; }},
    {"--log-size", "MB", "set in the settings how large a log grows before it goes over to .1; 0: no end", kRunOption,
     [](Options& options, const std::string& value) { options.log_size = value; }},
    {"--json", "", "print JSON", kStatusOption, [](Options& options, const std::string&) { options.json = true; }},
    {"--check", "", "print one line and end as monitoring plug-ins do", kStatusOption,
     [](Options& options, const std::string&) { options.check = true; }},
    {"--metrics", "", "print the text format of Prometheus", kStatusOption,
     [](Options& options, const std::string&) { options.metrics = true; }},
    {"--until", "DATE", "the last day of the note, such as 2026-12-31", kNoteOption,
     [](Options& options, const std::string& value) { options.until = value; }},
    {"--dry-run", "", "import: only say what it would come to", kStationsOption,
     [](Options& options, const std::string&) { options.dry_run = true; }},
    {"--delete", "", "import: delete what the file has no row of", kStationsOption,
     [](Options& options, const std::string&) { options.deletes = true; }},
    {"--end", "", "end the practice of --home, or all that no program works in", kPractiseOption,
     [](Options& options, const std::string&) { options.end = true; }},
    {"--with-data", "", "keep the raw and calibrated files too", kKeepOption,
     [](Options& options, const std::string&) { options.with_data = true; }},
    {"--without-passwords", "", "leave the passwords out", kKeepOption,
     [](Options& options, const std::string&) { options.without_passwords = true; }},
    {"--generations", "N", "how many former archives stay; 3 unless given", kKeepOption,
     [](Options& options, const std::string& value) { options.generations = value; }},
    {"--yes", "", "answer every question with Yes (run: No all the same)", kEverywhere,
     [](Options& options, const std::string&) { options.yes = true; }},
    {"--go-on", "", "go on past units and files that fail, in this run", kEverywhere,
     [](Options& options, const std::string&) { options.go_on = true; }},
    {"--quiet", "", "print problems only", kEverywhere,
     [](Options& options, const std::string&) { options.quiet = true; }},
    {"--verbose", "", "print the trace too", kEverywhere,
     [](Options& options, const std::string&) { options.verbose = true; }},
    {"--help", "", "show this text", kEverywhere, [](Options& options, const std::string&) { options.help = true; }},
    {"--version", "", "show the version", kEverywhere,
     [](Options& options, const std::string&) { options.version = true; }},
};

/// The row that `fits`; nullptr when there is none.
template <class Rows, class Fits>
auto Find(const Rows& rows, Fits fits) -> const typename Rows::value_type* {
  const auto found = std::find_if(rows.begin(), rows.end(), fits);
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace

std::span<const CommandRow> CommandRows() {
  return kCommands;
}

std::span<const OptionRow> OptionRows() {
  return kOptions;
}

std::vector<std::string> CommandNames() {
  std::vector<std::string> names;
  for (const CommandRow& row : kCommands) names.emplace_back(row.name);
  return names;
}

std::vector<std::string> OptionNames(unsigned options) {
  std::vector<std::string> names;
  for (const OptionRow& row : kOptions) {
    if (row.Fits(options)) names.emplace_back(row.name);
  }
  return names;
}

const CommandRow* FindCommand(std::string_view name) {
  return Find(CommandRows(), [name](const CommandRow& row) { return row.name == name; });
}

const CommandRow* FindCommand(CommandId command) {
  return Find(CommandRows(), [command](const CommandRow& row) { return row.id == command; });
}

const OptionRow* FindOption(std::string_view name) {
  return Find(OptionRows(), [name](const OptionRow& row) { return row.name == name; });
}

}  // namespace corvane::console
