#include "window/toolkit_language.h"

#include <algorithm>

#include <QCoreApplication>
#include <QLibraryInfo>

namespace corvane::window {

ToolkitLanguage::~ToolkitLanguage() {
  QCoreApplication::removeTranslator(&texts_);
}

void ToolkitLanguage::Show(const QString& code) {
  if (code == code_) return;
  code_ = code;
  QCoreApplication::removeTranslator(&texts_);
  // It comes from a file that anybody may write, and becomes a part of a file's name.
  const bool is_code = std::all_of(code.begin(), code.end(), [](QChar c) { return c.isLetter() || c == '_'; });
  if (is_code && texts_.load("qtbase_" + code, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(&texts_);
  }
}

}  // namespace corvane::window
