#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include <QWidget>

#include "history/round_texts.h"
#include "lang/phrases.h"

class QLabel;
class QPushButton;

namespace corvane::window {

class LongTextView;

/// One round in sentences that stay, and the way back to earlier ones.
class RoundsView : public QWidget {
 public:
  explicit RoundsView(QWidget* parent = nullptr);

  /// Shows everything in these words from then on.
  void SetPhrases(const Phrases& phrases);
  /// A round has ended: it is shown where the last one was.
  void RoundEnded();
  /// The round that `read_round` was asked for; none: there is none of that key or before.
  void Show(const std::optional<RoundTexts>& texts);

  /// Has the last round whose key is at most `key` read and shown; set by the page.
  std::function<void(std::int64_t key)> read_round;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void Ask(std::int64_t key);
  void GoBack();
  void GoOn();
  void GoToLast();
  void EnableButtons();

  QPushButton* earlier_;
  QPushButton* later_;
  QPushButton* last_;
  QLabel* head_;
  LongTextView* text_;
  std::vector<std::int64_t> later_keys_;  ///< of the rounds that were paged back from, the last one first
  std::int64_t key_ = 0;                  ///< of the round that is shown, 0 none
  std::int64_t asked_ = 0;                ///< the key that was asked for
  Phrases phrases_;
  bool first_ = false;  ///< there is no earlier one
  bool stale_ = true;   ///< a round has ended since the last one was read
};

}  // namespace corvane::window
