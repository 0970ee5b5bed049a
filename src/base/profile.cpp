#include "base/profile.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace corvane {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsComment(std::string_view text) {
  return text.starts_with(';') || text.starts_with('#');
}

bool IsQuoted(std::string_view value) {
  return value.size() >= 2 && value.front() == '"' && value.back() == '"';
}

/// The name in a section's heading, "[name]" with nothing or a comment behind it; none when `line` is no heading.
std::optional<std::string_view> HeadingName(std::string_view line) {
  const std::size_t close = line.find(']');
  if (!line.starts_with('[') || close == std::string_view::npos) return std::nullopt;
  const std::string_view rest = Trim(line.substr(close + 1));
  if (!rest.empty() && !IsComment(rest)) return std::nullopt;
  return Trim(line.substr(1, close - 1));
}

/// A value as it is stored: without line breaks and tabs, quoted when reading would otherwise change it.
std::string Stored(std::string_view value) {
  std::string text(value);
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\t' || c == '\0'; }, ' ');
  const bool changes = Trim(text).size() != text.size() || IsQuoted(text);
  return changes ? '"' + text + '"' : text;
}

}  // namespace

void ProfileFile::Parse(std::string contents) {
  *this = ProfileFile();
  AddSection("", "");
  std::replace(contents.begin(), contents.end(), '\0', ' ');
  std::string_view rest = contents;
  if (rest.starts_with(kByteOrderMark)) {
    start_ = kByteOrderMark;
    rest.remove_prefix(kByteOrderMark.size());
  }
  const std::size_t first_end = rest.find('\n');
  if (first_end != std::string_view::npos && first_end > 0 && rest[first_end - 1] == '\r') line_end_ = "\r\n";
  if (first_end == std::string_view::npos && rest.find('\r') != std::string_view::npos) line_end_ = "\r";
  while (!rest.empty()) {
    const std::size_t end = rest.find(line_end_.back());
    std::string_view line = rest.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    ParseLine(line);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
  }
}

ProfileFile::Section& ProfileFile::AddSection(std::string_view name, std::string_view heading) {
  const bool is_first = section_index_.emplace(name, sections_.size()).second;
  has_doubled_sections_ = has_doubled_sections_ || (!is_first && !name.empty());
  sections_.push_back({std::string(name), std::string(heading), {}, {}});
  return sections_.back();
}

void ProfileFile::ParseLine(std::string_view text) {
  const std::string_view trimmed = Trim(text);
  if (const auto heading = HeadingName(trimmed)) {
    // No key is asked for in a section without a name.
    has_broken_lines_ = has_broken_lines_ || heading->empty();
    AddSection(*heading, text);
    return;
  }
  const std::size_t equals = text.find('=');
  Section& section = sections_.back();
  const bool is_key = !IsComment(trimmed) && equals != std::string_view::npos && !Trim(text.substr(0, equals)).empty();
  if (is_key) {
    const bool is_new = section.keys.emplace(Trim(text.substr(0, equals)), section.lines.size()).second;
    section.has_doubled_keys = section.has_doubled_keys || !is_new;
  } else if (!trimmed.empty() && !IsComment(trimmed)) {
    has_broken_lines_ = true;
  }
  const std::size_t value = is_key ? text.find_first_not_of(" \t", equals + 1) : 0;
  section.lines.push_back({std::string(text), std::min(value, text.size())});
}

std::string ProfileFile::Text() const {
  std::string contents = start_;
  for (const Section& section : sections_) {
    if (!section.heading.empty()) contents.append(section.heading).append(line_end_);
    for (const Line& line : section.lines) contents.append(line.text).append(line_end_);
  }
  return contents;
}

ProfileFile::Section* ProfileFile::FindSection(std::string_view name) {
  return const_cast<Section*>(std::as_const(*this).FindSection(name));
}

const ProfileFile::Section* ProfileFile::FindSection(std::string_view name) const {
  const auto found = section_index_.find(name);
  return found == section_index_.end() ? nullptr : &sections_[found->second];
}

std::optional<std::size_t> ProfileFile::FindLine(const Section& section, std::string_view key) {
  // Nearly always the keys are asked for in the order of the file.
  const std::size_t next = section.last + 1;
  const bool may_be_next = !section.has_doubled_keys && next < section.lines.size();
  if (may_be_next && section.lines[next].Bears(key)) return section.last = next;
  const auto found = section.keys.find(key);
  if (found == section.keys.end()) return std::nullopt;
  return section.last = found->second;
}

bool ProfileFile::Has(std::string_view section, std::string_view key) const {
  const Section* const found = FindSection(section);
  return found != nullptr && found->keys.contains(key);
}

std::string ProfileFile::Get(std::string_view section, std::string_view key, std::string_view missing) const {
  const Section* const found = FindSection(section);
  if (found == nullptr) return std::string(missing);
  const auto line = FindLine(*found, key);
  if (!line) return std::string(missing);
  const Line& held = found->lines[*line];
  const std::string_view value = Trim(std::string_view(held.text).substr(held.value_start));
  return std::string(IsQuoted(value) ? value.substr(1, value.size() - 2) : value);
}

void ProfileFile::Set(std::string_view section, std::string_view key, std::string_view value) {
  if (sections_.empty()) AddSection("", "");
  Section* found = FindSection(section);
  if (found == nullptr) {
    std::vector<Line>& before = sections_.back().lines;
    if (!before.empty() && !Trim(before.back().text).empty()) before.push_back({});
    found = &AddSection(section, "[" + std::string(section) + "]");
  }
  if (const auto known = FindLine(*found, key)) {
    Line& line = found->lines[*known];
    line.text.replace(line.value_start, std::string::npos, Stored(value));
    return;
  }
  std::size_t at = found->lines.size();
  while (at > 0 && Trim(found->lines[at - 1].text).empty()) --at;
  Line line{std::string(key) + "=", key.size() + 1};
  line.text += Stored(value);
  found->lines.insert(found->lines.begin() + static_cast<std::ptrdiff_t>(at), std::move(line));
  found->keys.emplace(key, at);
}

std::vector<std::string> ProfileFile::Keys(std::string_view section) const {
  std::vector<std::string> keys;
  const Section* const found = FindSection(section);
  if (found == nullptr) return keys;
  for (const Line& line : found->lines) {
    if (line.value_start > 0) keys.emplace_back(Trim(std::string_view(line.text).substr(0, line.text.find('='))));
  }
  return keys;
}

}  // namespace corvane
