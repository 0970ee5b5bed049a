#include <QAbstractItemView>
#include <QAccessible>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QListView>
#include <QScrollBar>
#include <QTimer>
#include <QTreeView>

#include "window/binding.h"
#include "window/list_model.h"

namespace corvane::window {
namespace {

/// Appended rows (a trace, a reply) are shown so often at most.
constexpr int kAppendMilliseconds = 50;
/// A screen reader gets an event each time; lines that are received are not to drown what is told.
constexpr int kAppendMillisecondsWhenHeard = 1000;

/// Rows in a list or table view. The view's property "streaming" says that rows may come faster than the eye sees.
class ListBinding : public QObject, public Binding {
 public:
  ListBinding(List& list, QWidget& widget, const BindingContext& context)
      : Binding(&widget),
        control_(list),
        context_(context),
        view_(WidgetAs<QAbstractItemView>(widget)),
        streaming_(view_->property("streaming").toBool()),
        model_(list, *view_, view_) {
    if (context.note_of && model_.columnCount() > 1) {
      model_.note_of = [&list, &context](const std::string& text) { return context.note_of(list, text); };
    }
    view_->setModel(&model_);
    if (auto* rows = qobject_cast<QListView*>(view_)) rows->setUniformItemSizes(true);
    SizeColumns();
    append_timer_.setSingleShot(true);
    connect(&append_timer_, &QTimer::timeout, this, [this] { ShowAppendedNow(); });
    connect(view_, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) { Open(index); });
    connect(view_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& index) { TakeCurrent(index); });
    connect(view_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this](const QItemSelection& added, const QItemSelection& removed) {
              TakeSelection(removed, false);
              TakeSelection(added, true);
            });
    view_->installEventFilter(this);
  }

  void Show(Aspect aspect, std::size_t row) override {
    if (taking_ > 0 && aspect == Aspect::Selection) return;
    const Scope showing(showing_);
    if (aspect == Aspect::Rows) {
      ShowRows(row);
    } else if (aspect == Aspect::Selection) {
      ShowSelection(row, true);
    } else {
      model_.TakeRow(row);
      if (aspect == Aspect::CheckMark) TellCheckMark(static_cast<int>(row));
    }
  }
  void ShowEnabled(bool /*enabled*/) override { model_.TakeEnabled(); }

  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() != QEvent::KeyPress) return false;
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
    Open(view_->currentIndex());
    return true;
  }

 private:
  /// Tells what the program shows from what the person does, for a scope.
  class Scope {
   public:
    explicit Scope(int& depth) : depth_(depth) { ++depth_; }
    ~Scope() { --depth_; }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    int& depth_;
  };

  void SizeColumns() {
    auto* table = qobject_cast<QTreeView*>(view_);
    if (table == nullptr) return;
    const QFontMetrics metrics(table->font());
    const bool wide = model_.columnCount() > 3;
    table->header()->setStretchLastSection(wide);
    table->header()->setSectionResizeMode(0, wide ? QHeaderView::Interactive : QHeaderView::Stretch);
    if (wide) table->setColumnWidth(0, metrics.horizontalAdvance(QString(24, 'n')));
    for (int column = 1; column < model_.columnCount(); ++column) {
      table->setColumnWidth(column, metrics.horizontalAdvance(column == 1 ? "000,000 Kb" : "0000-00-00 00:00:00") + 24);
    }
  }

  void ShowRows(std::size_t row) {
    if (model_.OnlyAppended(row)) return ShowAppended();
    const int scrolled = view_->verticalScrollBar()->value();
    model_.TakeAll();
    view_->verticalScrollBar()->setValue(scrolled);
    ShowSelection(0, false);
  }
  void ShowAppended() {
    if (!streaming_) return model_.TakeAppended();
    if (append_timer_.isActive()) return;
    append_timer_.start(QAccessible::isActive() ? kAppendMillisecondsWhenHeard : kAppendMilliseconds);
  }
  void ShowAppendedNow() {
    const Scope showing(showing_);
    // A person who has scrolled up reads.
    const bool at_end = view_->verticalScrollBar()->value() == view_->verticalScrollBar()->maximum();
    model_.TakeAppended();
    ShowSelection(0, at_end);
  }

  void ShowSelection(std::size_t row, bool scroll) {
    auto* selection = view_->selectionModel();
    if (control_.multi_select() && row < static_cast<std::size_t>(model_.rowCount())) {
      const auto how = control_.selected(static_cast<std::int64_t>(row)) ? QItemSelectionModel::Select
                                                                         : QItemSelectionModel::Deselect;
      selection->select(model_.index(static_cast<int>(row), 0), how | QItemSelectionModel::Rows);
    }
    const auto current = static_cast<int>(control_.current());
    if (current >= model_.rowCount()) return;  // appended and not shown yet
    const QModelIndex index = current < 0 ? QModelIndex() : model_.index(current, 0);
    if (index.row() == view_->currentIndex().row() && !index.isValid()) return;
    selection->setCurrentIndex(index, control_.multi_select()
                                          ? QItemSelectionModel::NoUpdate
                                          : QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (index.isValid() && scroll) view_->scrollTo(index);
  }

  void TellCheckMark(int row) {
    if (!QAccessible::isActive() || row >= model_.rowCount()) return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(view_, changed);
    event.setChild(row);
    QAccessible::updateAccessibility(&event);
  }

  void TakeCurrent(const QModelIndex& index) {
    if (showing_ > 0) return;
    context_.loop.Post([this, row = index.isValid() ? index.row() : -1] { TakeCurrentRow(row); });
  }
  void TakeCurrentRow(int row) {
    if (!control_.enabled()) return Show(Aspect::Selection, 0);
    {
      const Scope taking(taking_);
      control_.SetCurrent(row);
    }
    // The control may have refused it or moved on.
    if (control_.current() != row) Show(Aspect::Selection, 0);
  }
  void TakeSelection(const QItemSelection& ranges, bool selected) {
    if (showing_ > 0) return;
    if (!control_.multi_select()) return KeepSelected();
    const Scope taking(taking_);
    for (const QItemSelectionRange& range : ranges) {
      for (int row = range.top(); row <= range.bottom() && row < control_.count(); ++row) {
        control_.SetSelected(row, selected);
      }
    }
  }
  /// Ctrl with a click or the space bar would take the highlight away from the row that commands still act on.
  void KeepSelected() {
    const auto current = static_cast<int>(control_.current());
    if (view_->selectionModel()->hasSelection() || current < 0 || current >= model_.rowCount()) return;
    const Scope showing(showing_);
    view_->selectionModel()->select(model_.index(current, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  void Open(const QModelIndex& index) {
    if (!index.isValid()) return;
    context_.loop.Post([this, row = index.row()] {
      if (row < control_.count()) control_.Open(row);
    });
  }

  List& control_;
  const BindingContext& context_;
  QAbstractItemView* view_;
  bool streaming_;
  ListModel model_;
  QTimer append_timer_;
  int showing_ = 0;
  int taking_ = 0;
};

}  // namespace

std::unique_ptr<Binding> BindList(List& list, QWidget& widget, const BindingContext& context) {
  return std::make_unique<ListBinding>(list, widget, context);
}

}  // namespace corvane::window
