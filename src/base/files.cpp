#include "base/files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {
namespace {

constexpr std::size_t kBlockSize = 128 * 1024;

Status CheckFullPath(const std::string& path) {
  if (path.starts_with('/') && path.find('\0') == std::string::npos) return Status::Ok();
  return {EINVAL,
          "\"" + path +
              "\" is not a full path on this computer (it must begin with \"/\"): choose the folder or file again"};
}

/// A link that another user made may lead to any file of ours.
Status CheckLink(const std::string& path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0 || !S_ISLNK(found.st_mode)) return Status::Ok();
  if (found.st_uid == geteuid() || found.st_uid == 0) return Status::Ok();
  return {EPERM, path + ": is a link of another user, which is not followed"};
}

DateTime LocalTime(std::time_t when) {
  std::tm local{};
  localtime_r(&when, &local);
  return DateTime::FromCivil(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                             std::min(local.tm_sec, 59));
}

FileInfo InfoOf(const struct stat& found) {
  return {found.st_size, LocalTime(found.st_mtim.tv_sec), S_ISDIR(found.st_mode)};
}

/// Writes everything; the number of bytes that reached the file is left in `done`.
int WriteWhole(int descriptor, std::string_view text, std::size_t& done) {
  done = 0;
  while (done < text.size()) {
    const ssize_t written = write(descriptor, text.data() + done, text.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return written == 0 ? ENOSPC : errno;
    done += static_cast<std::size_t>(written);
  }
  return 0;
}

/// A descriptor closed at the end of a scope.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  [[nodiscard]] int number() const { return number_; }

 private:
  int number_;
};

Status OpenForReading(const std::string& path, int& descriptor) {
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  // A pipe without a writer would hold the program for ever.
  descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (descriptor < 0) return Status::FromErrno(path, errno);
  struct stat found {};
  if (fstat(descriptor, &found) == 0 && S_ISREG(found.st_mode)) return Status::Ok();
  close(std::exchange(descriptor, -1));
  if (S_ISDIR(found.st_mode)) return Status::FromErrno(path, EISDIR);
  return {EINVAL, path + ": is not a plain file"};
}

/// Reads up to `length` bytes at `offset`; fewer at the end of the file.
Status ReadBlock(int descriptor, const std::string& path, std::int64_t offset, char* bytes, std::size_t length,
                 std::size_t& got) {
  got = 0;
  while (got < length) {
    const ssize_t some = pread(descriptor, bytes + got, length - got, offset + static_cast<off_t>(got));
    if (some < 0 && errno == EINTR) continue;
    if (some < 0) return Status::FromErrno(path, errno);
    if (some == 0) break;
    got += static_cast<std::size_t>(some);
  }
  return Status::Ok();
}

/// Waits until what the file holds is on the disk, where it has one that can be waited for.
Status SyncDescriptor(int descriptor, const std::string& path) {
  const bool synced = fdatasync(descriptor) == 0 || errno == EINVAL || errno == EROFS;
  return synced ? Status::Ok() : Status::FromErrno(path, errno);
}

}  // namespace

std::optional<FileInfo> ExamineFile(const std::string& path) {
  struct stat found {};
  if (!CheckFullPath(path).ok() || stat(path.c_str(), &found) != 0) return std::nullopt;
  return InfoOf(found);
}

Status ListFiles(const std::string& folder, const std::function<bool(std::string_view name)>& wanted,
                 std::vector<FolderEntry>& entries) {
  if (Status full = CheckFullPath(folder); !full.ok()) return full;
  entries.clear();
  DIR* const directory = opendir(folder.c_str());
  if (directory == nullptr) return Status::FromErrno(folder, errno);
  errno = 0;
  for (const dirent* entry = nullptr; (entry = readdir(directory)) != nullptr; errno = 0) {
    if (entry->d_type != DT_REG && entry->d_type != DT_LNK && entry->d_type != DT_UNKNOWN) continue;
    if (!wanted(entry->d_name)) continue;
    struct stat found {};
    if (fstatat(dirfd(directory), entry->d_name, &found, 0) != 0 || !S_ISREG(found.st_mode)) continue;
    entries.push_back({entry->d_name, InfoOf(found)});
  }
  const int error = errno;
  closedir(directory);
  return error == 0 ? Status::Ok() : Status::FromErrno(folder, error);
}

Status MakeFolder(const std::string& path) {
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  if (mkdir(path.c_str(), 0777) == 0) return SyncFolderOf(path);
  const int error = errno;
  const auto existing = ExamineFile(path);
  return existing && existing->is_folder ? Status::Ok() : Status::FromErrno(path, error);
}

Status RemoveFile(const std::string& path) {
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  return unlink(path.c_str()) == 0 ? Status::Ok() : Status::FromErrno(path, errno);
}

Status GiveSecondName(const std::string& path, const std::string& second) {
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  if (Status full = CheckFullPath(second); !full.ok()) return full;
  unlink(second.c_str());
  if (link(path.c_str(), second.c_str()) == 0) return Status::Ok();
  const std::string part = second + ".part";
  std::error_code failed;
  std::filesystem::copy_file(path, part, std::filesystem::copy_options::overwrite_existing, failed);
  Status done = failed ? Status::FromErrno(part, failed.value()) : SyncFile(part);
  if (done.ok() && rename(part.c_str(), second.c_str()) != 0) done = Status::FromErrno(second, errno);
  if (!done.ok()) unlink(part.c_str());
  return done;
}

Status RotateFile(const std::string& path, int kept) {
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  const auto numbered = [&path](int number) { return path + "." + std::to_string(number); };
  const auto move_up = [&numbered, kept] {
    for (int number = kept; number > 0; --number) rename(numbered(number - 1).c_str(), numbered(number).c_str());
  };
  // The others move only when this one could; one that a kill left on the way goes first.
  if (ExamineFile(numbered(0))) move_up();
  if (rename(path.c_str(), numbered(0).c_str()) != 0) return Status::FromErrno(path, errno);
  move_up();
  return Status::Ok();
}

Status FollowLink(const std::string& path, std::string& target) {
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  if (Status own = CheckLink(path); !own.ok()) return own;
  std::error_code failed;
  target = std::filesystem::canonical(path, failed).string();
  return failed ? Status::FromErrno(path, failed.value()) : Status::Ok();
}

Status ReadFile(const std::string& path, std::string& contents, std::int64_t limit) {
  contents.clear();
  InputFile file;
  if (Status opened = file.Open(path); !opened.ok()) return opened;
  const auto most = static_cast<std::size_t>(limit);
  for (std::size_t got = 1; got > 0 && contents.size() <= most;) {
    const std::size_t before = contents.size();
    contents.resize(before + kBlockSize);
    const auto offset = static_cast<std::int64_t>(before);
    if (Status block = file.Read(offset, contents.data() + before, kBlockSize, got); !block.ok()) return block;
    contents.resize(before + got);
  }
  if (contents.size() <= most) return Status::Ok();
  contents.clear();
  return {EFBIG, path + ": the file is larger than " + std::to_string(limit) + " bytes"};
}

OutputFile::~OutputFile() {
  Close();
}

Status OutputFile::OpenForAppending(const std::string& path, unsigned mode) {
  return Open(path, O_WRONLY | O_CREAT | O_APPEND, mode);
}

Status OutputFile::Create(const std::string& path, unsigned mode) {
  return Open(path, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, mode);
}

Status OutputFile::Open(const std::string& path, int flags, unsigned mode) {
  Close();
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  if (Status own = CheckLink(path); !own.ok()) return own;
  descriptor_ = open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode);
  if (descriptor_ < 0) return Status::FromErrno(path, errno);
  path_ = path;
  struct stat found {};
  // A file that is to be private may have been made by someone else before.
  const bool too_open = mode == kOwnerOnly && fstat(descriptor_, &found) == 0 && (found.st_mode & ~mode & 0777U) != 0;
  if (too_open && fchmod(descriptor_, mode) != 0) {
    const Status failed = Status::FromErrno(path, errno);
    Close();
    return failed;
  }
  return Status::Ok();
}

Status OutputFile::Write(std::string_view text) {
  if (descriptor_ < 0) return {EBADF, "no file is open"};
  std::size_t done = 0;
  const int error = WriteWhole(descriptor_, text, done);
  if (error == 0) return Status::Ok();
  struct stat found {};
  if (done > 0 && fstat(descriptor_, &found) == 0 &&
      ftruncate(descriptor_, found.st_size - static_cast<off_t>(done)) != 0) {
    return Status::FromErrno(path_ + " (its last line is torn)", error);
  }
  return Status::FromErrno(path_, error);
}

Status OutputFile::TakeOwnerAndMode(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) return Status::FromErrno(path, errno);
  // Only root may give files away.
  static_cast<void>(!fchown(descriptor_, found.st_uid, found.st_gid));
  return fchmod(descriptor_, found.st_mode & 07777U) == 0 ? Status::Ok() : Status::FromErrno(path_, errno);
}

Status OutputFile::Sync() {
  if (descriptor_ < 0) return {EBADF, "no file is open"};
  return SyncDescriptor(descriptor_, path_);
}

void OutputFile::Close() {
  if (descriptor_ >= 0) close(std::exchange(descriptor_, -1));
}

InputFile::~InputFile() {
  Close();
}

void InputFile::Close() {
  if (descriptor_ >= 0) close(std::exchange(descriptor_, -1));
}

Status InputFile::Open(const std::string& path) {
  Close();
  if (Status opened = OpenForReading(path, descriptor_); !opened.ok()) return opened;
  path_ = path;
  struct stat found {};
  if (fstat(descriptor_, &found) != 0) return Status::FromErrno(path, errno);
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  identity_ = {found.st_ino, found.st_size, found.st_mtim.tv_sec * kNanoseconds + found.st_mtim.tv_nsec};
  return Status::Ok();
}

Status InputFile::Read(std::int64_t offset, char* bytes, std::size_t length, std::size_t& got) const {
  return ReadBlock(descriptor_, path_, offset, bytes, length, got);
}

Status ReadAt(const std::string& path, std::int64_t offset, std::size_t length, std::string& bytes) {
  bytes.clear();
  int number = -1;
  if (Status opened = OpenForReading(path, number); !opened.ok()) return opened;
  const Descriptor descriptor(number);
  bytes.resize(length);
  std::size_t got = 0;
  Status read = ReadBlock(number, path, offset, bytes.data(), length, got);
  bytes.resize(got);
  return read;
}

Status WriteAt(const std::string& path, std::int64_t offset, std::string_view bytes) {
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  // Opened anew: what is opened for appending writes at the end, whatever the offset.
  const Descriptor descriptor(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
  if (descriptor.number() < 0) return Status::FromErrno(path, errno);
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t written = pwrite(descriptor.number(), bytes.data() + done, bytes.size() - done,
                                   static_cast<off_t>(offset) + static_cast<off_t>(done));
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return Status::FromErrno(path, written == 0 ? ENOSPC : errno);
    done += static_cast<std::size_t>(written);
  }
  return fdatasync(descriptor.number()) == 0 ? Status::Ok() : Status::FromErrno(path, errno);
}

Status SyncFile(const std::string& path) {
  int number = -1;
  if (Status opened = OpenForReading(path, number); !opened.ok()) return opened;
  return SyncDescriptor(Descriptor(number).number(), path);
}

Status SyncFolderOf(const std::string& path) {
  std::string_view name = path;
  while (name.size() > 1 && name.back() == '/') name.remove_suffix(1);
  const std::string folder(name.substr(0, std::max<std::size_t>(name.rfind('/'), 1)));
  const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // A folder that may be written and not be read cannot be synced, nor can those of some file systems.
  if (descriptor.number() < 0) return errno == EACCES ? Status::Ok() : Status::FromErrno(folder, errno);
  return fsync(descriptor.number()) == 0 || errno == EINVAL ? Status::Ok() : Status::FromErrno(folder, errno);
}

Status CutFile(const std::string& path, std::int64_t size) {
  if (Status full = CheckFullPath(path); !full.ok()) return full;
  const Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (file.number() < 0 || ftruncate(file.number(), size) != 0) return Status::FromErrno(path, errno);
  return fdatasync(file.number()) == 0 ? Status::Ok() : Status::FromErrno(path, errno);
}

}  // namespace corvane
