#include "base/synced_file.h"

#include <algorithm>

namespace corvane {

void SyncedFile::Begin() {
  const auto info = ExamineFile(file_.path());
  synced_size_ = info ? info->size : 0;
  unsynced_.clear();
  taken_back_ = 0;
}

Status SyncedFile::OpenForAppending(const std::string& path) {
  Status opened = file_.OpenForAppending(path);
  if (opened.ok()) Begin();
  return opened;
}

Status SyncedFile::Create(const std::string& path, std::string_view first_line) {
  if (Status created = file_.Create(path); !created.ok()) return created;
  Begin();
  const Status written = Write(first_line);
  return written.ok() ? SyncFolderOf(path) : written;
}

Status SyncedFile::Write(std::string_view line) {
  Status written = file_.Write(line);
  if (written.ok()) unsynced_ += line;
  return written;
}

Status SyncedFile::Sync() {
  if (unsynced_.empty()) return Status::Ok();
  Status synced = file_.Sync();
  if (!synced.ok() && WriteAt(file_.path(), synced_size_, unsynced_).ok()) synced = Status::Ok();
  if (synced.ok()) {
    synced_size_ += static_cast<std::int64_t>(unsynced_.size());
  } else {
    taken_back_ += std::count(unsynced_.begin(), unsynced_.end(), '\n');
    const Status cut = CutFile(file_.path(), synced_size_);
    if (!cut.ok()) synced = {cut.code(), synced.text() + "; its last lines cannot be taken back: " + cut.text()};
  }
  unsynced_.clear();
  return synced;
}

void SyncedFile::Close() {
  file_.Close();
  unsynced_.clear();
}

}  // namespace corvane
