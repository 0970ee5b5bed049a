#include "app/run_at_startup.h"

#include <string>

namespace corvane {

void RunAtStartup::SetRunAtStartup(bool ab_Enable, std::string_view as_Arguments) {
  Status done;
  if (ab_Enable) {
    const std::string blank = as_Arguments.starts_with(' ') ? "" : " ";
    done = shell_.WriteLogOnEntry(blank + std::string(as_Arguments));
  } else if (shell_.HasLogOnEntry()) {
    done = shell_.DeleteLogOnEntry();
  }
  if (done.ok()) return;
  trace_.LogWrite("Start at log-on not changed: " + done.text());
  messages_.Show("Save setting result>0");
}

}  // namespace corvane
