#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace corvane {

/// The result of a call that crosses the platform boundary: a code (0 is success) and a text for people.
class [[nodiscard]] Status {
 public:
  Status() = default;
  Status(int code, std::string text) : code_(code), text_(std::move(text)) {}

  /// The success value.
  static Status Ok() { return {}; }
  /// A failure from an `errno` value: the code is the number, the text is "<what>: <the system's words>".
  static Status FromErrno(const std::string& what, int error);

  [[nodiscard]] bool ok() const { return code_ == 0; }
  /// 0 on success; an errno value or an adapter's own number on failure.
  [[nodiscard]] int code() const { return code_; }
  /// Empty on success.
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  int code_ = 0;
  std::string text_;
};

/// A run-time error inside an operation; `what()` is its description, written for the user.
///
/// Helpers throw it; the public operation that called them is the one handler.
class RunTimeError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  explicit RunTimeError(const Status& status) : std::runtime_error(status.text()) {}
};

/// Throws `RunTimeError` with the text of a failure.
inline void Require(const Status& status) {
  if (!status.ok()) throw RunTimeError(status);
}

}  // namespace corvane
