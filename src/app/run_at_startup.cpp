#include "app/run_at_startup.h"

#include <string>

namespace corvane {

bool RunAtStartup::LookAtEntry() {
  return seen_ = IsRunAtStartup();
}

std::optional<bool> RunAtStartup::ChangeElsewhere() {
  const bool before = seen_;
  return LookAtEntry() == before ? std::nullopt : std::optional(seen_);
}

void RunAtStartup::SetRunAtStartup(bool ab_Enable, std::string_view as_Arguments) {
  Status done;
  if (ab_Enable) {
    const std::string blank = as_Arguments.starts_with(' ') ? "" : " ";
    done = shell_.WriteLogOnEntry(blank + std::string(as_Arguments));
  } else if (shell_.HasLogOnEntry()) {
    done = shell_.DeleteLogOnEntry();
  }
  (void)LookAtEntry();
  if (done.ok()) return;
  trace_.LogWrite("Start at log-on not changed: " + done.text());
  messages_.Show("Save setting result>0");
}

}  // namespace corvane
