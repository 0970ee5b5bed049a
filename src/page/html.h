#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace corvane {

/// Text of an HTML document that is part of the program: no value can become one.
class Markup {
 public:
  // NOLINTNEXTLINE(google-explicit-constructor): literals stand for it
  consteval Markup(const char* text) : text_(text) {}
  [[nodiscard]] constexpr std::string_view text() const { return text_; }

 private:
  std::string_view text_;
};

/// An HTML document that grows piece by piece. What is no markup is shown as it stands, whatever it holds.
class Html {
 public:
  Html& operator<<(Markup av_Markup) {
    out_ += av_Markup.text();
    return *this;
  }
  /// Text from anywhere, between tags or as the value of an attribute in double quotes: one line, as for a terminal.
  Html& Text(std::string_view as_Text);
  Html& Number(std::int64_t al_Number) {
    out_ += std::to_string(al_Number);
    return *this;
  }
  [[nodiscard]] std::string Take() { return std::move(out_); }

 private:
  std::string out_;
};

}  // namespace corvane
