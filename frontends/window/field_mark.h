#pragma once

#include <string>

#include <QObject>

#include "form/control.h"

class QAction;
class QLineEdit;

namespace corvane::window {

struct BindingContext;

/// A quiet mark behind a text that is none, and the sentence about it while the field has the focus.
class FieldMark : public QObject {
 public:
  /// `focus` is the widget that gets the focus: the edit itself, or the selector around it. All must outlive the mark.
  FieldMark(const Control& field, QLineEdit& edit, QWidget& focus, const BindingContext& context);

  /// Looks again whether the text is one that can be used.
  void Recheck();
  [[nodiscard]] bool shown() const { return !problem_.empty(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  const Control& field_;
  QLineEdit& edit_;
  QWidget& focus_;
  const BindingContext& context_;
  QAction* mark_ = nullptr;
  std::string problem_;
};

}  // namespace corvane::window
