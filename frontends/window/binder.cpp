#include "window/binder.h"

#include <utility>

namespace corvane::window {
namespace {

constexpr std::int64_t kRepaintMilliseconds = 20;
constexpr int kRecheckMilliseconds = 250;
constexpr int kProblemMilliseconds = 2000;

QWidget& WidgetOf(const Control& control, QWidget& window) {
  const QString name = QString::fromStdString(control.name());
  if (window.objectName() == name) return window;
  auto* widget = window.findChild<QWidget*>(name);
  if (widget == nullptr) throw RunTimeError("The window has no " + control.name());
  return *widget;
}

}  // namespace

Binder::Binder(Form& form, BindingContext context) : context_(std::move(context)) {
  recheck_timer_.setSingleShot(true);
  recheck_timer_.setInterval(kRecheckMilliseconds);
  QObject::connect(&recheck_timer_, &QTimer::timeout, &recheck_timer_, [this] {
    for (const auto& [control, binding] : bindings_) binding->Recheck();
  });
  // What is wrong may be put right elsewhere: a table that was missing is copied to its place.
  QObject::connect(&problem_timer_, &QTimer::timeout, &problem_timer_, [this] {
    if (!context_.window.isActiveWindow()) return;
    for (const auto& [control, binding] : bindings_) {
      if (binding->HasProblem()) binding->Recheck();
    }
  });
  problem_timer_.start(kProblemMilliseconds);
  context_.recheck_soon = [this] { recheck_timer_.start(); };
  for (Control* control : form.controls()) {
    bindings_.emplace(control, MakeBinding(*control, WidgetOf(*control, context_.window), context_));
  }
}

void Binder::ControlChanged(const Control& control, Aspect aspect, std::size_t row) {
  // What is noted beside rows is looked up anew when they are shown.
  if (on_change) on_change(control, aspect);
  Binding& binding = *bindings_.at(&control);
  if (aspect == Aspect::Enabled) return binding.ShowEnabled(control.enabled());
  if (aspect == Aspect::Visible) return binding.ShowVisible(control.visible());
  binding.Show(aspect, row);
}

void Binder::RepaintNow(const Control& control) {
  const std::int64_t now = context_.loop.MonotonicMilliseconds();
  if (now - last_repaint_ < kRepaintMilliseconds) return;
  last_repaint_ = now;
  bindings_.at(&control)->widget()->repaint();
}

}  // namespace corvane::window
