#include "window/accessible_names.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTabWidget>

namespace corvane::window {
namespace {

constexpr const char* kGivenName = "givenAccessibleName";  ///< before names were worked out
constexpr int kMostContexts = 5;

QString Plain(QString caption) {
  caption = caption.remove('&').trimmed();
  while (caption.endsWith(':') || caption.endsWith('.')) caption.chop(1);
  return caption;
}

bool IsValue(const QLabel& label) {
  return label.objectName().startsWith("lbl_", Qt::CaseInsensitive);
}

/// A label that names what stands beside or below it.
QString CaptionIn(const QLayoutItem* item) {
  const QWidget* widget = item != nullptr ? const_cast<QLayoutItem*>(item)->widget() : nullptr;
  const auto* label = qobject_cast<const QLabel*>(widget);
  if (label != nullptr && !IsValue(*label)) return Plain(label->text());
  const auto* button = qobject_cast<const QAbstractButton*>(widget);
  return button != nullptr && button->isCheckable() ? Plain(button->text()) : QString();
}

/// Where a widget lies: its layouts, the innermost first, each with the place in it.
using Places = std::vector<std::pair<QLayout*, int>>;

bool FindPlaces(QLayout* layout, const QWidget& widget, Places& places) {
  for (int i = 0; layout != nullptr && i < layout->count(); ++i) {
    QLayoutItem* const item = layout->itemAt(i);
    const bool found = item->widget() == &widget || FindPlaces(item->layout(), widget, places);
    if (found) places.emplace_back(layout, i);
    if (found) return true;
  }
  return false;
}

Places PlacesOf(const QWidget& widget) {
  Places places;
  if (widget.parentWidget() != nullptr) FindPlaces(widget.parentWidget()->layout(), widget, places);
  return places;
}

QString CaptionInGrid(const QGridLayout& grid, int place) {
  int row = 0, column = 0, rows = 0, columns = 0;
  const_cast<QGridLayout&>(grid).getItemPosition(place, &row, &column, &rows, &columns);
  QString caption;
  while (caption.isEmpty() && --column >= 0) caption = CaptionIn(grid.itemAtPosition(row, column));
  return caption;
}

/// The caption to the left of a widget, in its own row or that of what holds it.
QString RowCaption(const QWidget& widget) {
  for (const auto& [layout, place] : PlacesOf(widget)) {
    if (const auto* grid = qobject_cast<const QGridLayout*>(layout)) return CaptionInGrid(*grid, place);
    QString caption;
    for (int i = place; caption.isEmpty() && --i >= 0;) caption = CaptionIn(layout->itemAt(i));
    if (!caption.isEmpty()) return caption;
  }
  return {};
}

/// The caption of the column of a grid in which a widget stands; only a label that belongs to no other one.
QString ColumnCaption(const QWidget& widget) {
  const Places places = PlacesOf(widget);
  const auto* grid = places.empty() ? nullptr : qobject_cast<const QGridLayout*>(places.front().first);
  if (grid == nullptr) return {};
  int row = 0, column = 0, rows = 0, columns = 0;
  const_cast<QGridLayout*>(grid)->getItemPosition(places.front().second, &row, &column, &rows, &columns);
  QLayoutItem* const top = row > 0 ? grid->itemAtPosition(0, column) : nullptr;
  const auto* label = top != nullptr ? qobject_cast<QLabel*>(top->widget()) : nullptr;
  return label != nullptr && label->buddy() == nullptr ? CaptionIn(top) : QString();
}

QString BuddyCaption(const QWidget& widget) {
  const auto labels = widget.window()->findChildren<QLabel*>();
  const auto found =
      std::find_if(labels.begin(), labels.end(), [&widget](const QLabel* label) { return label->buddy() == &widget; });
  return found != labels.end() ? Plain((*found)->text()) : QString();
}

/// The groups and pages that hold a widget, the innermost first, as their titles.
QStringList GroupsOf(const QWidget& widget) {
  QStringList titles;
  for (const QWidget* holder = widget.parentWidget(); holder != nullptr; holder = holder->parentWidget()) {
    if (const auto* group = qobject_cast<const QGroupBox*>(holder)) titles << Plain(group->title());
    const auto* stack = holder->parentWidget();
    const auto* tabs = stack != nullptr ? qobject_cast<const QTabWidget*>(stack->parentWidget()) : nullptr;
    if (tabs != nullptr && tabs->indexOf(holder) >= 0) titles << Plain(tabs->tabText(tabs->indexOf(holder)));
  }
  return titles;
}

/// One control on its way to a name.
struct Named {
  QWidget* widget = nullptr;
  QString name;
  QStringList contexts;               ///< to be added one by one
  std::vector<const QWidget*> pages;  ///< that hold it, the innermost first
};

std::vector<const QWidget*> PagesOf(const QWidget& widget) {
  std::vector<const QWidget*> pages;
  for (const QWidget* holder = &widget; holder != nullptr; holder = holder->parentWidget()) {
    const auto* stack = holder->parentWidget();
    const auto* tabs = stack != nullptr ? qobject_cast<const QTabWidget*>(stack->parentWidget()) : nullptr;
    if (tabs != nullptr && tabs->indexOf(holder) >= 0) pages.push_back(holder);
  }
  return pages;
}

/// Whether both can be seen at the same time: one's pages are among those of the other.
bool AreSeenTogether(const Named& one, const Named& other) {
  const auto& few = one.pages.size() < other.pages.size() ? one.pages : other.pages;
  const auto& many = one.pages.size() < other.pages.size() ? other.pages : one.pages;
  return std::equal(few.rbegin(), few.rend(), many.rbegin());
}

QString OwnCaption(const QWidget& widget, const QStringList& groups) {
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
    return button->text() == "..." ? RowCaption(widget) + "..." : Plain(button->text());
  }
  if (const QString buddy = BuddyCaption(widget); !buddy.isEmpty()) return buddy;
  const bool is_list = qobject_cast<const QAbstractItemView*>(&widget) != nullptr ||
                       qobject_cast<const QPlainTextEdit*>(&widget) != nullptr ||
                       qobject_cast<const QTabWidget*>(&widget) != nullptr;
  if (is_list) return groups.isEmpty() ? Plain(widget.window()->windowTitle()) : groups.front();
  return RowCaption(widget);
}

bool IsControl(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) return IsValue(*label);
  return qobject_cast<const QAbstractButton*>(&widget) != nullptr ||
         qobject_cast<const QLineEdit*>(&widget) != nullptr || qobject_cast<const QComboBox*>(&widget) != nullptr ||
         qobject_cast<const QProgressBar*>(&widget) != nullptr ||
         qobject_cast<const QAbstractItemView*>(&widget) != nullptr ||
         qobject_cast<const QPlainTextEdit*>(&widget) != nullptr || qobject_cast<const QTabWidget*>(&widget) != nullptr;
}

std::vector<Named> ControlsOf(QWidget& window) {
  std::vector<Named> controls;
  const auto widgets = window.findChildren<QWidget*>();
  for (QWidget* widget : widgets) {
    // Parts of other widgets have no name of their own.
    if (widget->objectName().isEmpty() || widget->objectName().startsWith("qt_")) continue;
    if (widget->window() != &window || !IsControl(*widget)) continue;
    if (!widget->property(kGivenName).isValid()) widget->setProperty(kGivenName, widget->accessibleName());
    Named named{widget, widget->property(kGivenName).toString(), {}, PagesOf(*widget)};
    const QStringList groups = GroupsOf(*widget);
    if (named.name.isEmpty()) named.name = OwnCaption(*widget, groups);
    if (named.name.isEmpty()) named.name = Plain(widget->toolTip());
    named.contexts << ColumnCaption(*widget) << RowCaption(*widget) << groups;
    controls.push_back(std::move(named));
  }
  return controls;
}

/// Adds the next context to each name that stands for two controls which are seen together; false when none does.
bool TellApart(std::vector<Named>& controls) {
  std::map<QString, std::vector<Named*>> by_name;
  for (Named& named : controls) by_name[named.name].push_back(&named);
  bool any = false;
  for (const auto& [name, same] : by_name) {
    for (Named* named : same) {
      const bool alone = std::none_of(same.begin(), same.end(), [named](const Named* other) {
        return other != named && AreSeenTogether(*named, *other);
      });
      if (alone) continue;
      while (!named->contexts.isEmpty()) {
        const QString context = named->contexts.takeFirst();
        if (context.isEmpty() || name.endsWith(context)) continue;
        named->name += ", " + context;
        any = true;
        break;
      }
    }
  }
  return any;
}

/// A label of a value, read with its caption.
class ValueLabel : public QAccessibleWidget {
 public:
  explicit ValueLabel(QLabel* label) : QAccessibleWidget(label, QAccessible::StaticText), label_(*label) {}
  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    const QString caption = label_.accessibleName();
    if (kind == QAccessible::Name) return label_.text().isEmpty() ? caption : caption + ": " + label_.text();
    const QString text = QAccessibleWidget::text(kind);
    return kind == QAccessible::Description && Plain(text) == caption ? QString() : text;
  }

 private:
  const QLabel& label_;
};

/// What is announced, as screen readers look out for it.
class Notification : public QAccessibleWidget {
 public:
  explicit Notification(QLabel* label) : QAccessibleWidget(label, QAccessible::Notification), label_(*label) {}
  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? label_.text() : QString();
  }

 private:
  const QLabel& label_;
};

QAccessibleInterface* MakeInterface(const QString& /*kind*/, QObject* object) {
  if (auto* announcer = dynamic_cast<Announcer*>(object)) return new Notification(announcer);
  auto* label = qobject_cast<QLabel*>(object);
  return label != nullptr && IsValue(*label) ? new ValueLabel(label) : nullptr;
}

}  // namespace

void NameControls(QWidget& window) {
  std::vector<Named> controls = ControlsOf(window);
  for (int round = 0; round < kMostContexts && TellApart(controls); ++round) continue;
  for (const Named& named : controls) {
    if (named.widget->accessibleName() != named.name) named.widget->setAccessibleName(named.name);
  }
}

void ReadValuesWithTheirCaptions() {
  static const bool kInstalled = [] {
    QAccessible::installFactory(MakeInterface);
    return true;
  }();
  static_cast<void>(kInstalled);
}

Announcer::Announcer(const Form& form, QWidget* parent) : QLabel(parent), form_(form) {
  setObjectName("announcer");
  setTextFormat(Qt::PlainText);
  setFixedSize(1, 1);
  hide();
}

void Announcer::Hear(const Control& control, Aspect aspect) {
  const bool idle = form_.Cmd_Close.enabled();
  if (&control == &form_.Cmd_Close && aspect == Aspect::Enabled) {
    next_unit_ = !idle;
    if (idle) Say(QString::fromStdString(form_.Lbl_Status.text()));
  }
  if (&control == &form_.Lst_Units && aspect == Aspect::Selection && !idle) next_unit_ = true;
  if (&control != &form_.Lbl_Status || aspect != Aspect::Value) return;
  const StatusKind kind = form_.Lbl_Status.status_kind();
  const bool begins = kind == StatusKind::Step && !idle && std::exchange(next_unit_, false);
  if (begins || kind == StatusKind::Error) Say(QString::fromStdString(form_.Lbl_Status.text()));
}

void Announcer::Say(const QString& text) {
  if (text.isEmpty()) return;
  if (text != this->text()) {
    setText(text);
  } else {
    // The same again has to be heard again.
    QAccessibleEvent name(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&name);
  }
  if (isHidden()) return show();
  QAccessibleEvent shown(this, QAccessible::ObjectShow);
  QAccessible::updateAccessibility(&shown);
}

}  // namespace corvane::window
