// The widgets that the pages of the assistant are made of; each text with its ID in language files.
#pragma once

#include <functional>

#include <QString>

class QBoxLayout;
class QCheckBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

namespace corvane::window::assistant {

/// Plain text that wraps and can be selected and copied; with ID 0 one that is set later.
[[nodiscard]] QLabel* NewNote(const QString& text, int text_id, const char* name);
/// The caption of a field, with its access key.
[[nodiscard]] QLabel* NewCaption(const QString& text, int text_id, QWidget& field);
[[nodiscard]] QLineEdit* NewField(const char* name, QWidget* parent);
[[nodiscard]] QCheckBox* NewTick(const QString& text, int text_id, const char* name);
[[nodiscard]] QPushButton* NewPush(const QString& text, int text_id, const char* name);
/// A field under its caption, as a row of a form.
QLineEdit* AddField(QFormLayout& form, const QString& text, int text_id, const char* name, QWidget* parent);
/// What a field for a folder is called, and the button behind it.
struct FolderTexts {
  QString caption;
  int caption_id;
  const char* name;
  int button_id;
  const char* button_name;
};
/// A field for a folder, with a button behind it that chooses one; the dialog stands over the button's window.
QLineEdit* AddFolderField(QFormLayout& form, const FolderTexts& texts, QWidget* parent, std::function<QString()> title);
/// Has a button choose a file that is there.
void ChooseFile(QPushButton& button, std::function<QString()> title, std::function<void(const QString& file)> take);

}  // namespace corvane::window::assistant
