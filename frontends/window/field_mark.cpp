#include "window/field_mark.h"

#include <QAction>
#include <QEvent>
#include <QLineEdit>
#include <QStyle>

#include "window/binding.h"

namespace corvane::window {

FieldMark::FieldMark(const Control& field, QLineEdit& edit, QWidget& focus, const BindingContext& context)
    : field_(field), edit_(edit), focus_(focus), context_(context) {
  mark_ = edit_.addAction(edit_.style()->standardIcon(QStyle::SP_MessageBoxWarning), QLineEdit::TrailingPosition);
  mark_->setVisible(false);
  focus_.installEventFilter(this);
}

void FieldMark::Recheck() {
  const std::string problem = context_.problem_of(field_);
  if (problem == problem_) return;
  problem_ = problem;
  mark_->setVisible(!problem.empty());
  mark_->setToolTip(QString::fromStdString(problem));
  edit_.setAccessibleDescription(QString::fromStdString(problem));
  if (focus_.hasFocus()) context_.show_hint(problem);
}

bool FieldMark::eventFilter(QObject* /*watched*/, QEvent* event) {
  if (event->type() == QEvent::FocusIn) {
    Recheck();
    context_.show_hint(problem_);
  }
  if (event->type() == QEvent::FocusOut) context_.show_hint({});
  return false;
}

}  // namespace corvane::window
