#pragma once

#include <QLineEdit>

class QListView;

namespace corvane::window {

/// A field that leaves out the rows of a list which do not hold its text; the current row always stays, as commands act
/// on it.
class ListFilter : public QLineEdit {
 public:
  /// The list has its model by the time that something is typed; it must outlive this object.
  explicit ListFilter(QListView& list);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void Follow();
  void Apply(int first, int last);
  void ApplyTo(int first, int last);  ///< where some row may be left out
  void ApplyToAll();

  QListView& list_;
  bool follows_ = false;  ///< the list's model
  bool hides_ = false;    ///< some row may be left out
};

}  // namespace corvane::window
