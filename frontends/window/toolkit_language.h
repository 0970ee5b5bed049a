#pragma once

#include <QString>
#include <QTranslator>

namespace corvane::window {

/// What the toolkit says by itself, as in its dialogs for files, in the language of the window where a translation of
/// the toolkit is installed; else in English.
class ToolkitLanguage {
 public:
  ToolkitLanguage() = default;
  ~ToolkitLanguage();
  ToolkitLanguage(const ToolkitLanguage&) = delete;
  ToolkitLanguage& operator=(const ToolkitLanguage&) = delete;

  /// `code` is that of a language, such as "de". What is shown already may stay as it is.
  void Show(const QString& code);

 private:
  QString code_;
  QTranslator texts_;
};

}  // namespace corvane::window
