#include "data/file_listbox.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "ui/mouse_pointer.h"

namespace corvane {
namespace {

constexpr std::int16_t kBySize = 1;
constexpr std::int16_t kByDate = 2;

}  // namespace

void CFileListbox::Refresh(List& av_ListBox) {
  list_ = &av_ListBox;
  std::string problem;
  {
    const BusyPointer busy(form_.Frm_Main);
    std::vector<FolderEntry> found;
    const auto wanted = [this](std::string_view name) { return MatchesPattern(name, pattern_); };
    const Status listed = ListFiles(path_, wanted, found);
    if (listed.ok() || listed.code() == ENOENT) {
      const std::string focused = NameInRow(list_->current());
      entries_ = std::move(found);
      Sort();
      Fill(focused);
    } else {
      problem = listed.text();
    }
  }
  if (!problem.empty()) ReportError(problem, "Refresh");
}

void CFileListbox::Sort() {
  const auto less = [this](const FolderEntry& a, const FolderEntry& b) {
    if (sort_by_ == kBySize && a.info.size != b.info.size) return a.info.size < b.info.size;
    if (sort_by_ == kByDate && a.info.modified != b.info.modified) return a.info.modified < b.info.modified;
    const int order = CompareNoCase(a.name, b.name);
    return order == 0 ? a.name < b.name : order < 0;
  };
  std::sort(entries_.begin(), entries_.end(), [this, &less](const FolderEntry& a, const FolderEntry& b) {
    return descending_ ? less(b, a) : less(a, b);
  });
}

void CFileListbox::Fill(const std::string& as_Focused) {
  std::int64_t focused_row = -1;
  std::vector<std::string> rows;
  rows.reserve(entries_.size());
  for (const FolderEntry& entry : entries_) {
    if (entry.name == as_Focused) focused_row = static_cast<std::int64_t>(rows.size());
    std::string shown = entry.name;
    // A tab stands between the columns.
    std::replace(shown.begin(), shown.end(), '\t', ' ');
    rows.push_back(shown + "\t" + FormatSize(entry.info.size) + "\t" + GeneralDate(entry.info.modified));
  }
  list_->SetRows(std::move(rows));
  list_->SetCurrent(focused_row);
}

std::string CFileListbox::NameInRow(std::int64_t al_Row) const {
  if (al_Row < 0 || al_Row >= static_cast<std::int64_t>(entries_.size())) return {};
  return entries_[static_cast<std::size_t>(al_Row)].name;
}

std::int64_t CFileListbox::SelCount() {
  cursor_ = 0;
  return list_ == nullptr ? 0 : list_->SelectedCount();
}

bool CFileListbox::GetNextSelected(std::string& as_FullFile, std::string& as_ShortFile) {
  const std::int64_t count = list_ == nullptr ? 0 : list_->count();
  while (cursor_ < count) {
    const std::int64_t row = cursor_++;
    if (!list_->selected(row)) continue;
    as_ShortFile = NameInRow(row);
    as_FullFile = AddBackslash(path_) + as_ShortFile;
    return true;
  }
  cursor_ = 0;
  return false;
}

bool CFileListbox::GetCurrent(std::string& as_FullFile, std::string& as_ShortFile) {
  if (list_ == nullptr || list_->current() < 0) {
    messages_.Show("Choose a file");
    return false;
  }
  as_ShortFile = NameInRow(list_->current());
  as_FullFile = AddBackslash(path_) + as_ShortFile;
  return true;
}

void CFileListbox::ReportError(std::string_view as_Description, std::string_view as_Operation) {
  std::string text(as_Description);
  text += kLineBreak;
  text += "FileList";
  text += as_Operation;
  messages_.Show(text, "FileList");
}

}  // namespace corvane
