#include "qt/message_box.h"

#include <array>
#include <utility>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace corvane {
namespace {

constexpr int kIconSize = 48;
constexpr int kLongestTextWidth = 560;  ///< pixels, before a text is broken into lines

QStyle::StandardPixmap PictureOf(BoxIcon icon) {
  switch (icon) {
    case BoxIcon::Stop:
      return QStyle::SP_MessageBoxCritical;
    case BoxIcon::Question:
      return QStyle::SP_MessageBoxQuestion;
    case BoxIcon::Exclamation:
      return QStyle::SP_MessageBoxWarning;
    default:
      return QStyle::SP_MessageBoxInformation;
  }
}

}  // namespace

MessageBox::MessageBox(QWidget* parent, const BoxContents& contents, std::function<void(int position)> on_done)
    : QDialog(parent),
      closes_in_(new QLabel("closes in", this)),
      count_down_(new QLabel(this)),
      seconds_(new QLabel("s", this)) {
  setObjectName("frm_MsgBox");
  count_down_->setObjectName("Lbl_Timeout");
  setWindowTitle(QString::fromStdString(contents.title));
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(MakeTextRow(contents));
  rows->addWidget(MakeButtonRow(contents));
  rows->setSizeConstraint(QLayout::SetFixedSize);
  SetCountDown(QString::fromStdString(contents.count_down));
  connect(this, &QDialog::finished, this, [done = std::move(on_done)](int position) { done(position); });
}

QWidget* MessageBox::MakeTextRow(const BoxContents& contents) {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  if (contents.icon != BoxIcon::None) {
    auto* icon = new QLabel(row);
    icon->setObjectName("Image_Icon");
    icon->setPixmap(style()->standardIcon(PictureOf(contents.icon), nullptr, this).pixmap(kIconSize));
    layout->addWidget(icon, 0, Qt::AlignTop);
  }
  auto* text = new QLabel(QString::fromStdString(contents.text).replace("\r\n", "\n"), row);
  text->setObjectName("Lbl_Message");
  text->setTextFormat(Qt::PlainText);
  text->setTextInteractionFlags(Qt::TextSelectableByMouse);
  if (text->sizeHint().width() > kLongestTextWidth) {
    text->setWordWrap(true);
    text->setFixedWidth(kLongestTextWidth);
  }
  layout->addWidget(text, 1);
  return row;
}

QWidget* MessageBox::MakeButtonRow(const BoxContents& contents) {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  for (QLabel* label : {closes_in_, count_down_, seconds_}) layout->addWidget(label);
  layout->addStretch(1);
  int position = 0;
  for (const std::string& caption : contents.buttons) {
    // No two captions of a box begin with the same letter.
    auto* button = new QPushButton("&" + QString::fromStdString(caption), row);
    button->setObjectName(QString("Cmd_Command_%1").arg(++position));
    connect(button, &QPushButton::clicked, this, [this, position] { done(position); });
    if (position == contents.default_position) {
      button->setDefault(true);
      button->setFocus();
    }
    layout->addWidget(button);
  }
  return row;
}

void MessageBox::SetCountDown(const QString& text) {
  count_down_->setText(text);
  for (QLabel* label : {closes_in_, count_down_, seconds_}) {
    label->setVisible(!text.isEmpty());
    label->setToolTip("Seconds until this box answers itself");
  }
}

}  // namespace corvane
