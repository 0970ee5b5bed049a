#pragma once

#include <QString>

class QPushButton;
class QWidget;

namespace corvane::window {

/// A button of a view, with its tool tip, the ID of its texts in language files, and its name.
[[nodiscard]] QPushButton* NewButton(const QString& text, const QString& tip, int text_id, const char* name,
                                     QWidget* parent);

}  // namespace corvane::window
