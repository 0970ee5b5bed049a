#include "window/network/network_page.h"

#include <QTabWidget>
#include <QVBoxLayout>

namespace corvane::window {
namespace {

constexpr int kViewsTextId = 782;  ///< and those that follow it

}  // namespace

NetworkPage::NetworkPage(Application& app, EventLoop& loop) : app_(app), loop_(loop), views_(new QTabWidget(this)) {
  setObjectName("tabNetwork");
  auto* column = new QVBoxLayout(this);
  views_->setObjectName("networkViews");
  views_->setProperty("textId", kViewsTextId);
  views_->setDocumentMode(true);
  column->addWidget(views_);
  AddView(*new QWidget, "Stations");
}

void NetworkPage::AddView(QWidget& view, const QString& caption) {
  views_->addTab(&view, caption);
}

}  // namespace corvane::window
