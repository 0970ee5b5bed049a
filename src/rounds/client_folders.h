#pragma once

#include <string_view>

#include "state/file_names.h"
#include "state/records.h"
#include "ui/messages.h"

namespace corvane {

/// Creates the clients' folders below the data folder and says how many were new. **Yields** for the message.
void CreateLocalFolders(const Registry& av_Registry, const FileNames& av_Names, Messages& av_Messages);

/// Creates a folder where it is missing; false when that fails, which has been shown. **Yields** then.
[[nodiscard]] bool EnsureFolder(std::string_view as_Folder, Messages& av_Messages);

}  // namespace corvane
