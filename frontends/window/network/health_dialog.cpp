#include "window/network/health_dialog.h"

#include <string>
#include <vector>

#include <QApplication>
#include <QClipboard>
#include <QFont>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTextCursor>
#include <QVBoxLayout>

#include "base/outside_text.h"
#include "window/network/history_reader.h"
#include "window/network/long_text_view.h"
#include "window/network/network_phrases.h"
#include "window/network/view_button.h"

namespace corvane::window {
namespace {

enum TextId : int { kTitle = 1881, kText = 1882, kCopy = 1883, kClose = 1884 };

constexpr int kWidth = 720;
constexpr int kHeight = 480;

/// A heading, and below it what it is about.
std::string Part(const std::string& heading, const std::vector<std::string>& lines) {
  if (lines.empty()) return "";
  std::string text = heading + "\n";
  // Names, notes and errors in it are text, whatever they hold.
  for (const std::string& line : lines) text += "    " + Printable(line) + "\n";
  return text + "\n";
}

std::vector<std::string> LinesOf(const std::vector<HealthLine>& health) {
  std::vector<std::string> lines;
  for (const HealthLine& line : health) lines.push_back(line.about + ": " + line.text);
  return lines;
}

QString TextOf(const UnitHealth& health, const Phrases& phrases) {
  std::vector<std::string> things = LinesOf(health.take_along);
  if (things.empty()) things.push_back(phrases.Text(kNetworkSays.nothing_special));
  std::vector<std::string> contacts;
  for (const ContactRecord& contact : health.contacts) contacts.push_back(ContactText(contact, phrases));
  return QString::fromStdString(Part(phrases.Text(kNetworkSays.take_along), things) +
                                Part(phrases.Text(kNetworkSays.what_is_known), LinesOf(health.lines)) +
                                Part(phrases.Text(kNetworkSays.last_contacts), contacts))
             .trimmed() +
         "\n";
}

}  // namespace

HealthDialog::HealthDialog(HistoryReader& reader, QWidget* parent) : QDialog(parent), reader_(reader) {
  setObjectName("HealthDialog");
  setProperty("textId", kTitle);
  setWindowTitle("Before driving out");
  auto* column = new QVBoxLayout(this);
  head_ = new QLabel(this);
  head_->setObjectName("healthHead");
  head_->setTextFormat(Qt::PlainText);
  head_->setWordWrap(true);
  QFont bold = head_->font();
  bold.setBold(true);
  head_->setFont(bold);
  column->addWidget(head_);
  text_ = new LongTextView(this);
  text_->setObjectName("healthText");
  text_->setToolTip("What is known of the unit; the text can be selected and copied");
  text_->setProperty("textId", kText);
  column->addWidget(text_, 1);
  said_ = new QLabel(this);
  said_->setObjectName("healthSaid");
  said_->setTextFormat(Qt::PlainText);
  said_->setWordWrap(true);
  auto* copy = NewButton("&Copy", "Copies the whole text", kCopy, "copyHealth", this);
  auto* close = NewButton("C&lose", "Closes this window", kClose, "closeHealth", this);
  auto* below = new QHBoxLayout;
  below->addWidget(said_, 1);
  below->addWidget(copy);
  below->addWidget(close);
  column->addLayout(below);
  connect(copy, &QPushButton::clicked, this, [this] { Copy(); });
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  resize(QSize(kWidth, kHeight).boundedTo(screen()->availableSize()));
}

void HealthDialog::ShowUnit(const UnitStatus& unit, const Neighbours& neighbours, Moment now) {
  key_ = unit.key;
  std::string head = unit.name + " (" + std::to_string(unit.id) + ")";
  for (const std::string& more : {unit.client, unit.file}) head += more.empty() ? "" : ", " + more;
  head_->setText(QString::fromStdString(Printable(head)));
  text_->setAccessibleName(head_->text());
  text_->Show({});
  said_->clear();
  open();
  text_->setFocus();
  const HealthQuestion question{unit, neighbours, now, phrases_};
  reader_.Read<QString>(
      HealthQuery(now, key_),
      [question](const HistoryContents& read) { return TextOf(HealthOf(question, read), question.phrases); },
      [this, key = key_](const Status& read, const QString& text) {
        // Another was asked for since.
        if (key != key_) return;
        if (read.ok()) return ShowText(text);
        said_->setText(QString::fromStdString(phrases_.Text(kNetworkSays.cannot_tell, {read.text()})));
      });
}

void HealthDialog::ShowText(const QString& text) {
  text_->Show(text);
  text_->moveCursor(QTextCursor::Start);
}

void HealthDialog::Copy() {
  QApplication::clipboard()->setText(head_->text() + "\n\n" + text_->text());
  said_->setText(QString::fromStdString(phrases_.Text(kNetworkSays.copied)));
}

}  // namespace corvane::window
