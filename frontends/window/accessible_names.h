// What people hear who do not see the window: names of controls, values with their captions, announcements.
#pragma once

#include <QLabel>
#include <QString>
#include <QWidget>

#include "form/form.h"
#include "form/form_view.h"

class QTabWidget;

namespace corvane::window {

/// Names every control of the window by its visible caption, with its column, row, group or page where the caption
/// alone stands for several controls that can be seen at the same time.
///
/// To be called again when captions have changed. A name that was given before the first
/// call stands for the caption.
void NameControls(QWidget& window);

/// Has labels that show values read as "caption: value". To be called once, before the window is built.
void ReadValuesWithTheirCaptions();

/// Tells of the next unit, of problems and of the end of an operation; never of what is received.
class Announcer : public QLabel {
 public:
  /// `form` must outlive this object.
  Announcer(const Form& form, QWidget* parent);

  /// A control has changed.
  void Hear(const Control& control, Aspect aspect);
  /// Says `text`, where somebody listens.
  void Say(const QString& text);

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {}  // it is there to be heard

 private:
  const Form& form_;
  bool next_unit_ = false;  ///< the next step is about another unit
};

}  // namespace corvane::window
