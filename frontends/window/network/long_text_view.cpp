#include "window/network/long_text_view.h"

#include <algorithm>

#include <QElapsedTimer>
#include <QTextCursor>

namespace corvane::window {
namespace {

constexpr qsizetype kPiece = 8'000;  ///< letters; more than the first picture shows
constexpr int kMostMilliseconds = 8;

}  // namespace

LongTextView::LongTextView(QWidget* parent) : QPlainTextEdit(parent) {
  setReadOnly(true);
  setUndoRedoEnabled(false);
  setTabChangesFocus(true);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  connect(&more_, &QTimer::timeout, this, [this] { PutMore(); });
}

void LongTextView::Show(const QString& text) {
  if (text == text_) return;
  text_ = text;
  put_ = 0;
  clear();
  more_.start(0);
  PutMore();
}

void LongTextView::PutMore() {
  QElapsedTimer timer;
  timer.start();
  QTextCursor end(document());
  end.movePosition(QTextCursor::End);
  while (put_ < text_.size() && timer.elapsed() < kMostMilliseconds) {
    const qsizetype line_end = text_.indexOf('\n', std::min(put_ + kPiece, text_.size() - 1));
    const qsizetype until = line_end < 0 ? text_.size() : line_end + 1;
    end.insertText(text_.mid(put_, until - put_));
    put_ = until;
  }
  if (put_ == text_.size()) more_.stop();
}

}  // namespace corvane::window
