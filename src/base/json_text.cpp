#include "base/json_text.h"

#include <cmath>
#include <utility>

#include "base/encoding.h"
#include "base/format.h"
#include "base/numbers.h"

namespace corvane {
namespace {

constexpr std::string_view kNoCharacter = "\xEF\xBF\xBD";

void AppendCharacter(std::string& out, std::string_view character) {
  const auto first = static_cast<unsigned char>(character[0]);
  // Lines end at U+2028 and U+2029 too for some readers.
  const bool line_end = character == "\xE2\x80\xA8" || character == "\xE2\x80\xA9";
  if (character == "\"" || character == "\\") {
    out += '\\';
    out += character;
  } else if (first < 32 || first == 127) {
    out += "\\u" + HexText(first, 4);
  } else if (line_end) {
    out += character.back() == '\xA8' ? "\\u2028" : "\\u2029";
  } else {
    out += character;
  }
}

std::string IsoText(DateTime when) {
  std::string text = GeneralDate(when);
  text[text.find(' ')] = 'T';
  return text;
}

}  // namespace

void AppendJsonString(std::string& out, std::string_view text) {
  out += '"';
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    if (length == 0) {
      out += kNoCharacter;
    } else {
      AppendCharacter(out, text.substr(0, length));
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  out += '"';
}

void JsonWriter::Line() {
  if (one_line_) return;
  out_ += '\n';
  out_.append(2 * closes_.size(), ' ');
}

void JsonWriter::Lead(std::string_view name) {
  if (!empty_) out_ += ',';
  if (!closes_.empty()) Line();
  empty_ = false;
  if (name.empty()) return;
  AppendJsonString(out_, name);
  out_ += one_line_ ? ":" : ": ";
}

void JsonWriter::Begin(std::string_view name, char opens, char closes) {
  Lead(name);
  out_ += opens;
  closes_.push_back(closes);
  empty_ = true;
}

void JsonWriter::End() {
  const char closes = closes_.back();
  closes_.pop_back();
  if (!empty_) Line();
  out_ += closes;
  empty_ = false;
}

void JsonWriter::Text(std::string_view name, std::string_view value) {
  Lead(name);
  AppendJsonString(out_, value);
}

void JsonWriter::Bool(std::string_view name, bool value) {
  Lead(name);
  out_ += value ? "true" : "false";
}

void JsonWriter::Integer(std::string_view name, std::int64_t value) {
  Lead(name);
  out_ += std::to_string(value);
}

void JsonWriter::Integer(std::string_view name, std::optional<std::int64_t> value) {
  if (value) return Integer(name, *value);
  Null(name);
}

void JsonWriter::Number(std::string_view name, std::optional<double> value, int decimals) {
  if (!value || !std::isfinite(*value)) return Null(name);
  Lead(name);
  AppendFixed(out_, *value, decimals);
}

void JsonWriter::Null(std::string_view name) {
  Lead(name);
  out_ += "null";
}

void JsonWriter::Utc(std::string_view name, Moment value) {
  if (value.IsNone()) return Null(name);
  Text(name, IsoText(Moment{value.utc, 0}.Local()) + "Z");
}

void JsonWriter::Local(std::string_view name, DateTime value) {
  if (value.IsNone()) return Null(name);
  Text(name, IsoText(value));
}

std::string JsonWriter::Take() {
  out_ += '\n';
  return std::move(out_);
}

}  // namespace corvane
