// The pages of the assistant, in their order.
#pragma once

#include <functional>
#include <vector>

#include "setup/setup_reader.h"
#include "window/assistant/assistant_page.h"
#include "window/assistant/rows_table.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QTreeWidget;

namespace corvane::window::assistant {

class LanguagePage : public AssistantPage {
 public:
  explicit LanguagePage(Desk& desk);

  /// The language files to choose from.
  void SetLanguages(std::vector<SetupLanguage> languages) { languages_ = std::move(languages); }

  /// The person chose a language file, which the whole window shows from now on.
  std::function<void(const std::string& file)> language_chosen;
  /// The person wants to practise.
  std::function<void()> practice_wanted;

 protected:
  void Show() override;
  void Take() override;

 private:
  QComboBox* selector_ = nullptr;
  std::vector<SetupLanguage> languages_;
};

class PortPage : public AssistantPage {
 public:
  explicit PortPage(Desk& desk);

 protected:
  void Show() override;
  void Take() override;

 private:
  void FillDevices();
  /// What is known against the device in the field.
  void ShowProblem();

  QTreeWidget* devices_ = nullptr;
  QLineEdit* device_ = nullptr;
  QLabel* problem_ = nullptr;
};

class StationsPage : public AssistantPage {
 public:
  explicit StationsPage(Desk& desk);

 protected:
  void Show() override;
  void Take() override;
  void GoTo(const SetupFault& fault) override;
  QWidget* First() override;

 private:
  [[nodiscard]] QStringList RelayNames();

  /// A relay has another name: its units go with it.
  void FollowRelayNames();
  /// Takes the rows of a table of stations, or says what is wrong with it.
  void TakeFile(const QString& file);

  RowsTable* relays_ = nullptr;
  RowsTable* units_ = nullptr;
  RowsTable* last_ = nullptr;              ///< the table that was worked in last
  QLabel* from_file_ = nullptr;            ///< what came of a file
  std::vector<SetupRelay> former_relays_;  ///< as they were shown, by origin
  std::vector<SetupUnit> former_units_;
  QStringList relay_names_;
};

class FoldersPage : public AssistantPage {
 public:
  explicit FoldersPage(Desk& desk);

 protected:
  void Show() override;
  void Take() override;
  void GoTo(const SetupFault& fault) override;

 private:
  QLineEdit* folder_ = nullptr;
  RowsTable* clients_ = nullptr;
  std::vector<SetupClient> former_;  ///< as they were shown, by origin
};

class TablesPage : public AssistantPage {
 public:
  explicit TablesPage(Desk& desk);

 protected:
  void Show() override;
  void Take() override;

 private:
  void ShowFound();

  QLineEdit* folder_ = nullptr;
  QLabel* found_ = nullptr;
};

class ClockPage : public AssistantPage {
 public:
  explicit ClockPage(Desk& desk);

 protected:
  void Show() override;
  void Take() override {}
  QWidget* First() override;

 private:
  /// Place of the chosen unit in the plan, from 1.
  [[nodiscard]] std::size_t Chosen() const;
  [[nodiscard]] SetupAnswer Note(const SetupClock& clock);

  QComboBox* unit_ = nullptr;
  QPushButton* ask_ = nullptr;
  QPushButton* set_ = nullptr;
  QLabel* none_ = nullptr;
  bool is_off_ = false;
};

class SchedulePage : public AssistantPage {
 public:
  explicit SchedulePage(Desk& desk);

 protected:
  void Show() override;
  void Take() override;

 private:
  QCheckBox* automatic_ = nullptr;
  QLineEdit* interval_ = nullptr;
  QCheckBox* at_log_on_ = nullptr;
  QCheckBox* goes_on_ = nullptr;
  QLineEdit* log_size_ = nullptr;
};

class DeliveryPage : public AssistantPage {
 public:
  explicit DeliveryPage(Desk& desk);

 protected:
  void Show() override;
  void Take() override;

 private:
  /// The texts of this page, each with the member of the plan that it fills.
  struct Field {
    QLineEdit* edit;
    std::string SetupPlan::*member;
  };
  struct Tick {
    QCheckBox* box;
    bool SetupPlan::*member;
  };

  void ShowSent();
  void TakeSent();

  std::vector<Field> fields_;
  std::vector<Tick> ticks_;
  QCheckBox* sends_all_ = nullptr;  ///< half ticked: some are sent, some are not, and so it stays
};

class SummaryPage : public AssistantPage {
 public:
  explicit SummaryPage(Desk& desk);

  /// Whether a round is to follow.
  [[nodiscard]] bool Collects() const;
  /// Says why the plan could not be put in.
  void ShowNotPutIn(int text_id);

 protected:
  void Show() override;
  void Take() override {}

 private:
  QPlainTextEdit* summary_ = nullptr;
  QLabel* not_done_ = nullptr;
  QCheckBox* collect_ = nullptr;
};

}  // namespace corvane::window::assistant
