#include "window/tray.h"

#include <cstddef>
#include <utility>

#include <QAction>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QSystemTrayIcon>

#include "base/outside_text.h"
#include "history/status_texts.h"
#include "window/network/network_phrases.h"

namespace corvane::window {
namespace {

constexpr int kSize = 48;
constexpr int kBadge = 30;
constexpr std::int64_t kMostShown = 99;

std::int64_t SilentIn(const NetworkStatus& status) {
  const auto silent = static_cast<std::size_t>(UnitState::Silent);
  return silent < status.counts.size() ? status.counts[silent] : 0;
}

/// The icon with a number on it.
QIcon WithBadge(const QIcon& icon, std::int64_t number) {
  QPixmap picture = icon.pixmap(kSize, kSize);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRect badge(picture.width() - kBadge, picture.height() - kBadge, kBadge, kBadge);
  painter.setPen(QPen(Qt::white, 2));
  painter.setBrush(QColor(178, 24, 24));
  painter.drawEllipse(badge.adjusted(1, 1, -1, -1));
  QFont font = painter.font();
  font.setPixelSize(kBadge / 2);
  font.setBold(true);
  painter.setFont(font);
  painter.drawText(badge, Qt::AlignCenter, number > kMostShown ? "+" : QString::number(number));
  return {picture};
}

}  // namespace

QString TrayTip(const NetworkStatus& status, const std::string& headline, const Phrases& phrases) {
  const std::string silent = CountText(SilentIn(status), kNetworkSays.stations_silent, phrases);
  return QString::fromStdString(silent + "\n" + Printable(headline));
}

Tray::Tray(QIcon icon, QString title, QObject* parent)
    : QObject(parent), icon_(std::move(icon)), title_(std::move(title)) {}

Tray::~Tray() {
  SetOn(false);
}

void Tray::SetOn(bool on) {
  if (on == (tray_ != nullptr)) return;
  if (on) return Make();
  delete std::exchange(tray_, nullptr);
  menu_.reset();
}

void Tray::Make() {
  tray_ = new QSystemTrayIcon(this);
  // Desktops that tell of no click on an icon show its menu.
  menu_ = std::make_unique<QMenu>();
  connect(menu_->addAction(title_), &QAction::triggered, this, [this] {
    if (on_click) on_click();
  });
  tray_->setContextMenu(menu_.get());
  connect(tray_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
    if (reason != QSystemTrayIcon::Context && on_click) on_click();
  });
  Show();
  tray_->show();
}

void Tray::Take(const NetworkStatus& status, const std::string& headline) {
  tip_ = TrayTip(status, headline, phrases_);
  silent_ = SilentIn(status);
  Show();
}

void Tray::Show() {
  if (tray_ == nullptr) return;
  tray_->setIcon(silent_ > 0 ? WithBadge(icon_, silent_) : icon_);
  tray_->setToolTip(tip_.isEmpty() ? title_ : tip_);
}

}  // namespace corvane::window
