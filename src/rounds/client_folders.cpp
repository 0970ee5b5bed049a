#include "rounds/client_folders.h"

#include <cstdint>
#include <optional>
#include <string>

#include "base/files.h"
#include "base/paths.h"
#include "base/status.h"

namespace corvane {
namespace {

/// Creates the folder of one client; false when it is there already.
bool CreateFolderOf(const Client& av_Client, const std::string& as_DataFolder) {
  const std::string path = AddBackslash(as_DataFolder) + WithSlashes(av_Client.Folder);
  const std::optional<FileInfo> found = ExamineFile(path);
  if (found && found->is_folder) return false;
  CreatePath(path);
  return true;
}

}  // namespace

void CreateLocalFolders(const Registry& av_Registry, const FileNames& av_Names, Messages& av_Messages) {
  std::int64_t created = 0;
  std::string error;
  try {
    const std::string data_folder = av_Names.DataFolder();
    for (const Client& client : av_Registry.Clients) {
      if (CreateFolderOf(client, data_folder)) ++created;
    }
  } catch (const RunTimeError& failure) {
    error = failure.what();
  }
  if (!error.empty()) av_Messages.Show("A client's folder cannot be created. " + error);
  av_Messages.Show(std::to_string(created) + " folder(s) created");
}

bool EnsureFolder(std::string_view as_Folder, Messages& av_Messages) {
  try {
    return CreatePath(as_Folder);
  } catch (const RunTimeError& error) {
    av_Messages.Show("A folder for the files cannot be created. " + std::string(error.what()), "folder");
    return false;
  }
}

}  // namespace corvane
