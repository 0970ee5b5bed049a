#include "rounds/raw_keeper.h"

#include "base/format.h"
#include "base/paths.h"
#include "base/status.h"
#include "data/raw_items.h"
#include "data/raw_line.h"
#include "ui/mouse_pointer.h"

namespace corvane {

void RawKeeper::BeginRound() {
  ++p_.download.Round;
  p_.download.ClockDoubtful = GoesOn(p_.form, p_.flags) && ClockMayBeWrong();
  if (!p_.download.ClockDoubtful) return;
  p_.trace.AErrorReport("This computer's clock may be wrong: it says " + GeneralDate(p_.loop.Now()) +
                        ". Readings with a date to come are stored as they are");
}

bool RawKeeper::ClockMayBeWrong() {
  const DateTime now = p_.loop.Now();
  const auto last_download = ParseDate(p_.form.Lbl_LastDownload.text());
  if (now < p_.flags.built || (last_download && now < *last_download)) return true;
  std::int64_t with_reading = 0;
  std::int64_t ahead = 0;
  for (std::int32_t index = 1; index <= p_.registry.Units.count() && Poll(); ++index) {
    if (!p_.registry.Units[index].Marked) continue;
    try {
      const LastDateResult found = ReadLastDate(p_.names.DataFileName(index, false), [this] { return Poll(); });
      with_reading += found.last_date.IsNone() ? 0 : 1;
      ahead += IsFarAhead(found) ? 1 : 0;
    } catch (const RunTimeError&) {
      // Its own download says what is wrong with the file.
      continue;
    }
  }
  return with_reading >= 2 && 2 * ahead > with_reading;
}

void RawKeeper::Prepare(std::int32_t al_Unit) {
  p_.download.OutputFileName = p_.names.DataFileName(al_Unit, false);
  CreatePath(FolderOf(p_.download.OutputFileName));
  const LastDateResult last = GetLastDate(p_.download.OutputFileName);
  p_.download.LastDate = last.last_date;
  p_.download.StoredAhead = ahead_.Find(p_.download.OutputFileName, last.last_date, [this] { return Poll(); });
  NameUnit(al_Unit, p_.download.OutputFileName, last.line_text);
}

void RawKeeper::PrepareGap(std::int32_t al_Unit) {
  const std::string raw_file = p_.names.DataFileName(al_Unit, false);
  p_.download.OutputFileName = raw_file + std::string(kRepairFile);
  p_.download.LastDate = p_.download.Gap->from;
  p_.download.StoredAhead.clear();
  NameUnit(al_Unit, raw_file, {});
}

void RawKeeper::NameUnit(std::int32_t al_Unit, const std::string& as_RawFile, std::string_view as_LastGood) {
  p_.download.AskedID = p_.registry.Units[al_Unit].ID;
  p_.download.OwnSiteID = SiteIDOf(FirstLineOf(as_RawFile));
  if (GoesOn(p_.form, p_.flags)) p_.bad_lines.BeginDownload(as_RawFile, as_LastGood, p_.download.Round);
}

LastDateResult RawKeeper::GetLastDate(const std::string& as_File) {
  if (!ExamineFile(as_File)) return {};
  const BusyPointer busy(p_.form.Frm_Main);
  p_.trace.Status("Get date in: " + as_File, StatusKind::Detail);
  RepairFile(as_File);
  const auto poll = [this] { return Poll(); };
  LastDateResult found = ReadLastDate(as_File, poll);
  while (IsFarAhead(found) && GoesOn(p_.form, p_.flags) && !p_.download.ClockDoubtful && MoveLastLine(as_File, found)) {
    found = ReadLastDate(as_File, poll);
  }
  if (!found.problems.empty()) p_.messages.Show(found.problems, "last date");
  if (found.last_date > p_.loop.Now()) ReportFutureDate(found, as_File);
  return found;
}

void RawKeeper::RepairFile(const std::string& as_File) {
  if (const auto torn = RepairTornTail(as_File)) p_.trace.LogWrite("Torn tail cut off " + as_File + ": " + *torn);
  const auto hole = holes_.Mend(as_File, p_.loop.Now(), [this] { return Poll(); });
  if (!hole) return;
  const std::string where = "NUL bytes in " + as_File + ", line " + std::to_string(hole->line);
  if (!hole->kept_as.empty()) {
    p_.trace.LogWrite(where + ": the file was cut there, its end is kept as " + hole->kept_as);
    return;
  }
  p_.trace.AErrorReport(where + ": readings are missing there and are not asked for again");
  p_.download.Tally.AddProblem(where);
}

bool RawKeeper::IsFarAhead(const LastDateResult& av_Found) const {
  return av_Found.last_date - p_.loop.Now() > kFarAhead;
}

bool RawKeeper::MoveLastLine(const std::string& as_File, const LastDateResult& av_Found) {
  p_.bad_lines.BeginDownload(as_File, {}, p_.download.Round);
  // In this order a power cut between the two steps leaves the line in both files and in none never.
  try {
    if (!p_.bad_lines.Hold(av_Found.line_text))
      p_.bad_lines.Add(p_.loop.Now(), BadLines::kFutureDate, av_Found.line_text);
    if (!CutLastLine(as_File, av_Found.line_text)) return false;
  } catch (const RunTimeError& error) {
    p_.trace.AErrorReport("A bad line cannot be kept: " + std::string(error.what()));
    return false;
  }
  const std::string report = "A last reading in the future was moved to " + p_.bad_lines.file();
  p_.trace.AErrorReport(report + ": " + av_Found.line_text);
  if (p_.download.Tally.problem.find(report) == std::string::npos) p_.download.Tally.AddProblem(report);
  return Poll();
}

void RawKeeper::ReportFutureDate(const LastDateResult& av_Found, const std::string& as_File) {
  const std::string where = "The last reading is in the future: " + GeneralDate(av_Found.last_date) + " in " + as_File +
                            ", line: " + av_Found.line_text;
  if (!IsFarAhead(av_Found)) {
    p_.trace.TraceDecision(where);
    return;
  }
  const std::string report = where + ". Check the unit's clock and correct the file.";
  p_.trace.AErrorReport(report);
  p_.messages.Show(report, "future date");
  p_.download.Tally.AddProblem(where);
}

void RawKeeper::CheckFirstLine() {
  if (!IsRightHeader(p_.download.FramedHeader)) return;
  const std::string& file = p_.download.OutputFileName;
  const std::string stored = FirstLineOf(file);
  const bool is_header = IsRightHeader(stored);
  const std::string asked = std::to_string(p_.download.AskedID);
  // The first line of a new file may have come from another unit; this one then has two marks to tell it by.
  const bool is_foreign =
      is_header && !IsSameSiteID(*SiteIDOf(stored), asked) && IsSameSiteID(*SiteIDOf(p_.download.FramedHeader), asked);
  if ((!is_header || is_foreign) && GoesOn(p_.form, p_.flags) && ReplaceHeader(stored)) return;
  if (is_header) return;
  p_.trace.AErrorReport("The first line of " + file + " is no header: " + stored +
                        " The unit sent: " + p_.download.FramedHeader);
  p_.download.Tally.AddProblem("the first line of " + file + " is no header");
}

bool RawKeeper::ReplaceHeader(const std::string& as_Stored) {
  const std::string& file = p_.download.OutputFileName;
  const auto poll = [this] { return Poll(); };
  RawLine line;
  SplitLine(as_Stored, line);
  if (ParseReadingDate(line.items[reading_item::kDate])) return false;
  try {
    const LastDateResult last = ReadLastDate(file, poll);
    SplitLine(last.line_text, line);
    if (last.last_date.IsNone() || static_cast<std::int64_t>(line.items.size()) != p_.download.ItemsPerLine ||
        !ReplaceFirstLine(file, p_.download.FramedHeader, poll)) {
      return false;
    }
  } catch (const RunTimeError& error) {
    p_.trace.AErrorReport(error.what());
    return false;
  }
  p_.trace.LogWrite("The first line of " + file + " was not the unit's and is replaced. It was: " + as_Stored);
  return true;
}

bool RawKeeper::Poll() {
  p_.loop.Poll();
  return !Cancelled(p_.link, p_.flags);
}

}  // namespace corvane
