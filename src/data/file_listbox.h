#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "form/form.h"
#include "ui/messages.h"

namespace corvane {

/// A list control that shows the files of a folder: name, size and date, sorted.
class CFileListbox {
 public:
  CFileListbox(Form& av_Form, Messages& av_Messages) : form_(av_Form), messages_(av_Messages) {}

  void SetPath(std::string_view as_Path) { path_ = as_Path; }
  /// File-name pattern with the wildcard "*".
  void SetPattern(std::string_view as_Pattern) { pattern_ = as_Pattern; }
  /// 0 name, 1 size, 2 date.
  void SetSortBy(std::int16_t ai_Which) { sort_by_ = ai_Which; }
  /// 0 ascending, else descending.
  void SetSortDirection(std::int16_t ai_Direction) { descending_ = ai_Direction != 0; }
  [[nodiscard]] const std::string& Path() const { return path_; }

  /// Scans the folder and fills `av_ListBox`, which must outlive this object; the row with the focus keeps it.
  void Refresh(List& av_ListBox);
  /// Number of selected rows; starts `GetNextSelected` anew.
  [[nodiscard]] std::int64_t SelCount();
  /// The next selected row's full and bare name; false (and starts anew) when there is no further one.
  [[nodiscard]] bool GetNextSelected(std::string& as_FullFile, std::string& as_ShortFile);
  /// The row with the focus; without one shows "Choose a file" and returns false. **Yields** then.
  [[nodiscard]] bool GetCurrent(std::string& as_FullFile, std::string& as_ShortFile);
  /// Shows a run-time error of one of this list's operations. **Yields.**
  void ReportError(std::string_view as_Description, std::string_view as_Operation);

 private:
  void Sort();
  /// Shows the files; the row of the one called `as_Focused` gets the focus.
  void Fill(const std::string& as_Focused);
  /// The name of the file that a row shows, empty when there is no such row.
  [[nodiscard]] std::string NameInRow(std::int64_t al_Row) const;

  Form& form_;
  Messages& messages_;
  List* list_ = nullptr;
  std::string path_;
  std::string pattern_;
  std::int16_t sort_by_ = 0;
  bool descending_ = false;
  std::vector<FolderEntry> entries_;
  std::int64_t cursor_ = 0;
};

}  // namespace corvane
