#include "log.h"

#include <chrono>
#include <ctime>
#include <iomanip>
#include <iostream>

#include "run_time_error.h"

namespace corvane::basestation {

void Log::Open(const std::string& path) {
  if (path == "-") {
    out_ = &std::cerr;
    return;
  }
  file_.open(path, std::ios::app);
  if (!file_.is_open()) throw RunTimeError("cannot write the log " + path);
  out_ = &file_;
}

void Log::Write(std::string_view text) {
  if (out_ == nullptr) {
    return;
  }
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm local{};
  localtime_r(&now, &local);
  *out_ << std::put_time(&local, "%H:%M:%S ");
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (code < 32 || code > 126) {
      *out_ << '[' << int{code} << ']';
    } else {
      *out_ << character;
    }
  }
  *out_ << std::endl;
}

}  // namespace corvane::basestation
