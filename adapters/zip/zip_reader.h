#pragma once

#include <string>

#include "base/replacement_file.h"
#include "zip/zip_run.h"

namespace corvane {

/// Writes the entry with the bare name `name` of `archive` to `target`, which appears only when it is whole.
///
/// The name is looked for as it stands, else in other letter case, else in the folders of the archive. A stored name is
/// never used as a path. Refuses what would expand beyond all measure.
[[nodiscard]] ZipOutcome UnzipOneFile(const std::string& archive, const std::string& name, ReplacementFile& target,
                                      ZipProgress& progress);

}  // namespace corvane
