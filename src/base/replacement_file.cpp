#include "base/replacement_file.h"

#include <cerrno>
#include <cstdio>
#include <utility>

#include <unistd.h>

namespace corvane {

Status WriteFileAtomically(const std::string& path, std::string_view contents, unsigned mode) {
  ReplacementFile file(path, mode);
  if (Status opened = file.Open(); !opened.ok()) return opened;
  file.buffer() = contents;
  return file.Commit();
}

ReplacementFile::ReplacementFile(std::string path, unsigned mode)
    : path_(std::move(path)), temporary_(path_ + ".part"), mode_(mode) {
  const std::lock_guard lock(list_);
  older_ = std::exchange(newest_, this);
}

ReplacementFile::~ReplacementFile() {
  {
    const std::lock_guard lock(list_);
    ReplacementFile** link = &newest_;
    while (*link != this) link = &(*link)->older_;
    *link = older_;
  }
  Discard();
}

void ReplacementFile::Discard() {
  if (!file_.IsOpen()) return;
  file_.Close();
  unlink(temporary_.c_str());
}

void ReplacementFile::RemoveUnfinished() {
  // The end of the process may have struck a thread that holds it; then what is unfinished stays.
  const std::unique_lock lock(list_, std::try_to_lock);
  if (!lock.owns_lock()) return;
  for (ReplacementFile* file = newest_; file != nullptr; file = file->older_) file->Discard();
}

Status ReplacementFile::Open() {
  // One that a kill left behind may have other permissions.
  static_cast<void>(RemoveFile(temporary_).ok());
  failure_ = Status::Ok();
  return file_.Create(temporary_, mode_);
}

Status ReplacementFile::OpenInPlace() {
  std::string target;
  if (Status found = FollowLink(path_, target); !found.ok()) return found;
  path_ = std::move(target);
  temporary_ = path_ + ".part";
  mode_ = kOwnerOnly;
  if (Status opened = Open(); !opened.ok()) return opened;
  return file_.TakeOwnerAndMode(path_);
}

Status ReplacementFile::Flush() {
  if (failure_.ok()) failure_ = file_.Write(buffer_);
  buffer_.clear();
  return failure_;
}

Status ReplacementFile::Commit() {
  Status status = Flush();
  if (status.ok()) status = file_.Sync();
  if (!status.ok()) return status;
  if (rename(temporary_.c_str(), path_.c_str()) != 0) return Status::FromErrno(path_, errno);
  in_place_ = true;
  file_.Close();
  return SyncFolderOf(path_);
}

}  // namespace corvane
