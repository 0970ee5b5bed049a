// A file as a source of the library that holds a descriptor only while it is read.
#pragma once

#include <string>

#include <zip.h>

namespace corvane {

/// Makes a source of the file `path`: opened when its turn comes, and closed behind it. What is stored is what the file
/// held when it was opened, told by one descriptor, whatever was put in its place or behind its end since.
///
/// `failed` is given `path` when it cannot be read; it must outlive `archive`. Null when there is no memory.
[[nodiscard]] zip_source_t* MakeFileSource(zip_t* archive, const std::string& path, std::string& failed);

}  // namespace corvane
