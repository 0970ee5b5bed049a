#include "note_command.h"

#include "base/format.h"
#include "base/text.h"
#include "history/history_reading.h"
#include "history_reading.h"
#include "sqlite/sqlite_history_store.h"

namespace corvane::console {

std::optional<DateTime> NoteEnd(const std::string& text) {
  const auto date = ParseDate(text);
  if (!date || date->TimeOfDay() != 0 || text.find(':') != std::string::npos) return date;
  return *date + (kSecondsPerDay - 1);
}

Status WriteNote(const Options& options, const std::string& folder) {
  HistoryReading reading(folder);
  // Read first: what is opened to be written is made when it is missing, and set aside when it is damaged.
  if (Status read = reading.ReadForStatus(); !read.ok()) return read;
  NoteRecord note;
  note.unit = reading.FindUnit(options.arguments[0]).key;
  note.text = Trim(options.arguments[1]);
  note.written = reading.now();
  if (!options.until.empty()) note.until = NoteEnd(options.until).value_or(DateTime());
  if (!note.until.IsNone() && note.until < reading.now().Local()) {
    throw UsageError("--until: \"" + options.until + "\" is over");
  }
  HistoryContents changes;
  changes.notes.push_back(note);
  const std::string file = HistoryFile(folder);
  SqliteHistoryStore store;
  std::string set_aside;
  Status written = store.OpenToWrite(file, set_aside);
  if (written.ok()) written = store.Write(changes);
  return written.ok() ? written : HistoryFailure(written, file);
}

}  // namespace corvane::console
