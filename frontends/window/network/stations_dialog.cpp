#include "window/network/stations_dialog.h"

#include <utility>

#include <QCheckBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "base/files.h"
#include "base/outside_text.h"
#include "base/replacement_file.h"
#include "window/network/long_text_view.h"
#include "window/network/view_button.h"
#include "window/plot/background_work.h"

namespace corvane::window {
namespace {

enum TextId : int {
  kIntroduction = 881,
  kSave = 882,
  kRead = 883,
  kDelete = 884,
  kLines = 885,
  kPutIn = 886,
  kClose = 887,
  kTitle = 1660,
  kSaveAs,
  kReadFrom,
  kTables,
  kAllFiles,
  kChanges,
  kNothingRead,
  kReading,
  kNotRead,
  kSaved,
  kNotSaved,
  kNoChange,
  kOneChange,
  kManyChanges,
  kOneFault,
  kManyFaults,
  kOperationRuns,
  kListsChanged,
  kOneIsPutIn,
  kManyArePutIn,
};

std::vector<Sentences::Row> BuiltIn() {
  return {
      {kSaveAs, "Save the stations as"},
      {kReadFrom, "Read the stations from"},
      {kTables, "Tables"},
      {kAllFiles, "All files"},
      {kChanges, "Changes"},
      {kNothingRead, "No table is read yet."},
      {kReading, "Reading %1"},
      {kNotRead, "The table cannot be read: %1"},
      {kSaved, "Saved: %1"},
      {kNotSaved, "Not saved: %1"},
      {kNoChange, "no change"},
      {kOneChange, "%1 change"},
      {kManyChanges, "%1 changes"},
      {kOneFault, "%1 fault; nothing can be put in"},
      {kManyFaults, "%1 faults; nothing can be put in"},
      {kOperationRuns, "An operation runs; put the table in when it has ended."},
      {kListsChanged, "The lists have changed meanwhile."},
      {kOneIsPutIn, "%1 change is put in."},
      {kManyArePutIn, "%1 changes are put in."},
  };
}

constexpr int kWidth = 760;
constexpr int kHeight = 460;

/// Names in it are text, whatever they hold.
QString Line(const std::string& text) {
  return QString::fromStdString(Printable(text)) + "\n";
}

}  // namespace

StationsDialog::StationsDialog(Application& app, EventLoop& loop, QWidget* parent)
    : QDialog(parent), app_(app), loop_(loop), say_(BuiltIn(), *this), work_(new BackgroundWork(this)) {
  setObjectName("StationsDialog");
  setProperty("textId", kTitle);
  setWindowTitle("Stations");
  AddContents();
  Connect();
  resize(QSize(kWidth, kHeight).boundedTo(screen()->availableSize()));
  EnableCommands();
}

StationsDialog::~StationsDialog() {
  work_->failed = nullptr;
}

void StationsDialog::AddContents() {
  auto* column = new QVBoxLayout(this);
  auto* introduction = new QLabel(
      "Units, relays and clients as a table of a spreadsheet (CSV). What a table would change is shown here before "
      "anything happens.",
      this);
  introduction->setObjectName("stationsIntroduction");
  introduction->setProperty("textId", kIntroduction);
  introduction->setWordWrap(true);
  column->addWidget(introduction);
  save_ = NewButton("&Save as a table...",
                    "Saves all units, relays and clients as a file for a spreadsheet; passwords are not in it", kSave,
                    "saveStations", this);
  read_ =
      NewButton("&Read from a table...", "Reads a file that a spreadsheet has saved, and shows what it would change",
                kRead, "readStations", this);
  auto* row = new QHBoxLayout;
  row->addWidget(save_);
  row->addWidget(read_);
  row->addStretch();
  column->addLayout(row);
  delete_ = new QCheckBox("&Delete what the table has no row of", this);
  delete_->setObjectName("deleteStations");
  delete_->setToolTip("Only of the kinds that the table has any row of; raw files stay");
  delete_->setProperty("textId", kDelete);
  column->addWidget(delete_);
  state_ = new QLabel(this);
  state_->setObjectName("stationsState");
  state_->setTextFormat(Qt::PlainText);
  state_->setWordWrap(true);
  state_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  column->addWidget(state_);
  lines_ = new LongTextView(this);
  lines_->setObjectName("stationsChanges");
  lines_->setToolTip("What the table would change, or what is wrong with it; the text can be selected and copied");
  lines_->setProperty("textId", kLines);
  column->addWidget(lines_, 1);
  put_in_ = NewButton("&Put in", "Makes these changes; they are saved as everything is", kPutIn, "putInStations", this);
  close_ =
      NewButton("&Close", "Closes this window; what was not put in changes nothing", kClose, "closeStations", this);
  auto* below = new QHBoxLayout;
  below->addStretch();
  below->addWidget(put_in_);
  below->addWidget(close_);
  column->addLayout(below);
}

void StationsDialog::Connect() {
  connect(save_, &QPushButton::clicked, this, [this] { AskForFile(true); });
  connect(read_, &QPushButton::clicked, this, [this] { AskForFile(false); });
  connect(delete_, &QCheckBox::toggled, this, [this] { WorkOut(); });
  connect(put_in_, &QPushButton::clicked, this, [this] { loop_.Post([this] { PutIn(); }); });
  connect(close_, &QPushButton::clicked, this, &QDialog::reject);
  work_->failed = [this](const QString& why) { Say(why); };
}

void StationsDialog::ShowEmpty() {
  table_.reset();
  question_.reset();
  plan_ = {};
  delete_->setChecked(false);
  lines_->setAccessibleName(say_[kChanges]);
  Say(say_[kNothingRead]);
  EnableCommands();
  read_->setFocus();
  open();
}

void StationsDialog::SetBusy(bool busy) {
  busy_ = busy;
  EnableCommands();
}

void StationsDialog::AskForFile(bool save) {
  auto* dialog =
      new QFileDialog(this, say_[save ? kSaveAs : kReadFrom], QString::fromStdString(app_.names().DataFolder()));
  dialog->setObjectName("stationsFile");
  dialog->setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  dialog->setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  dialog->setNameFilters({say_[kTables] + " (*.csv *.txt)", say_[kAllFiles] + " (*)"});
  if (save) {
    dialog->setDefaultSuffix("csv");
    dialog->selectFile("stations.csv");
  }
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QFileDialog::fileSelected, this, [this, save](const QString& file) {
    if (save) SaveTo(file);
    if (!save) ReadFrom(file);
  });
  dialog->open();
}

void StationsDialog::ReadFrom(const QString& file) {
  Say(say_[kReading].arg(file));
  table_.reset();
  EnableCommands();
  work_->Add([this, file, phrases = app_.setup().phrases()](const BackgroundWork::Cancelled&) -> std::function<void()> {
    std::string bytes;
    const Status read = ReadFile(file.toStdString(), bytes, kLargestStationsFile);
    if (!read.ok()) return [this, read] { Say(say_[kNotRead].arg(QString::fromStdString(read.text()))); };
    auto table = std::make_shared<const StationTable>(ReadStations(std::move(bytes), phrases));
    return [this, file, table] {
      file_ = file;
      table_ = table;
      WorkOut();
    };
  });
}

void StationsDialog::SaveTo(const QString& file) {
  loop_.Post([this, file] {
    if (app_.flags().closing) return;
    work_->Add([this, file,
                question = app_.commands().AskStations()](const BackgroundWork::Cancelled&) -> std::function<void()> {
      const Status saved = WriteFileAtomically(file.toStdString(), question.File());
      return [this, file, saved] {
        Say(saved.ok() ? say_[kSaved].arg(file) : say_[kNotSaved].arg(QString::fromStdString(saved.text())),
            lines_->text());
      };
    });
  });
}

void StationsDialog::WorkOut(const QString& said) {
  plan_ = {};
  EnableCommands();
  loop_.Post([this, said] {
    if (!table_ || app_.flags().closing) return;
    StationsQuestion question = app_.commands().AskStations();
    question.phrases = app_.setup().phrases();
    question_ = std::make_shared<const StationsQuestion>(std::move(question));
    work_->Add([this, said, question = question_, table = table_,
                deletes = delete_->isChecked()](const BackgroundWork::Cancelled&) -> std::function<void()> {
      auto plan = std::make_shared<StationsPlan>(question->Answer(*table, deletes));
      return [this, said, plan, question] {
        // Another was asked since.
        if (question != question_) return;
        plan_ = std::move(*plan);
        ShowPlan(said);
      };
    });
  });
}

void StationsDialog::ShowPlan(const QString& said) {
  QString lines;
  for (const StationFault& fault : plan_.faults) lines += Line(fault.Sentence(app_.setup().phrases()));
  if (plan_.faults.empty()) {
    for (const std::string& change : plan_.changes) lines += Line(change);
  }
  for (const std::string& note : plan_.notes) lines += Line("(" + note + ")");
  QString state = plan_.changes.empty() ? say_[kNoChange] : Counted(plan_.changes.size(), kOneChange, kManyChanges);
  if (!plan_.faults.empty()) state = Counted(plan_.faults.size(), kOneFault, kManyFaults);
  Say(said + file_ + ": " + state, lines);
  EnableCommands();
}

void StationsDialog::PutIn() {
  if (!table_ || !put_in_->isEnabled()) return;
  const QString put_in = Counted(plan_.changes.size(), kOneIsPutIn, kManyArePutIn);
  const bool done = app_.commands().PutInStations(*question_, plan_);
  if (!done && app_.slot().Taken()) return Say(say_[kOperationRuns], lines_->text());
  if (!done) return WorkOut(say_[kListsChanged] + " ");
  table_.reset();
  Say(put_in, lines_->text());
  EnableCommands();
  close_->setFocus();
  if (on_put_in) on_put_in();
}

QString StationsDialog::Counted(std::size_t count, int one, int many) const {
  return say_[count == 1 ? one : many].arg(static_cast<qulonglong>(count));
}

void StationsDialog::Say(const QString& text, const QString& lines) {
  state_->setText(text);
  lines_->Show(lines);
}

void StationsDialog::EnableCommands() {
  delete_->setEnabled(table_ != nullptr);
  put_in_->setEnabled(table_ != nullptr && !busy_ && plan_.faults.empty() && !plan_.changes.empty());
}

}  // namespace corvane::window
