#pragma once

#include <functional>
#include <memory>
#include <string>

#include <QDialog>

#include "app/application.h"
#include "setup/stations_question.h"
#include "window/assistant/sentences.h"

class QCheckBox;
class QFileDialog;
class QLabel;
class QPushButton;

namespace corvane::window {

class BackgroundWork;
class LongTextView;

/// Units, relays and clients as a table: saves them, and shows what a table would change before anything happens.
///
/// Files are read and written on a thread; what goes into the lists goes there from the loop.
class StationsDialog : public QDialog {
 public:
  /// Both must outlive the dialog.
  StationsDialog(Application& app, EventLoop& loop, QWidget* parent);
  ~StationsDialog() override;

  /// Opens the dialog with nothing read; returns at once.
  void ShowEmpty();
  /// While an operation runs nothing is put in.
  void SetBusy(bool busy);
  /// Reads a table, and shows soon what it would change.
  void ReadFrom(const QString& file);
  /// Saves the lists, soon.
  void SaveTo(const QString& file);

  /// The lists have changed.
  std::function<void()> on_put_in;

 private:
  void AddContents();
  void Connect();
  void AskForFile(bool save);
  /// Works out what the table comes to and shows it, with `said` before it.
  void WorkOut(const QString& said = {});
  void ShowPlan(const QString& said);
  void PutIn();
  void Say(const QString& text, const QString& lines = {});
  void EnableCommands();

  /// How many changes or faults there are, in words.
  [[nodiscard]] QString Counted(std::size_t count, int one, int many) const;

  Application& app_;
  EventLoop& loop_;
  Sentences say_;
  QPushButton* save_ = nullptr;
  QPushButton* read_ = nullptr;
  QCheckBox* delete_ = nullptr;
  QLabel* state_ = nullptr;
  LongTextView* lines_ = nullptr;
  QPushButton* put_in_ = nullptr;
  QPushButton* close_ = nullptr;
  QString file_;                               ///< that was read
  std::shared_ptr<const StationTable> table_;  ///< what it held; none when nothing was read or all is put in
  std::shared_ptr<const StationsQuestion> question_;
  StationsPlan plan_;  ///< its answer
  bool busy_ = false;
  BackgroundWork* work_ = nullptr;
};

}  // namespace corvane::window
