#pragma once

#include <functional>
#include <string>

#include <QWizard>

#include "window/assistant/desk.h"
#include "window/assistant/pages.h"
#include "window/assistant/sentences.h"

namespace corvane::window {

/// The assistant that sets a network up: the pages of a plan, which is put in at the end and not before.
///
/// The order of the pages, what is wrong on them and what is not done yet are the core's.
class Assistant : public QWizard {
 public:
  /// Both must outlive the assistant.
  Assistant(Application& app, EventLoop& loop, QWidget* parent);

  /// Shows what is there, or goes on with what was entered before a cancel; returns at once.
  void Open();
  /// Ends what is tried and takes the assistant away: the program ends.
  void Abandon();
  /// Shows the present texts: another language file was read.
  void ShowTexts();

  /// Shows the whole window in the language of a file; called from the loop.
  std::function<void(const std::string& file)> show_language;
  /// Starts a practice; empty, or why it could not be started.
  std::function<std::string()> practise;
  /// Gives the controls the names that people hear who do not see them.
  std::function<void(QWidget& window)> name_controls;
  /// The plan was put in.
  std::function<void()> put_in;

  void accept() override;
  /// Ends a try where one runs; else closes, and keeps what was entered for the next opening.
  void reject() override;
  [[nodiscard]] int nextId() const override;

 private:
  void AddPages();
  void TakePlan();
  void ChooseLanguages();
  void RunTry(const std::function<SetupAnswer()>& attempt, const std::function<void(const QString&)>& show);
  void SetTrying(bool trying);
  void ShowButtons();
  /// A page is shown: the focus, its name and its buttons.
  void BeginPage();
  void ShowTitle();
  void GoToSummary();
  /// The page after the present one that has to be mended first; the last one when all are fine.
  [[nodiscard]] int FirstFaulty() const;
  void PutIn();
  void Practise();

  Sentences say_;
  assistant::Desk desk_;
  SetupPlan there_;     ///< what was there when the assistant was opened
  bool kept_ = false;   ///< what was entered before a cancel
  bool skips_ = false;  ///< the next page is not the one that follows
  bool putting_in_ = false;
  assistant::LanguagePage* language_ = nullptr;
  assistant::SummaryPage* summary_ = nullptr;
};

}  // namespace corvane::window
