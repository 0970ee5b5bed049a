#include "window/assistant/assistant.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <QAbstractButton>
#include <QCoreApplication>
#include <QLocale>
#include <QScreen>

#include "window/assistant/texts.h"

namespace corvane::window {
namespace {

using namespace assistant;

constexpr QSize kSize(780, 560);
constexpr int kFirstPageToSkipFrom = 2;  ///< no network without a port and stations

constexpr int kSummary = static_cast<int>(SetupPage::Summary);

/// Where language files may be: the application folder, and where they are installed with the program.
std::vector<std::string> LanguageFolders(const AppInfo& app) {
  const std::string program = QCoreApplication::applicationDirPath().toStdString();
  return {app.Folder(), program + "/../share/corvane", program};
}

/// The file among these that holds the desktop's language; empty when there is none.
std::string OfTheDesktop(const std::vector<SetupLanguage>& languages) {
  const QString code = QLocale::languageToCode(QLocale::system().language(), QLocale::ISO639Part3);
  const std::string name = "hv" + code.toStdString() + ".lng";
  const auto found = std::find_if(languages.begin(), languages.end(),
                                  [&name](const SetupLanguage& language) { return language.file.ends_with(name); });
  return found != languages.end() ? found->file : std::string();
}

}  // namespace

Assistant::Assistant(Application& app, EventLoop& loop, QWidget* parent)
    : QWizard(parent), say_(BuiltInSentences(), *this), desk_{app, loop, say_, {}, {}, false, {}} {
  setObjectName("Assistant");
  // Its pages have the colour of a window, on which fields are seen in a dark scheme too.
  setWizardStyle(ClassicStyle);
  setOption(NoBackButtonOnStartPage);
  setOption(HaveCustomButton1);
  desk_.run_try = [this](auto attempt, auto show) {
    if (desk_.trying) return;
    show(say_[kTrying]);
    desk_.loop.Post([this, attempt = std::move(attempt), show = std::move(show)] { RunTry(attempt, show); });
  };
  AddPages();
  button(CustomButton1)->setObjectName("qt_toSummary");
  button(CustomButton1)->setProperty("autoDefault", false);
  connect(this, &QWizard::customButtonClicked, this, [this] { GoToSummary(); });
  connect(this, &QWizard::currentIdChanged, this, [this] { BeginPage(); });
  resize(kSize.boundedTo(screen()->availableSize()));
}

void Assistant::AddPages() {
  language_ = new LanguagePage(desk_);
  summary_ = new SummaryPage(desk_);
  const auto make = [this](SetupPage page) -> AssistantPage* {
    switch (page) {
      case SetupPage::Language:
        return language_;
      case SetupPage::Port:
        return new PortPage(desk_);
      case SetupPage::Stations:
        return new StationsPage(desk_);
      case SetupPage::Folders:
        return new FoldersPage(desk_);
      case SetupPage::Tables:
        return new TablesPage(desk_);
      case SetupPage::Clock:
        return new ClockPage(desk_);
      case SetupPage::Schedule:
        return new SchedulePage(desk_);
      case SetupPage::Delivery:
        return new DeliveryPage(desk_);
      case SetupPage::Summary:
        return summary_;
    }
    return summary_;
  };
  for (const SetupPage page : kSetupPages) setPage(static_cast<int>(page), make(page));
  language_->language_chosen = [this](const std::string& file) {
    desk_.loop.Post([this, file] {
      if (show_language) show_language(file);
    });
  };
  language_->practice_wanted = [this] { desk_.loop.Post([this] { Practise(); }); };
}

void Assistant::Open() {
  if (isVisible()) return;
  TakePlan();
  ChooseLanguages();
  ShowTexts();
  restart();
  open();
}

void Assistant::TakePlan() {
  SetupPlan now = desk_.app.setup().PlanOf();
  // What was entered before a cancel belongs to the settings as they were then.
  if (kept_ && now == there_) return;
  desk_.tried = {};
  desk_.plan = there_ = std::move(now);
}

void Assistant::ChooseLanguages() {
  std::vector<SetupLanguage> languages = FindLanguages(LanguageFolders(desk_.app.app()));
  const std::string wanted = desk_.plan.first && !kept_ ? OfTheDesktop(languages) : std::string();
  language_->SetLanguages(std::move(languages));
  if (!wanted.empty()) desk_.plan.language_file = wanted;
  if (desk_.plan.language_file != there_.language_file && show_language) show_language(desk_.plan.language_file);
}

void Assistant::ShowTexts() {
  for (const auto& [which, text_id] : {std::pair(BackButton, kBack), std::pair(NextButton, kNext),
                                       std::pair(FinishButton, kFinish), std::pair(CustomButton1, kToSummary)}) {
    setButtonText(which, say_[text_id]);
  }
  setButtonText(CancelButton, say_[desk_.trying ? kStop : kCancel]);
  button(CustomButton1)->setToolTip(say_[kToSummaryTip]);
  for (const SetupPage id : kSetupPages) {
    page(static_cast<int>(id))->setTitle(say_[kFirstTitle + static_cast<int>(id)]);
  }
  ShowTitle();
  if (name_controls) name_controls(*this);
  if (isVisible()) currentPage()->initializePage();
}

void Assistant::BeginPage() {
  auto* const present = dynamic_cast<AssistantPage*>(currentPage());
  if (present == nullptr) return;
  ShowButtons();
  // What is typed next belongs to the page: it has the focus before anything else is handled.
  present->FocusFirst();
  ShowTitle();
}

void Assistant::ShowTitle() {
  if (currentPage() != nullptr) setWindowTitle(say_[kWindow] + ": " + currentPage()->title());
}

void Assistant::RunTry(const std::function<SetupAnswer()>& attempt, const std::function<void(const QString&)>& show) {
  if (desk_.trying || !isVisible()) return;
  if (desk_.app.slot().Taken()) return show(say_[kBusy]);
  SetTrying(true);
  const SetupAnswer answer = attempt();
  SetTrying(false);
  show(QString::fromStdString(answer.text));
}

void Assistant::SetTrying(bool trying) {
  desk_.trying = trying;
  setButtonText(CancelButton, say_[trying ? kStop : kCancel]);
  ShowButtons();
}

void Assistant::ShowButtons() {
  const int present = currentId();
  button(CustomButton1)->setVisible(present >= kFirstPageToSkipFrom && present < kSummary - 1);
  for (const WizardButton which : {BackButton, NextButton, FinishButton, CustomButton1}) {
    button(which)->setEnabled(!desk_.trying);
  }
}

int Assistant::nextId() const {
  return skips_ && currentId() < kSummary ? FirstFaulty() : QWizard::nextId();
}

int Assistant::FirstFaulty() const {
  int target = currentId() + 1;
  while (target < kSummary && desk_.app.setup().FaultsOf(desk_.plan, static_cast<SetupPage>(target)).empty()) ++target;
  return target;
}

void Assistant::GoToSummary() {
  skips_ = true;
  next();
  skips_ = false;
}

void Assistant::accept() {
  if (putting_in_ || desk_.trying) return;
  desk_.loop.Post([this] { PutIn(); });
}

void Assistant::PutIn() {
  if (putting_in_ || !isVisible()) return;
  if (desk_.app.slot().Taken()) return summary_->ShowNotPutIn(kBusy);
  putting_in_ = true;
  const bool saved = desk_.app.setup().PutIn(desk_.plan);
  putting_in_ = false;
  if (!saved) {
    there_ = desk_.app.setup().PlanOf();
    return summary_->ShowNotPutIn(kNotPutIn);
  }
  kept_ = false;
  QWizard::accept();
  if (put_in) put_in();
  if (summary_->Collects()) desk_.app.commands().DownloadAll(true, kRadioUnits, false);
}

void Assistant::Practise() {
  if (!practise) return;
  const std::string problem = practise();
  if (problem.empty()) return;
  language_->ShowFault({SetupPage::Language, SetupField::Page, 0,
                        say_[kPractiseFailed].arg(QString::fromStdString(problem)).toStdString()});
}

void Assistant::reject() {
  if (putting_in_) return;
  if (desk_.trying) {
    desk_.loop.Post([this] { desk_.app.commands().Cancel(); });
    return;
  }
  if (auto* const page = dynamic_cast<AssistantPage*>(currentPage())) page->TakeAll();
  kept_ = true;
  const bool other_language = desk_.plan.language_file != there_.language_file;
  QWizard::reject();
  if (!other_language) return;
  desk_.loop.Post([this] {
    if (show_language) show_language(there_.language_file);
  });
}

void Assistant::Abandon() {
  if (isVisible()) QWizard::reject();
}

}  // namespace corvane::window
