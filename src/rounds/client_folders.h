#pragma once

#include "state/file_names.h"
#include "state/records.h"
#include "ui/messages.h"

namespace corvane {

/// Creates the clients' folders below the data folder and says how many were new. **Yields** for the message.
void CreateLocalFolders(const Registry& av_Registry, const FileNames& av_Names, Messages& av_Messages);

}  // namespace corvane
