#include "qt/qt_dialogs.h"

#include <utility>

#include <QFileDialog>
#include <QInputDialog>

namespace corvane {
namespace {

/// "description|pattern" pairs as the toolkit writes them; its patterns stand in parentheses behind the description.
QStringList ToolkitFilters(const std::string& filter) {
  const QStringList parts = QString::fromStdString(filter).split('|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    const QString description = parts[i].section('(', 0, 0).trimmed();
    // A pattern of all files would leave out those without a dot.
    filters << description + " (" + (parts[i + 1].startsWith("*.*") ? QString("*") : parts[i + 1]) + ")";
  }
  return filters;
}

}  // namespace

QtDialogs::~QtDialogs() {
  on_box_closed = nullptr;
  CloseAll();
}

Dialogs::BoxId QtDialogs::OpenBox(const BoxContents& contents, std::function<void(int)> on_click) {
  const BoxId id = ++last_box_;
  auto* box = new MessageBox(parent_, contents, [this, id, click = std::move(on_click)](int position) {
    boxes_.erase(id);
    click(position);
  });
  boxes_[id] = box;
  QObject::connect(box, &QDialog::finished, box, [this] { Closed(); });
  box->setAttribute(Qt::WA_DeleteOnClose);
  Show(*box);
  return id;
}

void QtDialogs::SetCountDown(BoxId box, const std::string& text) {
  const auto found = boxes_.find(box);
  if (found != boxes_.end() && found->second) found->second->SetCountDown(QString::fromStdString(text));
}

void QtDialogs::CloseBox(BoxId box) {
  const auto found = boxes_.find(box);
  if (found == boxes_.end()) return;
  const QPointer<MessageBox> dialog = found->second;
  boxes_.erase(found);
  if (!dialog) return;
  // Its click is not called any more.
  dialog->blockSignals(true);
  dialog->close();
  shown_.erase(dialog);
  Closed();
}

void QtDialogs::Show(QDialog& dialog) {
  shown_[&dialog] = &dialog;
  QObject::connect(&dialog, &QDialog::finished, &dialog, [this, shown = &dialog] { shown_.erase(shown); });
  dialog.setWindowModality(Qt::ApplicationModal);
  dialog.show();
}

void QtDialogs::Closed() {
  if (parent_ != nullptr && on_box_closed) on_box_closed();
}

void QtDialogs::CloseAll() {
  ending_ = true;
  const auto shown = shown_;
  for (const auto& [key, dialog] : shown) {
    if (dialog) dialog->reject();
  }
}

bool QtDialogs::Run(QDialog& dialog) {
  if (ending_) return false;
  Show(dialog);
  while (shown_.contains(&dialog)) loop_.Yield();
  return dialog.result() == QDialog::Accepted;
}

std::optional<std::string> QtDialogs::AskText(const std::string& title, const std::string& prompt,
                                              const std::string& initial) {
  QInputDialog dialog(parent_);
  dialog.setWindowTitle(QString::fromStdString(title));
  dialog.setLabelText(QString::fromStdString(prompt));
  dialog.setTextValue(QString::fromStdString(initial));
  if (!Run(dialog)) return std::nullopt;
  return dialog.textValue().toStdString();
}

std::optional<std::string> QtDialogs::ChooseFile(const std::string& title, const std::string& filter,
                                                 const std::string& folder) {
  QFileDialog dialog(parent_, QString::fromStdString(title), QString::fromStdString(folder));
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setNameFilters(ToolkitFilters(filter));
  if (!Run(dialog)) return std::nullopt;
  return dialog.selectedFiles().value(0).toStdString();
}

std::optional<std::string> QtDialogs::ChooseFolder(const std::string& title, const std::string& folder) {
  QFileDialog dialog(parent_, QString::fromStdString(title), QString::fromStdString(folder));
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  if (!Run(dialog)) return std::nullopt;
  return dialog.selectedFiles().value(0).toStdString();
}

}  // namespace corvane
