#include <QAction>
#include <QMenu>

#include "window/binding.h"

namespace corvane::window {
namespace {

/// One menu whose entries are made from the control; an entry that opens a submenu shows the menu of that name.
class MenuBinding : public Binding {
 public:
  MenuBinding(MenuGroup& menu, QWidget& widget, const BindingContext& context)
      : Binding(&widget), control_(menu), menu_(WidgetAs<QMenu>(widget)), context_(context) {}

  void Show(Aspect aspect, std::size_t row) override {
    if (aspect == Aspect::Rows) {
      menu_->clear();
      for (std::size_t i = 0; i < control_.entries().size(); ++i) AddEntry(i);
    }
    if (aspect == Aspect::Row) ShowEntry(row);
  }
  void ShowEnabled(bool enabled) override { menu_->menuAction()->setEnabled(enabled); }
  void ShowVisible(bool visible) override { menu_->menuAction()->setVisible(visible); }

 private:
  void AddEntry(std::size_t row) {
    const MenuGroup::Entry& entry = control_.entries()[row];
    if (entry.caption == "-") {
      menu_->addSeparator();
      return;
    }
    if (entry.submenu != nullptr) {
      menu_->addMenu(WindowMenu(entry.submenu->name()));
    } else {
      QAction* action = menu_->addAction(QString());
      QObject::connect(action, &QAction::triggered, menu_, [this, row] {
        context_.loop.Post([this, row] { control_.Click(static_cast<std::int64_t>(row)); });
      });
    }
    ShowEntry(row);
  }
  void ShowEntry(std::size_t row) {
    const MenuGroup::Entry& entry = control_.entries()[row];
    QAction* action = menu_->actions().value(static_cast<qsizetype>(row));
    if (action == nullptr || action->isSeparator()) return;
    action->setText(QString::fromStdString(entry.caption));
    action->setVisible(entry.visible);
    // A submenu follows its own control.
    if (entry.submenu == nullptr) action->setEnabled(entry.enabled);
  }
  [[nodiscard]] QMenu* WindowMenu(const std::string& name) const {
    auto* found = context_.window.findChild<QMenu*>(QString::fromStdString(name));
    if (found == nullptr) throw RunTimeError("There is no menu " + name);
    return found;
  }

  MenuGroup& control_;
  QMenu* menu_;
  const BindingContext& context_;
};

}  // namespace

std::unique_ptr<Binding> BindMenu(MenuGroup& menu, QWidget& widget, const BindingContext& context) {
  return std::make_unique<MenuBinding>(menu, widget, context);
}

}  // namespace corvane::window
