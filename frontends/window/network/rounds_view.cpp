#include "window/network/rounds_view.h"

#include <array>
#include <limits>
#include <string>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "window/network/long_text_view.h"
#include "window/network/network_phrases.h"
#include "window/network/view_button.h"

namespace corvane::window {
namespace {

// IDs of the texts in language files.
constexpr int kEarlierText = 812;
constexpr int kLaterText = 813;
constexpr int kLastText = 814;
constexpr int kSentencesText = 815;

constexpr std::int64_t kLastRound = std::numeric_limits<std::int64_t>::max();

/// By `RoundSign`.
constexpr std::array kHeadings = {kNetworkSays.with_a_problem, kNetworkSays.not_asked, kNetworkSays.well};

/// The sentences, under a heading for each sign.
QString TextOf(const RoundTexts& texts, const Phrases& phrases) {
  std::string text;
  std::optional<RoundSign> under;
  for (const RoundLine& line : texts.lines) {
    if (line.sign != under) {
      text += (under ? "\n" : "") + phrases.Text(kHeadings[static_cast<std::size_t>(line.sign)]) + "\n";
      under = line.sign;
    }
    text += "    " + line.name + ": " + line.text + "\n";
  }
  return QString::fromStdString(text.empty() ? phrases.Text(kNetworkSays.nobody_in_it) : text);
}

}  // namespace

RoundsView::RoundsView(QWidget* parent)
    : QWidget(parent),
      earlier_(NewButton("&Earlier", "Shows the round before this one", kEarlierText, "roundsEarlier", this)),
      later_(NewButton("&Later", "Shows the round behind this one", kLaterText, "roundsLater", this)),
      last_(NewButton("Last &round", "Shows the round that ended last", kLastText, "roundsLast", this)),
      head_(new QLabel(this)),
      text_(new LongTextView(this)) {
  setObjectName("rounds");
  auto* column = new QVBoxLayout(this);
  auto* row = new QHBoxLayout;
  column->addLayout(row);
  head_->setObjectName("roundsHead");
  head_->setWordWrap(true);
  head_->setTextFormat(Qt::PlainText);
  head_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  row->addWidget(head_, 1);
  for (QPushButton* button : {earlier_, later_, last_}) row->addWidget(button);
  text_->setObjectName("roundsText");
  text_->setToolTip("What became of each unit in this round; the text can be selected and copied");
  text_->setProperty("textId", kSentencesText);
  column->addWidget(text_, 1);
  connect(earlier_, &QPushButton::clicked, this, [this] { GoBack(); });
  connect(later_, &QPushButton::clicked, this, [this] { GoOn(); });
  connect(last_, &QPushButton::clicked, this, [this] { GoToLast(); });
  Show(std::nullopt);
}

void RoundsView::SetPhrases(const Phrases& phrases) {
  phrases_ = phrases;
  if (key_ == 0) return Show(std::nullopt);
  Ask(key_);
}

void RoundsView::RoundEnded() {
  stale_ = true;
  // Who reads an earlier one goes on reading it.
  if (later_keys_.empty() && isVisible()) GoToLast();
  EnableButtons();
}

void RoundsView::showEvent(QShowEvent* event) {
  if (stale_ && later_keys_.empty()) GoToLast();
  QWidget::showEvent(event);
}

void RoundsView::Ask(std::int64_t key) {
  asked_ = key;
  if (read_round) read_round(key);
}

void RoundsView::GoBack() {
  if (key_ == 0 || first_) return;
  later_keys_.push_back(key_);
  Ask(key_ - 1);
}

void RoundsView::GoOn() {
  if (later_keys_.empty()) return GoToLast();
  const std::int64_t key = later_keys_.back();
  later_keys_.pop_back();
  Ask(key);
}

void RoundsView::GoToLast() {
  later_keys_.clear();
  stale_ = false;
  Ask(kLastRound);
}

void RoundsView::Show(const std::optional<RoundTexts>& texts) {
  if (!texts) {
    first_ = asked_ > 0;
    if (key_ == 0) head_->setText(QString::fromStdString(phrases_.Text(kNetworkSays.no_round)));
    // The round before was none.
    if (key_ != 0 && !later_keys_.empty() && later_keys_.back() == key_) later_keys_.pop_back();
    return EnableButtons();
  }
  first_ = texts->round.key <= 1;
  key_ = texts->round.key;
  head_->setText(QString::fromStdString(texts->head) + ".");
  text_->Show(TextOf(*texts, phrases_));
  EnableButtons();
}

void RoundsView::EnableButtons() {
  earlier_->setEnabled(key_ != 0 && !first_);
  later_->setEnabled(!later_keys_.empty());
  last_->setEnabled(!later_keys_.empty() || stale_);
}

}  // namespace corvane::window
