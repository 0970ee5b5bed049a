#pragma once

#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <QWizardPage>

#include "setup/setup_plan.h"
#include "window/assistant/desk.h"
#include "window/assistant/widgets.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace corvane::window::assistant {

class PageArea;

/// One page of the assistant: shows its part of the plan and takes it back, whichever way the page is left.
class AssistantPage : public QWizardPage {
 public:
  /// `desk` must outlive the page.
  AssistantPage(SetupPage page, Desk& desk);

  void initializePage() override;
  /// Back loses nothing.
  void cleanupPage() override { TakeAll(); }
  /// Stays on the page and goes to the first thing that is wrong.
  bool validatePage() override;

  /// Puts what is entered into the plan, as it is.
  void TakeAll();
  /// Shows the plan anew, and the texts of another language with it.
  virtual void Show() = 0;
  /// The focus begins where a person goes on.
  void FocusFirst();
  /// Says what is wrong and goes to the field.
  void ShowFault(const SetupFault& fault);

 protected:
  /// Puts what is entered into the plan.
  virtual void Take() = 0;
  /// Gives the focus to the field that a fault is about; nothing where the page has none.
  virtual void GoTo(const SetupFault& fault);
  /// Where the focus begins; null: where the wizard puts it.
  [[nodiscard]] virtual QWidget* First() { return begin_; }
  void BeginAt(QWidget& widget) { begin_ = &widget; }
  /// Scrolls soon to a part of the page, which has to live as long as the page.
  void Reveal(QWidget& part);
  /// Faults of the field lead to the widget, of several to the first one.
  void LeadTo(SetupField field, QWidget& widget) { leads_.emplace(field, &widget); }

  /// What the page holds, from top to bottom, below its introduction.
  [[nodiscard]] QVBoxLayout& rows() { return *rows_; }
  [[nodiscard]] Desk& desk() { return desk_; }
  [[nodiscard]] QString Say(int text_id) const { return desk_.say[text_id]; }
  void AddIntroduction(const QString& text, int text_id);
  /// A field for a folder, which is typed or chosen.
  QLineEdit* AddFolder(const FolderTexts& texts, SetupField field);
  /// A button that tries something, with its answer beside it; `attempt` gets the plan as it is entered then.
  void AddTry(QVBoxLayout& column, QPushButton& button, const char* answer_name,
              std::optional<SetupAnswer> SetupTried::*kept, std::function<SetupAnswer(const SetupPlan& plan)> attempt);

 private:
  void ShowAnswers();

  const SetupPage page_;
  Desk& desk_;
  PageArea* area_ = nullptr;
  QVBoxLayout* rows_ = nullptr;
  QWidget* begin_ = nullptr;
  std::map<SetupField, QWidget*> leads_;
  QLabel* fault_ = nullptr;
  std::vector<std::pair<QLabel*, std::optional<SetupAnswer> SetupTried::*>> answers_;
};

}  // namespace corvane::window::assistant
