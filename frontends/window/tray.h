#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <QIcon>
#include <QObject>
#include <QString>

#include "history/network_status.h"
#include "lang/phrases.h"

class QMenu;
class QSystemTrayIcon;

namespace corvane::window {

/// What the icon says when the pointer rests on it: how many stations are silent, and how the network stands.
[[nodiscard]] QString TrayTip(const NetworkStatus& status, const std::string& headline, const Phrases& phrases = {});

/// An icon in the tray of the desktop that draws attention without a box. Where the desktop has no tray nothing
/// happens.
class Tray : public QObject {
 public:
  /// `icon` is the program's own, `title` what its one menu entry says.
  Tray(QIcon icon, QString title, QObject* parent);
  ~Tray() override;

  void SetOn(bool on);
  void SetPhrases(const Phrases& phrases) { phrases_ = phrases; }
  /// Shows how the network stands; `headline` says so in one sentence.
  void Take(const NetworkStatus& status, const std::string& headline);

  /// The person clicks on the icon; set by the window.
  std::function<void()> on_click;

 private:
  void Make();
  void Show();

  QIcon icon_;
  QString title_;
  Phrases phrases_;
  std::unique_ptr<QMenu> menu_;
  QSystemTrayIcon* tray_ = nullptr;  ///< none while it is switched off
  QString tip_;
  std::int64_t silent_ = 0;
};

}  // namespace corvane::window
