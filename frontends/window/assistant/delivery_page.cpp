#include <algorithm>
#include <cstddef>

#include <QCheckBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "window/assistant/pages.h"
#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window::assistant {

SchedulePage::SchedulePage(Desk& desk) : AssistantPage(SetupPage::Schedule, desk) {
  AddIntroduction("When the units are asked, and what happens when nobody looks.", kScheduleIntro);
  automatic_ = NewTick("Download &automatically", kAutomatic, "setupAutomatic");
  goes_on_ = NewTick("&Go on past units and files that fail", kGoesOn, "setupGoesOn");
  at_log_on_ = NewTick("Start the program at &log-on, minimised", kAtLogOn, "setupAtLogOn");
  auto* form = new QFormLayout;
  form->addRow(automatic_);
  interval_ = AddField(*form, "Every (&hours:minutes):", kInterval, "setupInterval", this);
  form->addRow(goes_on_);
  form->addRow(at_log_on_);
  log_size_ = AddField(*form, "Begin a new log file a&t (MB, 0 never):", kLogSize, "setupLogSize", this);
  LeadTo(SetupField::Interval, *interval_);
  LeadTo(SetupField::LogSize, *log_size_);
  BeginAt(*automatic_);
  rows().addLayout(form);
  rows().addWidget(
      NewNote("On a computer where nobody logs on, let the service collect instead: see the page "
              "Administration of the guide.",
              kService, "setupService"));
  rows().addStretch(1);
  connect(automatic_, &QCheckBox::toggled, interval_, &QWidget::setEnabled);
}

void SchedulePage::Show() {
  const SetupPlan& plan = desk().plan;
  automatic_->setChecked(plan.automatic);
  interval_->setText(QString::fromStdString(plan.interval));
  interval_->setEnabled(plan.automatic);
  at_log_on_->setChecked(plan.at_log_on);
  goes_on_->setChecked(plan.goes_on);
  log_size_->setText(QString::fromStdString(plan.log_size));
}

void SchedulePage::Take() {
  SetupPlan& plan = desk().plan;
  plan.automatic = automatic_->isChecked();
  plan.interval = interval_->text().trimmed().toStdString();
  plan.at_log_on = at_log_on_->isChecked();
  plan.goes_on = goes_on_->isChecked();
  plan.log_size = log_size_->text().trimmed().toStdString();
}

DeliveryPage::DeliveryPage(Desk& desk) : AssistantPage(SetupPage::Delivery, desk) {
  AddIntroduction(
      "Files can be sent to an FTP server and copied to a backup folder behind each round. Both may stay "
      "empty.",
      kDeliveryIntro);
  auto* form = new QFormLayout;
  const auto add = [this, form](const QString& text, int text_id, const char* name, std::string SetupPlan::*member,
                                SetupField field) {
    QLineEdit* const edit = AddField(*form, text, text_id, name, this);
    fields_.push_back({edit, member});
    LeadTo(field, *edit);
    return edit;
  };
  const auto tick = [this, form](const QString& text, int text_id, const char* name, bool SetupPlan::*member) {
    QCheckBox* const box = NewTick(text, text_id, name);
    form->addRow(box);
    ticks_.push_back({box, member});
    return box;
  };
  BeginAt(*add("&Server:", kServer, "setupServer", &SetupPlan::server, SetupField::Server));
  add("F&older on it:", kServerFolder, "setupServerFolder", &SetupPlan::server_folder, SetupField::Server);
  QLineEdit* const user = add("&User:", kUser, "setupUser", &SetupPlan::user, SetupField::User);
  QLineEdit* const password = add("Pass&word:", kPassword, "setupPassword", &SetupPlan::password, SetupField::User);
  password->setEchoMode(QLineEdit::Password);
  QCheckBox* const anonymous = tick("Log on anon&ymously", kAnonymous, "setupAnonymous", &SetupPlan::anonymous);
  for (QLineEdit* edit : {user, password}) connect(anonymous, &QCheckBox::toggled, edit, &QWidget::setDisabled);
  tick("&Encrypt the connection", kEncrypted, "setupEncrypted", &SetupPlan::encrypted);
  add("Ce&rtificate of its authority:", kCertificate, "setupCertificate", &SetupPlan::certificate,
      SetupField::Certificate);
  sends_all_ = NewTick("Send the files of &all units", kSendsAll, "setupSendsAll");
  form->addRow(sends_all_);
  tick("Cal&ibrated files, not the raw ones", kCalibrated, "setupCalibrated", &SetupPlan::sends_calibrated);
  rows().addLayout(form);
  AddTry(rows(), *NewPush("&Try the server", kTryServer, "setupTryServer"), "setupServerAnswer", &SetupTried::server,
         [this](const SetupPlan& plan) { return this->desk().app.setup().TryServer(plan); });
  QLineEdit* const folder = AddFolder({"Bac&kup folder:", kBackup, "setupBackup", kChooseBackup, "setupChooseBackup"},
                                      SetupField::BackupFolder);
  fields_.push_back({folder, &SetupPlan::backup_folder});
  AddTry(rows(), *NewPush("Try the fol&der", kTryBackup, "setupTryBackup"), "setupBackupAnswer", &SetupTried::backup,
         [this](const SetupPlan& plan) { return this->desk().app.setup().TryBackup(plan); });
  rows().addStretch(1);
}

void DeliveryPage::Show() {
  for (const Field& field : fields_) field.edit->setText(QString::fromStdString(desk().plan.*field.member));
  for (const Tick& tick : ticks_) tick.box->setChecked(desk().plan.*tick.member);
  ShowSent();
}

void DeliveryPage::ShowSent() {
  const auto& units = desk().plan.units;
  const auto sent = std::count_if(units.begin(), units.end(), [](const SetupUnit& unit) { return unit.sent; });
  const bool all = sent == static_cast<std::ptrdiff_t>(units.size());
  // With the first server all are meant.
  const bool none_yet = sent == 0 && desk().plan.server.empty();
  sends_all_->setCheckState(all || none_yet ? Qt::Checked : sent == 0 ? Qt::Unchecked : Qt::PartiallyChecked);
  sends_all_->setTristate(sends_all_->checkState() == Qt::PartiallyChecked);
}

void DeliveryPage::TakeSent() {
  if (desk().plan.server.empty() || sends_all_->checkState() == Qt::PartiallyChecked) return;
  for (SetupUnit& unit : desk().plan.units) unit.sent = sends_all_->isChecked();
}

void DeliveryPage::Take() {
  for (const Field& field : fields_) {
    // A password may begin or end with a blank.
    const bool is_password = field.member == &SetupPlan::password;
    desk().plan.*field.member = (is_password ? field.edit->text() : field.edit->text().trimmed()).toStdString();
  }
  for (const Tick& tick : ticks_) desk().plan.*tick.member = tick.box->isChecked();
  TakeSent();
}

}  // namespace corvane::window::assistant
