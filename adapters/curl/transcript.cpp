#include "curl/transcript.h"

#include <algorithm>

#include "base/text.h"

namespace corvane {

namespace {

const FtpExchange kNone;

std::string_view WithoutLineEnd(std::string_view line) {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  return line;
}

/// The number at the front of a reply's line, 0 when there is none.
int CodeOf(std::string_view line) {
  if (line.size() < 3) return 0;
  int code = 0;
  for (const char digit : line.substr(0, 3)) {
    if (digit < '0' || digit > '9') return 0;
    code = code * 10 + (digit - '0');
  }
  return line.size() == 3 || line[3] == ' ' || line[3] == '-' ? code : 0;
}

}  // namespace

void Transcript::Clear() {
  exchanges_.clear();
  activity_ = 0;
  open_code_ = 0;
}

void Transcript::AddCommand(std::string_view line) {
  line = WithoutLineEnd(line);
  exchanges_.push_back({ToUpper(line.substr(0, line.find(' '))), 0, ""});
  open_code_ = 0;
  ++activity_;
}

void Transcript::AddReplyLine(std::string_view line) {
  line = WithoutLineEnd(line);
  if (exchanges_.empty()) exchanges_.emplace_back();
  FtpExchange& exchange = exchanges_.back();
  const int code = CodeOf(line);
  const bool more = code != 0 && line.size() > 3 && line[3] == '-';
  if (open_code_ == 0) {
    exchange.code = code;
    exchange.text.clear();
  } else {
    AddText(kLineBreak);
  }
  const bool numbered = code != 0 && (open_code_ == 0 || code == open_code_);
  AddText(numbered ? line.substr(std::min<std::size_t>(4, line.size())) : line);
  if (open_code_ == 0 && more) open_code_ = code;
  if (!numbered || more) return;
  open_code_ = 0;
  ++activity_;
}

void Transcript::AddText(std::string_view text) {
  std::string& whole = exchanges_.back().text;
  whole.append(text.substr(0, kLongestText - std::min(kLongestText, whole.size())));
}

const FtpExchange& Transcript::Last() const {
  return exchanges_.empty() ? kNone : exchanges_.back();
}

const FtpExchange& Transcript::Of(std::string_view verb) const {
  const auto found = std::find_if(exchanges_.rbegin(), exchanges_.rend(),
                                  [verb](const FtpExchange& exchange) { return exchange.verb == verb; });
  return found == exchanges_.rend() ? kNone : *found;
}

}  // namespace corvane
