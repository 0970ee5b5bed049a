#pragma once

#include <QString>

class QAbstractButton;
class QMenuBar;
class QTabWidget;
class QWidget;

namespace corvane::window {

/// Makes every access key of the window's buttons work: one that a menu or another button of the same page has already
/// moves to the next free letter of its caption. Captions keep their text; to be called when they are complete.
void SpreadAccessKeys(const QMenuBar& menus, const QTabWidget& pages, QWidget& window);

/// The caption of a button as it was given, whatever letter bears its access key by now.
[[nodiscard]] QString CaptionOf(const QAbstractButton& button);

}  // namespace corvane::window
