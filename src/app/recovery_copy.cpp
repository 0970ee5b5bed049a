#include "app/recovery_copy.h"

namespace corvane {
namespace {

constexpr std::int64_t kDelayMilliseconds = 2000;

/// A settings file's text without the line of a key.
std::string Without(std::string_view key, std::string text) {
  const std::string begin = "\n" + std::string(key) + "=";
  if (const std::size_t at = text.find(begin); at != std::string::npos) {
    text.erase(at, text.find('\n', at + begin.size()) - at);
  }
  return text;
}

}  // namespace

void RecoveryCopy::Begin() {
  if (p_.flags.recovery == Recovery::Ignore) return;
  kept_ = Present();
  entered_ = Without("LastDownload", kept_);
  timer_ = p_.loop.MakeTimer([this] { OnTimer(); });
  p_.form.on_any_change = [this](const Control& control, Aspect aspect) { OnChange(control, aspect); };
}

void RecoveryCopy::AfterRound() {
  if (timer_ != nullptr) Write();
}

void RecoveryCopy::End() {
  if (timer_ == nullptr) return;
  if (Without("LastDownload", Present()) == entered_) p_.store.KeepOffer();
  Stop();
}

void RecoveryCopy::Stop() {
  if (timer_ == nullptr) return;
  p_.form.on_any_change = nullptr;
  timer_ = nullptr;
}

void RecoveryCopy::OnChange(const Control& av_Control, Aspect av_Aspect) {
  const ControlKind kind = av_Control.kind();
  const bool is_field = kind == ControlKind::Text || kind == ControlKind::Check || kind == ControlKind::Options ||
                        kind == ControlKind::Selector || &av_Control == &p_.form.Lbl_BackupDestination;
  const bool is_registry =
      &av_Control == &p_.form.Lst_Units || &av_Control == &p_.form.Lst_Relays || &av_Control == &p_.form.Lst_Clients;
  const bool is_edit = is_field ? av_Aspect == Aspect::Value : is_registry && av_Aspect != Aspect::Selection;
  if (!is_edit || waits_) return;
  waits_ = true;
  timer_->Start(kDelayMilliseconds);
}

void RecoveryCopy::OnTimer() {
  timer_->Stop();
  waits_ = false;
  // An operation works on the records as they are; behind it the copy is written anyway.
  if (!p_.slot.Taken()) Write();
}

std::string RecoveryCopy::Present() {
  p_.settings.StoreValues();
  return Without("NextDownload", p_.store.Text());
}

void RecoveryCopy::Write() {
  std::string present = Present();
  if (present == kept_) return;
  const Status written = p_.store.WriteRecovery();
  if (!written.ok() && !failed_) p_.trace.LogWrite("Recovery copy not written: " + written.text());
  failed_ = !written.ok();
  if (written.ok()) kept_ = std::move(present);
}

}  // namespace corvane
