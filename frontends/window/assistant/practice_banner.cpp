#include "window/assistant/practice_banner.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProcess>
#include <QPushButton>

#include "window/assistant/texts.h"
#include "window/assistant/widgets.h"

namespace corvane::window {

PracticeBanner::PracticeBanner(QWidget* parent) : QFrame(parent) {
  using namespace assistant;
  setObjectName("practiceBanner");
  setFrameShape(StyledPanel);
  // The colours of what is selected stand out in every colour scheme.
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Highlight);
  QLabel* const text = NewNote("PRACTICE: the network is simulated and the readings are invented. Nothing of it stays.",
                               kPracticeText, "practiceText");
  text->setForegroundRole(QPalette::HighlightedText);
  QFont bold = text->font();
  bold.setBold(true);
  text->setFont(bold);
  QPushButton* const end = NewPush("&End the practice", kEndPractice, "endPractice");
  auto* row = new QHBoxLayout(this);
  row->addWidget(text, 1);
  row->addWidget(end);
  connect(end, &QPushButton::clicked, this, [this] {
    if (ended) ended();
  });
}

std::string StartPractice() {
  const QString program = QCoreApplication::applicationFilePath();
  return QProcess::startDetached(program, {"--practise"}) ? "" : program.toStdString() + " cannot be run";
}

}  // namespace corvane::window
