#include "window/plot/time_field.h"

#include <algorithm>

#include <QFontMetrics>
#include <QKeyEvent>

#include "base/format.h"
#include "lang/date_words.h"
#include "window/plot/plot_axes.h"
#include "window/plot/plot_phrases.h"

namespace corvane::window {

namespace {

/// The day as it was written: "31 Feb 2026" is none of March's days.
int DayIn(const QString& date) {
  const QString word = date.section(' ', 0, 0);
  return word.mid(std::max(word.lastIndexOf('-'), word.lastIndexOf('/')) + 1).toInt();
}

}  // namespace

TimeField::TimeField(const char* name) {
  setObjectName(name);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setText(Shown());
  connect(this, &QLineEdit::returnPressed, this, [this] {
    Take();
    selectAll();
  });
}

QSize TimeField::sizeHint() const {
  const QFontMetrics metrics = fontMetrics();
  QSize size = QLineEdit::sizeHint();
  // The toolkit gives a field room for 17 letters.
  size.rwidth() += metrics.horizontalAdvance("30 Mmm 0000 00:00 ") - 17 * metrics.horizontalAdvance('x');
  return size;
}

void TimeField::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  SetSeconds(seconds_);
}

void TimeField::SetSeconds(double seconds) {
  // Who types goes on with it, whatever new readings come meanwhile.
  const bool typing = isModified() && hasFocus();
  seconds_ = seconds;
  if (!typing) setText(Shown());
}

QString TimeField::Shown() const {
  // Before there are readings there is no time to show.
  return seconds_ == 0 ? "-" : TimeText(seconds_, phrases_);
}

bool TimeField::Take() {
  const QString typed = text().trimmed();
  if (typed == Shown()) return true;
  const auto date = ParseDate(WithEnglishMonths(typed.toStdString(), phrases_));
  if (!date || date->ToCivil().day != DayIn(typed)) {
    const auto example = static_cast<double>(DateTime::FromCivil(2026, 9, 5, 6).seconds());
    const std::string why =
        phrases_.Text(kPlotSays.no_date, {typed.toStdString(), TimeText(example, phrases_).toStdString()});
    if (refused) refused(QString::fromStdString(why));
    return false;
  }
  Choose(static_cast<double>(date->seconds()));
  return true;
}

void TimeField::Choose(double seconds) {
  seconds_ = seconds;
  setText(Shown());
  if (chosen) chosen();
}

void TimeField::keyPressEvent(QKeyEvent* event) {
  const bool up = event->key() == Qt::Key_Up;
  if (!up && event->key() != Qt::Key_Down) return QLineEdit::keyPressEvent(event);
  if (seconds_ == 0 || !Take()) return;
  Choose(seconds_ + static_cast<double>((up ? 1 : -1) * kSecondsPerDay));
  selectAll();
}

void TimeField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // A menu of the field's own, or another window, is no leaving.
  if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason) return;
  if (!Take()) setText(Shown());
}

}  // namespace corvane::window
