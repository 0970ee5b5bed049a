#include "window/assistant/rows_table.h"

#include <algorithm>
#include <utility>

#include <QComboBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

namespace corvane::window {
namespace {

constexpr int kShownRows = 4;
constexpr int kCellMargin = 10;  ///< an editor in it has a frame

/// Edits a cell by choosing, or by typing what is not in the list: what that is about is looked at when the page is
/// left.
class ChoiceDelegate : public QStyledItemDelegate {
 public:
  ChoiceDelegate(std::function<QStringList()> choices, QObject* parent)
      : QStyledItemDelegate(parent), choices_(std::move(choices)) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                        const QModelIndex& /*index*/) const override {
    auto* box = new QComboBox(parent);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    box->addItems(choices_());
    return box;
  }
  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    auto& box = dynamic_cast<QComboBox&>(*editor);
    box.setCurrentIndex(std::max(box.findText(index.data().toString()), 0));
    if (const QString text = index.data().toString(); !text.isEmpty()) box.setEditText(text);
    box.lineEdit()->selectAll();
  }
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override {
    model->setData(index, dynamic_cast<QComboBox&>(*editor).currentText());
  }

 private:
  std::function<QStringList()> choices_;
};

}  // namespace

RowsTable::RowsTable(const QStringList& headings, const char* name, int text_id, QWidget* parent)
    : QTableWidget(1, static_cast<int>(headings.size()), parent) {
  setObjectName(name);
  setProperty("textId", text_id);
  setHorizontalHeaderLabels(headings);
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() + kCellMargin);
  horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  horizontalHeader()->setMinimumSectionSize(fontMetrics().averageCharWidth() * 10);
  horizontalHeader()->setHighlightSections(false);
  setEditTriggers(AnyKeyPressed | EditKeyPressed | DoubleClicked | SelectedClicked);
  setSelectionMode(SingleSelection);
  setTabKeyNavigation(true);
  setMinimumHeight(horizontalHeader()->sizeHint().height() + kShownRows * verticalHeader()->defaultSectionSize());
  connect(this, &QTableWidget::cellChanged, this, [this](int row) { TakeEdit(row); });
}

RowsTable::Rows RowsTable::Filled() const {
  Rows rows;
  for (int row = 0; row < rowCount(); ++row) {
    if (IsEmpty(row)) continue;
    QStringList cells;
    for (int column = 0; column < columnCount(); ++column) {
      const QTableWidgetItem* cell = item(row, column);
      cells << (cell != nullptr ? cell->text().trimmed() : QString());
    }
    const QTableWidgetItem* first = item(row, 0);
    const QVariant origin = first != nullptr ? first->data(Qt::UserRole) : QVariant();
    rows.push_back({cells, origin.isValid() ? origin.toInt() : -1});
  }
  return rows;
}

void RowsTable::Fill(const Rows& rows) {
  const QSignalBlocker quiet(this);
  clearContents();
  const auto filled = static_cast<int>(rows.size());
  setRowCount(filled + 1);
  for (int row = 0; row < filled; ++row) SetRow(row, rows[static_cast<std::size_t>(row)]);
  setCurrentCell(filled, 0);
}

void RowsTable::SetRow(int row, const Row& contents) {
  for (int column = 0; column < columnCount(); ++column) {
    setItem(row, column, new QTableWidgetItem(contents.cells.value(column)));
  }
  item(row, 0)->setData(Qt::UserRole, contents.origin);
}

void RowsTable::SetChoices(int column, std::function<QStringList()> choices) {
  choices_[column] = choices;
  setItemDelegateForColumn(column, new ChoiceDelegate(std::move(choices), this));
}

void RowsTable::GoTo(int row, int column) {
  setFocus();
  if (row < rowCount()) setCurrentCell(row, column);
}

void RowsTable::RemoveCurrentRow() {
  if (currentRow() < 0 || currentRow() >= rowCount() - 1) return;
  removeRow(currentRow());
  if (on_edit) on_edit();
}

void RowsTable::TakeOpenCell() {
  QWidget* const editor = state() == EditingState && !taking_ ? viewport()->focusWidget() : nullptr;
  if (editor == nullptr || editor->parentWidget() != viewport()) return;
  commitData(editor);
  closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void RowsTable::TakeEdit(int row) {
  const QScopedValueRollback<bool> taking(taking_, true);
  if (row == rowCount() - 1 && !IsEmpty(row)) {
    const QSignalBlocker quiet(this);
    const QStringList with = preset ? preset() : QStringList();
    for (int column = 0; column < columnCount(); ++column) {
      const bool is_typed = item(row, column) != nullptr && !item(row, column)->text().isEmpty();
      if (!is_typed) setItem(row, column, new QTableWidgetItem(with.value(column)));
    }
    setRowCount(rowCount() + 1);
  }
  if (on_edit) on_edit();
}

bool RowsTable::IsEmpty(int row) const {
  for (int column = 0; column < columnCount(); ++column) {
    if (item(row, column) != nullptr && !item(row, column)->text().trimmed().isEmpty()) return false;
  }
  return true;
}

bool RowsTable::IsAtAnEnd(bool next) const {
  if (!currentIndex().isValid()) return true;
  if (!next) return currentRow() == 0 && currentColumn() == 0;
  return currentRow() == rowCount() - 1 && IsEmpty(currentRow());
}

void RowsTable::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  const bool onward = hint == QAbstractItemDelegate::EditNextItem;
  const bool backward = hint == QAbstractItemDelegate::EditPreviousItem;
  if ((!onward && !backward) || !IsAtAnEnd(onward)) return QTableWidget::closeEditor(editor, hint);
  QTableWidget::closeEditor(editor, QAbstractItemDelegate::NoHint);
  focusNextPrevChild(onward);
}

bool RowsTable::focusNextPrevChild(bool next) {
  setTabKeyNavigation(!IsAtAnEnd(next));
  const bool moved = QTableWidget::focusNextPrevChild(next);
  setTabKeyNavigation(true);
  return moved;
}

void RowsTable::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Delete && event->modifiers() == Qt::ControlModifier) return RemoveCurrentRow();
  QTableWidget::keyPressEvent(event);
}

}  // namespace corvane::window
