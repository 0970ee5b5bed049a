#include "base/paths.h"

#include <algorithm>

#include "base/files.h"
#include "base/numbers.h"
#include "base/status.h"

namespace corvane {
namespace {

constexpr char kSeparator = '/';

bool IsSeparator(char c) {
  return c == '/' || c == '\\';
}

}  // namespace

std::string WithSlashes(std::string_view path) {
  std::string result(path);
  std::replace(result.begin(), result.end(), '\\', kSeparator);
  return result;
}

std::string AddBackslash(std::string_view path) {
  std::string result(path);
  if (!result.empty() && !IsSeparator(result.back())) result += kSeparator;
  return result;
}

std::string PlaceInFolder(std::string_view folder, std::string_view name) {
  if (name.find(':') != std::string_view::npos) return std::string(name);
  if (!name.empty() && IsSeparator(name.front())) return WithSlashes(name);
  return AddBackslash(folder) + WithSlashes(name);
}

std::string_view FileNameOf(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

std::string_view FolderOf(std::string_view path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? std::string_view() : path.substr(0, separator);
}

std::string_view ExtensionOf(std::string_view path) {
  const std::string_view name = FileNameOf(path);
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

std::string WithExtension(std::string_view path, std::string_view extension) {
  const std::size_t name = path.size() - FileNameOf(path).size();
  const std::size_t dot = path.substr(name).rfind('.');
  const std::string_view stem = dot == std::string_view::npos ? path : path.substr(0, name + dot);
  return std::string(stem) + "." + std::string(extension);
}

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  std::size_t at = 0;
  std::size_t star = std::string_view::npos;  // the last "*" of the pattern that was passed
  std::size_t retry = 0;                      // where the name goes on after one more character for that "*"
  std::size_t in_pattern = 0;
  while (at < name.size()) {
    if (in_pattern < pattern.size() && pattern[in_pattern] == '*') {
      star = in_pattern++;
      retry = at;
    } else if (in_pattern < pattern.size() && pattern[in_pattern] == name[at]) {
      ++in_pattern;
      ++at;
    } else if (star != std::string_view::npos) {
      in_pattern = star + 1;
      at = ++retry;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in_pattern) == std::string_view::npos;
}

bool CreatePath(std::string_view path) {
  const std::string whole = WithSlashes(path);
  const bool is_full = whole.starts_with(kSeparator);  // any other is refused as a whole
  for (std::size_t end = is_full ? whole.find(kSeparator, 1) : std::string::npos;;
       end = whole.find(kSeparator, end + 1)) {
    const std::string part = whole.substr(0, end);
    const auto existing = ExamineFile(part);
    if (!existing || !existing->is_folder) {
      Require(MakeFolder(part));
    }
    if (end == std::string::npos || end + 1 == whole.size()) return true;
  }
}

std::string Quote(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

std::string FormatSize(long long bytes) {
  if (bytes < 0) return {};
  const auto size = static_cast<double>(bytes);
  if (bytes < 10'000) return GroupedText(size) + " b";
  if (bytes < 10'000'000) return GroupedText(size / 1000) + " Kb";
  return GroupedText(size / 1'000'000) + " Mb";
}

}  // namespace corvane
