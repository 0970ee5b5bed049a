#include "window/assistant/widgets.h"

#include <utility>

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "form/control.h"

namespace corvane::window::assistant {
namespace {

/// Opens a dialog over the button's window that chooses one thing that is there.
QFileDialog* OpenChooser(QPushButton& button, const QString& title, const QString& begin, QFileDialog::FileMode mode) {
  auto* dialog = new QFileDialog(button.window(), title, begin);
  dialog->setObjectName("qt_chooser");
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  dialog->setFileMode(mode);
  dialog->setOption(QFileDialog::ShowDirsOnly, mode == QFileDialog::Directory);
  dialog->open();
  return dialog;
}

}  // namespace

QLabel* NewNote(const QString& text, int text_id, const char* name) {
  auto* note = new QLabel(text);
  note->setObjectName(name);
  if (text_id != 0) note->setProperty("textId", text_id);
  // Names of units and answers from a line are text, whatever they hold.
  note->setTextFormat(Qt::PlainText);
  note->setWordWrap(true);
  note->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return note;
}

QLabel* NewCaption(const QString& text, int text_id, QWidget& field) {
  auto* caption = new QLabel(text);
  caption->setObjectName("caption" + QString::number(text_id));
  caption->setProperty("textId", text_id);
  caption->setBuddy(&field);
  return caption;
}

QLineEdit* NewField(const char* name, QWidget* parent) {
  auto* field = new QLineEdit(parent);
  field->setObjectName(name);
  field->setMaxLength(TextField::kLongestText);
  return field;
}

QCheckBox* NewTick(const QString& text, int text_id, const char* name) {
  auto* tick = new QCheckBox(text);
  tick->setObjectName(name);
  tick->setProperty("textId", text_id);
  return tick;
}

QPushButton* NewPush(const QString& text, int text_id, const char* name) {
  auto* button = new QPushButton(text);
  button->setObjectName(name);
  button->setProperty("textId", text_id);
  button->setAutoDefault(false);
  return button;
}

QLineEdit* AddField(QFormLayout& form, const QString& text, int text_id, const char* name, QWidget* parent) {
  QLineEdit* const field = NewField(name, parent);
  form.addRow(NewCaption(text, text_id, *field), field);
  return field;
}

QLineEdit* AddFolderField(QFormLayout& form, const FolderTexts& texts, QWidget* parent,
                          std::function<QString()> title) {
  QLineEdit* const field = NewField(texts.name, parent);
  QPushButton* const button = NewPush("&Choose...", texts.button_id, texts.button_name);
  auto* row = new QHBoxLayout;
  row->addWidget(field, 1);
  row->addWidget(button);
  form.addRow(NewCaption(texts.caption, texts.caption_id, *field), row);
  QObject::connect(button, &QPushButton::clicked, button, [field, button, title = std::move(title)] {
    const QFileDialog* dialog = OpenChooser(*button, title(), field->text(), QFileDialog::Directory);
    QObject::connect(dialog, &QFileDialog::fileSelected, field, [field](const QString& file) {
      field->setText(file);
      Q_EMIT field->textEdited(file);
    });
  });
  return field;
}

void ChooseFile(QPushButton& button, std::function<QString()> title, std::function<void(const QString& file)> take) {
  QObject::connect(&button, &QPushButton::clicked, &button,
                   [&button, title = std::move(title), take = std::move(take)] {
                     const QFileDialog* dialog = OpenChooser(button, title(), {}, QFileDialog::ExistingFile);
                     QObject::connect(dialog, &QFileDialog::fileSelected, &button, take);
                   });
}

}  // namespace corvane::window::assistant
