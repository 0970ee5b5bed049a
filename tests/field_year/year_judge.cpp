// The accounting of a simulated year.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <numeric>
#include <utility>

#include "base/encoding.h"
#include "base/format.h"
#include "field_year/year.h"
#include "support/world.h"

namespace corvane::test {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kLongestSilence = 75000;  ///< milliseconds
constexpr std::size_t kEventsKept = 50;
constexpr std::size_t kConvertedApart = 3;
constexpr std::size_t kLargestLog = 1'100'000;
constexpr std::size_t kMoreHeld = 5;  ///< a log and the three files of the history that were closed are opened again

std::string Replaced(const std::string& text, const std::string& what, const std::string& with) {
  std::string result;
  std::size_t from = 0;
  for (std::size_t at = 0; (at = text.find(what, from)) != std::string::npos; from = at + what.size()) {
    result.append(text, from, at - from).append(with);
  }
  return result.append(text, from);
}

std::vector<fs::path> FilesOf(const std::string& folder) {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

/// What an archive holds under a name; nothing when it cannot be read.
std::string Unzipped(const std::string& archive, const std::string& name) {
  const TempFolder folder;
  FakeLoop loop;
  LibzipComponent zip(loop);
  zip.SetZipFilename(archive);
  zip.SetFilesToProcess(name);
  zip.SetUnzipFolder(folder.path());
  return zip.Unzip() == kZipOk ? folder.Read(name) : "";
}

}  // namespace

void Year::Note(const std::string& event) {
  const std::string time = FormatDate(DateTime(Now() / kMilliseconds), "HH:MM:SS");
  outcome_.events.push_back("day " + std::to_string(day_) + " " + time + " " + event);
  if (settings_.trace) std::puts(outcome_.events.back().c_str());
  if (outcome_.events.size() > kEventsKept) outcome_.events.pop_front();
}

void Year::Break(const std::string& promise) {
  if (outcome_.broken.empty()) outcome_.broken = promise;
}

void Year::PromoteWholeContact() {
  const auto row = std::exchange(whole_contact_, std::nullopt);
  if (!row) return;
  rows_[*row].TakeWholeContact(logged_when_asked_);
  rows_[*row].is_complete |= IsCalm();
  rows_[*row].heard.back().sign = RawBook::Sign::Whole;
  rows_[*row].book.is_clock_known = true;
}

void Year::TakeCommand() {
  PassUnits();
  PromoteWholeContact();
  if (IsRoundOver()) BeginRound();
  round_.last_command = Now();
}

void Year::BeginRound() {
  JudgeRound();
  round_ = {};
  round_.began = round_.last_command = Now();
}

/// With the option off a round may end at the first unit that fails, else all are asked.
void Year::JudgeRound() {
  if (round_.may_end || round_.was_disturbed || round_.asked.size() == rows_.size()) return;
  Break("a round has asked " + std::to_string(round_.asked.size()) + " units only");
}

void Year::JudgeDay() {
  PassUnits();
  PromoteWholeContact();
  JudgeRawFiles();
  if (line_->longest_silence > kLongestSilence) {
    Break("a wait on the open port lasted " + std::to_string(line_->longest_silence / 1000) + " s");
  }
  const std::string strange = ftp_.StrangeFile();
  if (!strange.empty()) Break("the server holds what was not sent as " + strange);
  if (program_) JudgeProgram();
  regular_days_ = day_is_regular_ ? regular_days_ + 1 : 0;
  JudgeAlerts();
  if (program_ && IsRoundOver() && !IsBusy()) JudgeUnit();
}

/// Behind a round in which all went well, one unit's files are those of its last download.
void Year::JudgeUnit() {
  JudgeRound();
  const bool was_whole = round_.asked.size() == rows_.size() && !round_.may_end && !round_.was_disturbed;
  if (!was_whole || !round_.downloads || last_deed_ >= round_.began || HasTrouble()) return;
  const std::size_t row = random_.Below(rows_.size());
  if (!fs::exists(rows_[row].path)) return;
  JudgeCalibrated({row});
  if (ftp_.mood == FtpSite::Mood::Well) JudgeSent(rows_[row]);
}

void Year::JudgeRawFiles() {
  for (RawBook& row : rows_) Break(row.Judge(settings_.goes_on));
}

void Year::JudgeProgram() {
  const std::int64_t rounds = line_->opens - opens_before_;
  if (day_is_regular_ && rounds < settings_.rounds_a_day - 1) Break(std::to_string(rounds) + " rounds in a day");
  const std::size_t log_size = std::exchange(log_size_, ReadAll(home_ + "/corvane.log").size());
  if (day_is_regular_ && rounds > 0 && log_size == log_size_) Break("the log stands still");
  if (dialogs_->open_boxes > 0) Break("a box waits for a click: " + dialogs_->boxes.back().text);
  dialogs_->boxes.clear();
  dialogs_->count_downs.clear();
  const auto descriptors = static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
  if (descriptors_ == 0) descriptors_ = descriptors, timers_ = loop_.timers();
  if (descriptors > descriptors_ + kMoreHeld) Break("open descriptors grow");
  if (loop_.timers() > timers_ + kMoreHeld) Break("open timers grow");
}

/// What is replaced as a whole is whole at any time.
void Year::JudgeWholeFiles() {
  std::vector<fs::path> files = {home_ + "/corvane.ini"};
  for (const RawBook& row : rows_) files.push_back(fs::path(row.path).replace_extension("txt"));
  for (const fs::path& file : files) {
    const std::string contents = ReadAll(file);
    const bool is_whole = contents.empty() || (contents.back() == '\n' && contents.find('\0') == std::string::npos);
    if (!is_whole || (contents.empty() && file.extension() == ".ini")) Break(file.string() + " is not whole");
  }
}

void Year::JudgeEnd() {
  if (!program_) return Break("the program does not run at the end");
  for (const RawBook& row : rows_) {
    if (!row.is_complete) Break(row.path + ": the unit was not asked in the last days");
  }
  if (repairs_gaps_) RepairByHand();
  JudgeHealth();
  JudgeServer();
  EndProgram();
  const std::string settings = ReadAll(home_ + "/corvane.ini");
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    const int id = rows_[row].book.unit.id();
    const std::string line = "\nID" + std::to_string(row + 1) + "=" + std::to_string(id) + "\r";
    if (settings.find(line) == std::string::npos) Break("the settings lack " + line);
  }
  const std::string log = ReadAll(home_ + "/corvane.log");
  if (!IsUtf8(log) || log.size() > kLargestLog) Break("the log is no text or too long");
  std::vector<std::size_t> all(rows_.size());
  std::iota(all.begin(), all.end(), 0);
  if (outcome_.broken.empty()) JudgeCalibrated(all);
  if (outcome_.broken.empty()) JudgeConvertedApart(kConvertedApart);
  outcome_.history = ReadHistory();
  if (outcome_.broken.empty()) JudgeGaps(outcome_.history);
  outcome_.digest = Digest();
}

void Year::JudgeServer() {
  for (const RawBook& row : rows_) {
    JudgeSent(row);
    fs::path file = row.path;
    file.replace_extension(sends_calibrated_ ? "txt" : "epd");
    const fs::path archive = fs::path(file).replace_extension("zip");
    // What a repair fills behind the backup is in the next one.
    if (repairs_gaps_) continue;
    const std::string backup = home_ + "/backup" + archive.string().substr(home_.size());
    if (Unzipped(backup, file.filename()) != ReadAll(file)) Break(backup + " does not hold " + file.string());
  }
}

void Year::JudgeSent(const RawBook& row) {
  const char* const extension = zips_ ? "zip" : sends_calibrated_ ? "txt" : "epd";
  const std::string sent = fs::path(row.path).replace_extension(extension);
  if (ftp_.files[sent.substr(home_.size())] != ReadAll(sent)) Break("the server does not hold " + sent);
}

/// Held against a conversion in an empty folder.
void Year::JudgeCalibrated(const std::vector<std::size_t>& rows) {
  World fresh;
  for (const char* name : {"corvane.ini", "moisture.lkp", "salinity.lkp", "salcorr.lkp"}) {
    fresh.home.Write(name, Replaced(ReadAll(home_ + "/" + name), home_, fresh.home.path()));
  }
  const auto name_of = [this](const fs::path& file) { return file.string().substr(home_.size() + 1); };
  for (const std::size_t row : rows) fresh.home.Write(name_of(rows_[row].path), ReadAll(rows_[row].path));
  fresh.dialogs.answer_plain_boxes = false;
  Application& converter = fresh.Start();
  {
    const AutomaticRun automatic(converter.flags());
    converter.commands().ConvertAll(true);
  }
  for (const std::size_t row : rows) {
    const fs::path calibrated = fs::path(rows_[row].path).replace_extension("txt");
    const std::string here = ReadAll(calibrated);
    if (here.empty() || here != fresh.home.Read(name_of(calibrated))) {
      Break(calibrated.string() + " is not what a fresh conversion gives");
    }
  }
}

/// The first units' files held against a conversion that was written apart.
void Year::JudgeConvertedApart(std::size_t units) {
  const TempFolder folder;
  const auto other = [&folder](std::size_t row) { return folder.Name(std::to_string(row)); };
  std::string command = "python3 " FIELD_YEAR_DIR "/convert.py " + home_;
  units = std::min(units, rows_.size());
  for (std::size_t row = 0; row < units; ++row)
    command += " " + std::to_string(row + 1) + " " + rows_[row].path + " " + other(row);
  if (std::system(command.c_str()) != 0) return Break("the conversion written apart fails: " + command);
  for (std::size_t row = 0; row < units; ++row) {
    const fs::path calibrated = fs::path(rows_[row].path).replace_extension("txt");
    if (ReadAll(calibrated) != ReadAll(other(row)))
      Break(calibrated.string() + " is not what a conversion written apart gives");
  }
}

std::string Year::Digest() const {
  std::uint64_t digest = 0;
  const auto add = [&digest](const std::string& text) {
    digest = basestation::Mix(digest ^ text.size());
    for (std::size_t at = 0; at < text.size(); at += sizeof digest) {
      std::array<char, sizeof digest> piece{};
      text.copy(piece.data(), piece.size(), at);
      digest = basestation::Mix(digest ^ std::bit_cast<std::uint64_t>(piece));
    }
  };
  for (const fs::path& file : FilesOf(home_)) {
    // The history is compared by what it holds.
    if (file.filename().string().starts_with("history.db")) continue;
    // A copy of settings holds a hash of them, and with it of this folder's name.
    if (file.extension() == ".recovery") continue;
    // Archives hold the time of day; what counts is what is in them.
    const bool is_archive = file.extension() == ".zip";
    const std::string packed = file.stem().string() + (sends_calibrated_ ? ".txt" : ".epd");
    add(Replaced(file.string() + (is_archive ? Unzipped(file, packed) : ReadAll(file)), home_, "home"));
  }
  return std::to_string(digest);
}

}  // namespace corvane::test
