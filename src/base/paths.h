// Names of files and folders: the one place that spells a separator.
#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// `path` with "\" read as the separator "/".
[[nodiscard]] std::string WithSlashes(std::string_view path);
/// `path` unchanged when it is empty or ends in a separator, else with one appended.
[[nodiscard]] std::string AddBackslash(std::string_view path);
/// `name` as it stands when it contains ":", with slashes when it begins with a separator, else `name` in `folder`.
[[nodiscard]] std::string PlaceInFolder(std::string_view folder, std::string_view name);
/// The part after the last separator.
[[nodiscard]] std::string_view FileNameOf(std::string_view path);
/// The part before the last separator, without it; empty when there is none.
[[nodiscard]] std::string_view FolderOf(std::string_view path);
/// The text after the last "." of the file name, empty when there is none.
[[nodiscard]] std::string_view ExtensionOf(std::string_view path);
/// `path` with its extension (the text after the last "." of the file name, dot included) replaced by "." +
/// `extension`.
[[nodiscard]] std::string WithExtension(std::string_view path, std::string_view extension);
/// True when `name` matches `pattern`, in which "*" stands for any run of characters; letter case counts.
[[nodiscard]] bool MatchesPattern(std::string_view name, std::string_view pattern);
/// Creates `path` and every missing folder above it; a failure throws `RunTimeError`.
bool CreatePath(std::string_view path);
/// `text` between double quotes.
[[nodiscard]] std::string Quote(std::string_view text);
/// A size for people: "" below 0, "9,999 b" below 10,000, "10 Kb" below 10,000,000, else "10 Mb".
[[nodiscard]] std::string FormatSize(long long bytes);

}  // namespace corvane
