#include "page/html.h"

#include "base/outside_text.h"

namespace corvane {
namespace {

std::string_view EntityOf(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return "";
  }
}

}  // namespace

Html& Html::Text(std::string_view as_Text) {
  for (const char character : Printable(as_Text)) {
    if (const std::string_view entity = EntityOf(character); entity.empty()) {
      out_ += character;
    } else {
      out_ += entity;
    }
  }
  return *this;
}

}  // namespace corvane
