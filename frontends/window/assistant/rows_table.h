#pragma once

#include <functional>
#include <map>
#include <vector>

#include <QStringList>
#include <QTableWidget>

namespace corvane::window {

/// A table that is typed into like a spreadsheet: below its rows stands an empty one, and Tab goes from cell to cell,
/// out of the table behind the empty row.
class RowsTable : public QTableWidget {
 public:
  struct Row {
    QStringList cells;
    int origin = -1;  ///< a number that stays with the row; -1: it was typed since
  };
  using Rows = std::vector<Row>;

  /// `text_id` is the ID of the first heading's texts in language files; the other headings have those that follow.
  RowsTable(const QStringList& headings, const char* name, int text_id, QWidget* parent);

  /// The rows that hold something; a row of blanks is none.
  [[nodiscard]] Rows Filled() const;
  void Fill(const Rows& rows);
  /// Cells of a column are chosen from what `choices` says when one is edited.
  void SetChoices(int column, std::function<QStringList()> choices);
  /// Goes to a cell, so that typing replaces what it holds.
  void GoTo(int row, int column);
  void RemoveCurrentRow();
  /// Takes what stands in a cell that is still being typed into: a shortcut leaves it open.
  void TakeOpenCell();
  /// No higher than it has to be: what is left of the page is shared out.
  [[nodiscard]] QSize sizeHint() const override { return {QTableWidget::sizeHint().width(), minimumHeight()}; }

  /// What a new row holds beside what was typed first; an empty text is nothing.
  std::function<QStringList()> preset;
  /// A cell was changed by hand, or a row was removed.
  std::function<void()> on_edit;

 protected:
  void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
  bool focusNextPrevChild(bool next) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void TakeEdit(int row);
  void SetRow(int row, const Row& contents);
  [[nodiscard]] bool IsEmpty(int row) const;
  /// Whether Tab leaves the table from the current cell.
  [[nodiscard]] bool IsAtAnEnd(bool next) const;

  std::map<int, std::function<QStringList()>> choices_;
  bool taking_ = false;  ///< a cell was changed and the others follow
};

}  // namespace corvane::window
