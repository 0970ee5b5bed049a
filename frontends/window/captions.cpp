#include "window/captions.h"

#include <algorithm>
#include <map>
#include <utility>

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>
#include <QTableWidget>
#include <QTreeView>

#include "app/setup_commands.h"
#include "data/series_phrases.h"
#include "history/history_phrases.h"
#include "lang/date_words.h"
#include "lang/language.h"
#include "setup/setup_phrases.h"
#include "window/access_keys.h"
#include "window/network/network_phrases.h"
#include "window/plot/plot_phrases.h"

namespace corvane::window {
namespace {

constexpr const char* kPageNumber = "pageNumber";
constexpr const char* kCaptionedEntries = "captionedEntries";
constexpr const char* kTitleLine = "Corvane captions: ID~original~text~tool tip";

/// A text as it can stand in one field of one line.
std::string FieldText(const QString& text) {
  QString field = text;
  field.replace('~', '-').replace('\n', ' ');
  return field.toStdString();
}

/// Where the tab of that number stands.
int PlaceOf(const QTabWidget& tabs, int number) {
  for (int place = 0; place < tabs.count(); ++place) {
    if (const QVariant page = tabs.widget(place)->property(kPageNumber); page.isValid() && page.toInt() == number) {
      return place;
    }
  }
  return number;
}

}  // namespace

void Captions::NumberPages(QTabWidget& tabs) {
  for (int tab = 0; tab < tabs.count(); ++tab) tabs.widget(tab)->setProperty(kPageNumber, tab);
}

std::int64_t Captions::CaptionCount() const {
  return static_cast<std::int64_t>(Items().size());
}

CaptionedWindow::Caption Captions::CaptionAt(std::int64_t position) const {
  const Item& item = Items()[static_cast<std::size_t>(position)];
  return {item.text_id, item.tabs};
}

void Captions::SetCaption(std::int64_t position, int tab, const std::string& text) {
  const Item& item = Items()[static_cast<std::size_t>(position)];
  if (item.set_caption) item.set_caption(tab, QString::fromStdString(text));
}

void Captions::SetToolTip(std::int64_t position, const std::string& text) {
  Items()[static_cast<std::size_t>(position)].set_tool_tip(QString::fromStdString(text));
}

std::vector<Phrase> Captions::PhraseList() const {
  std::vector<Phrase> all = HistoryPhrases();
  for (const auto& more : {PhrasesIn(kNetworkSays),
                           DatePhrases(),
                           PhrasesIn(kSeriesSays),
                           PhrasesIn(kPlotSays),
                           SetupPhrases(),
                           SetupCommandPhrases(),
                           {kLanguageCode}}) {
    all.insert(all.end(), more.begin(), more.end());
  }
  return all;
}

void Captions::SetPhrases(const Phrases& phrases) {
  if (on_phrases) on_phrases(phrases);
}

const std::vector<Captions::Item>& Captions::Items() const {
  if (!items_.empty()) return items_;
  const auto widgets = window_.findChildren<QWidget*>();
  for (QWidget* widget : widgets) AddWidget(*widget);
  for (Control* control : form_.controls()) {
    if (control->kind() == ControlKind::Menu) AddMenuEntries(dynamic_cast<MenuGroup&>(*control));
  }
  RememberBuiltIn();
  return items_;
}

void Captions::RememberBuiltIn() const {
  for (Item& item : items_) {
    for (int tab = 0; item.caption && tab < std::max(1, item.tabs); ++tab) item.built_in.push_back(item.caption(tab));
    item.built_in_tip = item.tool_tip();
  }
}

void Captions::RestoreBuiltIn() {
  for (const Item& item : Items()) {
    for (int tab = 0; tab < static_cast<int>(item.built_in.size()); ++tab) {
      item.set_caption(tab, item.built_in[static_cast<std::size_t>(tab)]);
    }
    item.set_tool_tip(item.built_in_tip);
  }
  SetPhrases(Phrases());
}

void Captions::AddWidget(QWidget& widget) const {
  const int text_id = widget.property("textId").toInt();
  if (text_id == 0) return;
  Item item;
  item.text_id = text_id;
  item.tool_tip = [&widget] { return widget.toolTip(); };
  item.set_tool_tip = [&widget](const QString& text) { widget.setToolTip(text); };
  if (auto* tabs = qobject_cast<QTabWidget*>(&widget)) {
    item.tabs = tabs->count();
    item.caption = [tabs](int tab) { return tabs->tabText(PlaceOf(*tabs, tab)); };
    item.set_caption = [tabs](int tab, const QString& text) { tabs->setTabText(PlaceOf(*tabs, tab), text); };
  } else if (auto* selector = qobject_cast<QComboBox*>(&widget);
             selector != nullptr && selector->property(kCaptionedEntries).toBool()) {
    item.tabs = selector->count();
    item.caption = [selector](int entry) { return selector->itemText(entry); };
    item.set_caption = [selector](int entry, const QString& text) { selector->setItemText(entry, text); };
  } else if (auto* table = qobject_cast<QTreeView*>(&widget)) {
    item.tabs = table->model()->columnCount();
    item.caption = [table](int tab) { return table->model()->headerData(tab, Qt::Horizontal).toString(); };
    item.set_caption = [table](int tab, const QString& text) {
      table->model()->setHeaderData(tab, Qt::Horizontal, text);
    };
  } else if (auto* cells = qobject_cast<QTableWidget*>(&widget)) {
    item.tabs = cells->columnCount();
    item.caption = [cells](int tab) { return cells->horizontalHeaderItem(tab)->text(); };
    item.set_caption = [cells](int tab, const QString& text) { cells->horizontalHeaderItem(tab)->setText(text); };
  } else if (auto* button = dynamic_cast<Button*>(form_.Find(widget.objectName().toStdString()))) {
    item.caption = [button](int) { return QString::fromStdString(button->caption()); };
    item.set_caption = [button](int, const QString& text) { button->SetCaption(text.toStdString()); };
  } else if (auto* plain_button = qobject_cast<QAbstractButton*>(&widget)) {
    item.caption = [plain_button](int) { return CaptionOf(*plain_button); };
    item.set_caption = [plain_button](int, const QString& text) { plain_button->setText(text); };
  } else if (auto* group = qobject_cast<QGroupBox*>(&widget)) {
    item.caption = [group](int) { return group->title(); };
    item.set_caption = [group](int, const QString& text) { group->setTitle(text); };
  } else if (auto* menu = qobject_cast<QMenu*>(&widget)) {
    item.caption = [menu](int) { return menu->title(); };
    item.set_caption = [menu](int, const QString& text) { menu->setTitle(text); };
  } else if (auto* label = qobject_cast<QLabel*>(&widget);
             label != nullptr && form_.Find(label->objectName().toStdString()) == nullptr) {
    item.caption = [label](int) { return label->text(); };
    item.set_caption = [label](int, const QString& text) { label->setText(text); };
  } else if (widget.isWindow() && &widget != &window_) {
    item.caption = [&widget](int) { return widget.windowTitle(); };
    item.set_caption = [&widget](int, const QString& text) { widget.setWindowTitle(text); };
  }
  items_.push_back(std::move(item));
}

QMenu* Captions::MenuOf(const MenuGroup& menu) const {
  return window_.findChild<QMenu*>(QString::fromStdString(menu.name()));
}

QAction* Captions::ActionOf(const MenuGroup& menu, std::size_t row) const {
  return MenuOf(menu)->actions().value(static_cast<qsizetype>(row));
}

void Captions::AddMenuEntries(MenuGroup& menu) const {
  for (std::size_t row = 0; row < menu.entries().size(); ++row) {
    const MenuGroup::Entry& entry = menu.entries()[row];
    if (entry.text_id == 0 || !entry.visible) continue;
    Item item;
    item.text_id = entry.text_id;
    item.caption = [&menu, row](int) { return QString::fromStdString(menu.entries()[row].caption); };
    item.set_caption = [&menu, row](int, const QString& text) {
      menu.SetEntryCaption(static_cast<std::int64_t>(row), text.toStdString());
    };
    // An action without a tool tip of its own shows its text as one.
    item.tool_tip = [] { return QString(); };
    item.set_tool_tip = [this, &menu, row](const QString& text) {
      ActionOf(menu, row)->setToolTip(text);
      MenuOf(menu)->setToolTipsVisible(true);
    };
    items_.push_back(std::move(item));
  }
}

std::string Captions::LanguageTemplate() const {
  std::map<std::int32_t, std::string> lines;
  for (const Item& item : Items()) {
    for (int tab = 0; tab < std::max(1, item.tabs); ++tab) {
      const std::string caption = item.caption ? FieldText(item.caption(tab)) : std::string();
      const std::int32_t text_id = item.text_id + tab;
      lines[text_id] = std::to_string(text_id) + "~" + caption + "~" + caption + "~" +
                       (tab == 0 ? FieldText(item.tool_tip()) : std::string());
    }
  }
  for (const auto& [text_id, english] : PhraseList()) {
    const std::string text = FieldText(QString::fromUtf8(english.data(), static_cast<qsizetype>(english.size())));
    lines[text_id] = std::to_string(text_id) + "~" + text + "~" + text + "~";
  }
  std::string file = kTitleLine;
  file += "\n";
  for (const auto& [text_id, line] : lines) file += line + "\n";
  return file;
}

}  // namespace corvane::window
