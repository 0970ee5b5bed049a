#pragma once

#include <string>

#include "zip/zip_run.h"

namespace corvane {

/// Puts the file `source` into `archive` under its bare name, in place of an entry of that name; other entries stay.
///
/// Both are full paths. The new archive is written beside the old one as "<archive>.part", synced and renamed, so that
/// the old one is whole after a failure or a kill. A file that is no archive is replaced by a fresh one.
[[nodiscard]] ZipOutcome ZipOneFile(const std::string& archive, const std::string& source, ZipProgress& progress);

/// Takes away what killed runs left beside the file `written` that the library was to write.
void RemoveLeftOversOf(const std::string& written);
/// Takes away what killed runs left in `folder` of any archive, a day ago or longer: another program may be at the
/// rest.
void RemoveForsaken(const std::string& folder);

}  // namespace corvane
