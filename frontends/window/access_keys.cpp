#include "window/access_keys.h"

#include <set>

#include <QAbstractButton>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QTabWidget>

namespace corvane::window {
namespace {

constexpr const char* kMoved = "captionBeforeItsKeyMoved";

using Keys = std::set<QChar>;

/// The letter behind the mark, in lower case; null when there is none.
QChar KeyOf(const QString& caption) {
  const qsizetype mark = caption.indexOf('&');
  return mark < 0 ? QChar() : (mark + 1 < caption.size() ? caption.at(mark + 1) : QChar()).toLower();
}

/// Takes the button's key, or another one of its caption where that is taken already.
void TakeKey(QAbstractButton& button, Keys& taken) {
  const QString caption = button.text();
  const QChar wanted = KeyOf(caption);
  if (wanted.isNull() || taken.insert(wanted).second) return;
  QString plain = caption;
  plain.remove('&');
  for (qsizetype i = 0; i < plain.size(); ++i) {
    if (!plain[i].isLetterOrNumber() || !taken.insert(plain[i].toLower()).second) continue;
    button.setText(plain.left(i) + "&" + plain.mid(i));
    button.setProperty(kMoved, caption);
    return;
  }
}

}  // namespace

void SpreadAccessKeys(const QMenuBar& menus, const QTabWidget& pages, QWidget& window) {
  Keys everywhere;
  const auto titles = menus.actions();
  for (const QAction* menu : titles) everywhere.insert(KeyOf(menu->text()));
  const auto buttons = window.findChildren<QAbstractButton*>();
  for (QAbstractButton* button : buttons) {
    // Dialogs have keys of their own.
    const bool is_there = button->window() == &window && button->isVisibleTo(&window);
    if (is_there && !pages.isAncestorOf(button)) TakeKey(*button, everywhere);
  }
  for (int page = 0; page < pages.count(); ++page) {
    Keys here = everywhere;
    const auto on_page = pages.widget(page)->findChildren<QAbstractButton*>();
    for (QAbstractButton* button : on_page) TakeKey(*button, here);
  }
}

QString CaptionOf(const QAbstractButton& button) {
  const QVariant moved = button.property(kMoved);
  const bool as_moved = moved.isValid() && moved.toString().remove('&') == QString(button.text()).remove('&');
  return as_moved ? moved.toString() : button.text();
}

}  // namespace corvane::window
