#include "ui/progress_bar.h"

#include <cmath>

#include "base/numbers.h"

namespace corvane {

void CProgressBar::SetBar(ProgressBar& av_Bar) {
  bar_ = &av_Bar;
  bar_->SetRange(0, 100);
}

std::int64_t CProgressBar::Maximum() const {
  return std::llround(bar_->maximum() / scale_);
}

void CProgressBar::Initialise(std::int64_t al_Max) {
  scale_ = al_Max == 0 ? 1 : 100.0 / static_cast<double>(al_Max);
  skipping_ = do_skip_ && scale_ < 1;
  step_ = skipping_ ? al_Max / 30 : 1;
  bar_->SetVisible(true);
  bar_->SetValue(0);
  UpdateTitle();
}

void CProgressBar::SetValue(std::int64_t al_Value) {
  if (skipping_ && al_Value % step_ != 0) return;
  bar_->SetValue(static_cast<double>(al_Value) * scale_);
  UpdateTitle();
}

std::int64_t CProgressBar::Value() const {
  return std::llround(bar_->value() / scale_);
}

void CProgressBar::SetReverseValue(std::int64_t al_Value) {
  const auto value = static_cast<double>(al_Value);
  if (bar_->maximum() < value) scale_ = bar_->maximum() / value;
  bar_->SetValue(bar_->maximum() - value * scale_);
  UpdateTitle();
}

void CProgressBar::Clear() {
  do_skip_ = false;
  process_.clear();
  bar_->SetValue(0);
  UpdateTitle();
}

void CProgressBar::UpdateTitle() const {
  if (parent_ == nullptr || !parent_->minimised()) return;
  if (bar_->value() == 0) {
    parent_->SetTitle(process_);
  } else if (bar_->maximum() > 0) {
    parent_->SetTitle(FixedText(bar_->value() / bar_->maximum() * 100, 0) + "%-" + process_);
  }
}

}  // namespace corvane
