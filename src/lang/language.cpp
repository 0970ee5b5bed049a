#include "lang/language.h"

#include <limits>
#include <utility>

#include "base/encoding.h"
#include "base/files.h"
#include "base/numbers.h"
#include "base/text.h"

namespace corvane {
namespace {

using IDLimits = std::numeric_limits<std::int32_t>;

constexpr std::int64_t kLargestFile = std::int64_t{64} * 1024 * 1024;
constexpr std::size_t kLongestQuote = 200;  ///< characters of a line that a message shows
constexpr std::size_t kTextField = 2;
constexpr std::size_t kToolTipField = 3;

/// Takes the next line off `as_Rest`; empty at its end.
std::string_view TakeLine(std::string_view& as_Rest) {
  const std::size_t end = as_Rest.find('\n');
  std::string_view line = as_Rest.substr(0, end);
  as_Rest.remove_prefix(end == std::string_view::npos ? as_Rest.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

char SeparatorOf(std::string_view as_Line) {
  for (const char separator : {',', '~'}) {
    if (as_Line.find(separator) != std::string_view::npos) return separator;
  }
  return '\0';
}

std::string Shortened(std::string_view as_Text) {
  return std::string(CutCharacters(as_Text, kLongestQuote));
}

/// Line 2 holds no separator: reported in words of its own.
struct NoSeparator : RunTimeError {
  using RunTimeError::RunTimeError;
};

}  // namespace

void CLanguage::SetLanguageFile(std::string_view as_Path) {
  file_ = as_Path;
  loaded_ = false;
  failed_ = false;
}

bool CLanguage::LoadFile() {
  loaded_ = false;
  failed_ = false;
  std::string problem;
  try {
    ReadEntries();
    loaded_ = true;
    return true;
  } catch (const NoSeparator& error) {
    loaded_ = true;
    problem = error.what();
  } catch (const RunTimeError& error) {
    problem = error.what() + std::string(kLineBreak) + "Language:LoadFile";
  }
  failed_ = true;
  entries_.clear();
  positions_.clear();
  messages_.ShowTimedMessage(problem, kOkOnly | kExclamationIcon);
  return false;
}

void CLanguage::LoadIfNeeded() {
  if (!loaded_ && !failed_) LoadFile();
}

void CLanguage::ReadEntries() {
  entries_.clear();
  positions_.clear();
  std::string bytes;
  Require(ReadFile(file_, bytes, kLargestFile));
  if (bytes.find('\0') != std::string::npos) {
    throw RunTimeError(file_ + " is no text file in UTF-8 or Windows-1252. Save it as UTF-8");
  }
  const std::string text = DecodeText(std::move(bytes));
  std::string_view rest = text;
  std::string_view line = TakeLine(rest);  // the title
  line = TakeLine(rest);
  const char separator = SeparatorOf(line);
  if (separator == '\0') throw NoSeparator("No parse character in header: " + Shortened(line));
  std::vector<std::string_view> fields;
  for (std::int64_t number = 2;; ++number) {
    SplitInto(line, separator, fields);
    AddEntry(fields, number);
    if (rest.empty()) return;
    line = TakeLine(rest);
  }
}

void CLanguage::AddEntry(const std::vector<std::string_view>& av_Fields, std::int64_t al_Line) {
  Entry entry;
  if (av_Fields.size() > kTextField) {
    const auto id = ParseInteger(av_Fields[0], IDLimits::min(), IDLimits::max());
    if (!id) {
      throw RunTimeError(file_ + ", line " + std::to_string(al_Line) + ": \"" + Shortened(av_Fields[0]) +
                         "\" is no text ID, a whole number is needed");
    }
    entry.ID = static_cast<std::int32_t>(*id);
    entry.Text = av_Fields[kTextField];
    if (av_Fields.size() > kToolTipField) entry.ToolTip = av_Fields[kToolTipField];
  }
  // Intended: a line with too few fields keeps its place as an entry with ID 0; positions follow the file's lines.
  entries_.push_back(std::move(entry));
  positions_.try_emplace(entries_.back().ID, static_cast<std::int64_t>(entries_.size()));
}

std::optional<std::int64_t> CLanguage::FindEntry(std::int32_t al_ID) const {
  const auto found = positions_.find(al_ID);
  if (found == positions_.end()) return std::nullopt;
  return found->second;
}

const CLanguage::Entry* CLanguage::EntryOf(std::int64_t al_ID) const {
  if (al_ID < IDLimits::min() || al_ID > IDLimits::max()) return nullptr;
  const auto position = FindEntry(static_cast<std::int32_t>(al_ID));
  return position ? &entries_[static_cast<std::size_t>(*position - 1)] : nullptr;
}

std::string CLanguage::LanguageText(std::int32_t al_ID) {
  LoadIfNeeded();
  const Entry* entry = EntryOf(al_ID);
  return entry == nullptr ? std::to_string(al_ID) + "NT" : entry->Text;
}

void CLanguage::LoadCaptions(CaptionedWindow& av_Window) {
  LoadIfNeeded();
  if (failed_) return;
  for (std::int64_t position = 0; position < av_Window.CaptionCount(); ++position) {
    const CaptionedWindow::Caption caption = av_Window.CaptionAt(position);
    if (caption.text_id == 0) continue;
    if (caption.tabs > 0) {
      LoadTabs(av_Window, position, caption);
    } else {
      LoadCaption(av_Window, position, caption.text_id);
    }
  }
  av_Window.SetPhrases(PhrasesFor(av_Window.PhraseList()));
}

Phrases CLanguage::PhrasesFor(const std::vector<Phrase>& av_List) const {
  Phrases::Texts texts;
  for (const Phrase& phrase : av_List) {
    const Entry* entry = EntryOf(phrase.id);
    if (entry != nullptr && CanStandFor(phrase, entry->Text)) texts[phrase.id] = entry->Text;
  }
  return Phrases(std::move(texts));
}

void CLanguage::LoadTabs(CaptionedWindow& av_Window, std::int64_t al_Position,
                         const CaptionedWindow::Caption& av_Caption) const {
  for (int tab = 0; tab < av_Caption.tabs; ++tab) {
    // Intended: an empty text empties a tab's caption; only other controls keep theirs.
    const Entry* entry = EntryOf(std::int64_t{av_Caption.text_id} + tab);
    if (entry == nullptr) continue;
    av_Window.SetCaption(al_Position, tab, entry->Text);
    if (tab == 0 && !entry->ToolTip.empty()) av_Window.SetToolTip(al_Position, entry->ToolTip);
  }
}

void CLanguage::LoadCaption(CaptionedWindow& av_Window, std::int64_t al_Position, std::int32_t al_ID) const {
  const Entry* entry = EntryOf(al_ID);
  if (entry == nullptr) return;
  if (!entry->Text.empty()) av_Window.SetCaption(al_Position, 0, entry->Text);
  if (!entry->ToolTip.empty()) av_Window.SetToolTip(al_Position, entry->ToolTip);
}

}  // namespace corvane
