#include "transfer/remote_listing.h"

#include <algorithm>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"

namespace corvane {

void RemoteListing::Clear() {
  folders_.clear();
  files_.clear();
}

void RemoteListing::Add(const FindRecord& av_Record) {
  if (av_Record.is_folder) {
    folders_.push_back(av_Record.name);
  } else {
    files_.push_back({av_Record.name, av_Record.size, FormatSize(av_Record.size), av_Record.created,
                      av_Record.last_accessed, av_Record.last_written});
  }
}

void RemoteListing::Sort() {
  std::stable_sort(folders_.begin(), folders_.end(),
                   [](const std::string& a, const std::string& b) { return CompareNoCase(a, b) < 0; });
  std::stable_sort(files_.begin(), files_.end(),
                   [](const RemoteFile& a, const RemoteFile& b) { return CompareNoCase(a.name, b.name) < 0; });
}

std::string RemoteListing::FolderName(std::int64_t al_Index) const {
  return al_Index == 0 ? ".." : folders_[static_cast<std::size_t>(al_Index - 1)];
}

bool RemoteListing::HasFolder(std::string_view as_Name) const {
  return std::find(folders_.begin(), folders_.end(), as_Name) != folders_.end();
}

std::string RemoteListing::FileTime(std::int64_t al_Index, RemoteFileTime av_Which) const {
  const RemoteFile& file = File(al_Index);
  const DateTime when = av_Which == kCreated       ? file.created
                        : av_Which == kLastWritten ? file.last_written
                                                   : file.last_accessed;
  return when.IsNone() ? std::string() : GeneralDate(when);
}

}  // namespace corvane
