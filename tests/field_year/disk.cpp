#include "field_year/disk.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <filesystem>
#include <fstream>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/fake_transfer.h"

extern "C" {
int __real_open(const char* path, int flags, ...);
ssize_t __real_write(int descriptor, const void* bytes, size_t count);
ssize_t __real_pwrite(int descriptor, const void* bytes, size_t count, off_t offset);
int __real_ftruncate(int descriptor, off_t size);
int __real_rename(const char* from, const char* to);
int __real_unlink(const char* path);
int __real_mkdir(const char* path, mode_t mode);
}

namespace corvane::test {
namespace {

namespace fs = std::filesystem;
constexpr std::int64_t kWrittenBackAfter = 30;  // seconds
constexpr std::size_t kLostBytes = 8;

std::string PathOf(int descriptor) {
  return "/proc/self/fd/" + std::to_string(descriptor);
}
struct stat StatusOf(int descriptor) {
  struct stat found {};
  fstat(descriptor, &found);
  return found;
}
std::string ContentsOf(int descriptor) {
  std::string contents(static_cast<std::size_t>(StatusOf(descriptor).st_size), '\0');
  std::ifstream(PathOf(descriptor), std::ios::binary).read(contents.data(), std::ssize(contents));
  return contents;
}
int Failed(int error) {
  errno = error;
  return -1;
}

/// The disk that holds a path, null when it is none of it.
Disk* DiskOf(const char* path) {
  return Disk::current != nullptr && std::string_view(path).starts_with(Disk::current->folder) ? Disk::current
                                                                                               : nullptr;
}
/// The unsynced changes of an open file of the disk, null for other files.
std::vector<Disk::Change>* ChangesOf(int descriptor) {
  if (Disk::current == nullptr) return nullptr;
  const auto found = Disk::current->files.find(StatusOf(descriptor).st_ino);
  return found == Disk::current->files.end() ? nullptr : &found->second;
}

ssize_t WriteTo(int descriptor, const void* bytes, std::size_t count, off_t offset) {
  if (auto* const changes = ChangesOf(descriptor)) {
    Disk& disk = *Disk::current;
    if (disk.Fails(false)) return -1;
    if (disk.is_full) {
      // Some of it may still find room.
      if (count < 2 || !disk.random.Chance(0.3)) return Failed(ENOSPC);
      count /= 2;
    }
    const auto size = static_cast<std::size_t>(StatusOf(descriptor).st_size);
    const std::size_t at = offset < 0 ? size : static_cast<std::size_t>(offset);
    changes->push_back({disk.seconds(), at, count, at < size ? ContentsOf(descriptor).substr(at, count) : "", size});
  }
  return offset < 0 ? __real_write(descriptor, bytes, count) : __real_pwrite(descriptor, bytes, count, offset);
}

/// Notes a change of names that is about to be made; false when it fails.
bool MayChangeName(const char* from, const char* to, bool is_new) {
  Disk* const disk = DiskOf(to);
  const bool is_there = access(*from != '\0' ? from : to, F_OK) == 0;
  if (disk == nullptr || is_there == is_new) return true;
  if (disk->Fails(true)) return false;
  disk->NoteName(from, to, is_new);
  return true;
}

int SyncData(int descriptor) {
  auto* const changes = ChangesOf(descriptor);
  if (changes == nullptr) return 0;
  if (Disk::current->Fails(false)) return -1;
  const std::vector<Disk::Change> synced = std::exchange(*changes, {});
  if (Disk::current->failing_syncs == 0) return 0;
  --Disk::current->failing_syncs;
  // The pages are gone, and the next sync knows nothing of them.
  if (!synced.empty() && synced.back().length > kLostBytes) {
    const int again = __real_open(PathOf(descriptor).c_str(), O_WRONLY);
    const auto end = static_cast<off_t>(synced.back().offset + synced.back().length - kLostBytes);
    static_cast<void>(!__real_pwrite(again, std::string(kLostBytes, '\0').data(), kLostBytes, end));
    close(again);
  }
  return Failed(EIO);
}

}  // namespace

Disk* Disk::current = nullptr;

Disk::Disk(const std::string& a_folder, std::uint64_t seed, std::function<std::int64_t()> clock)
    : folder(a_folder + "/"), attic(a_folder + ".attic/"), random(seed), seconds(std::move(clock)) {
  fs::create_directories(attic);
  current = this;
}

Disk::~Disk() {
  current = nullptr;
  fs::remove_all(attic);
}

bool Disk::Fails(bool changes_names) {
  ForgetLasting();
  if (calls_left > 0 && --calls_left == 0) power_is_off = true;
  if (power_is_off) return Failed(EIO) != 0;
  return is_read_only && changes_names && Failed(EROFS) != 0;
}

void Disk::NoteCut(int descriptor, std::size_t size) {
  const std::string contents = ContentsOf(descriptor);
  if (contents.size() <= size) return;
  files[StatusOf(descriptor).st_ino].push_back({seconds(), size, 0, contents.substr(size), contents.size()});
}

void Disk::NoteName(const char* from, const char* to, bool is_new) {
  const std::string other = attic + std::to_string(++kept);
  const bool has_former = !is_new && link(to, other.c_str()) == 0;
  names.push_back({seconds(), from, to, has_former ? other : "", is_new});
}

void Disk::SyncNames() {
  for (const Naming& naming : std::exchange(names, {})) __real_unlink(naming.kept.c_str());
}

/// What is old enough was written back by the system itself.
void Disk::ForgetLasting() {
  const std::int64_t before = seconds() - kWrittenBackAfter;
  if (swept >= before) return;
  swept = seconds();
  const auto is_old = [before](const auto& change) { return change.when < before; };
  for (auto& [inode, changes] : files) std::erase_if(changes, is_old);
  const auto lasting = std::find_if_not(names.begin(), names.end(), is_old);
  for (auto naming = names.begin(); naming != lasting; ++naming) __real_unlink(naming->kept.c_str());
  names.erase(names.begin(), lasting);
}

/// Lets some of a file's unsynced changes be lost: none, all, those behind one, or any.
void Disk::CutFile(const std::string& path, const std::vector<Change>& changes) {
  std::string contents = ReadAll(path);
  std::vector<std::string> bytes(changes.size());
  for (std::size_t i = changes.size(); i-- > 0;) {
    const Change& change = changes[i];
    if (change.length > 0 && change.offset < contents.size()) bytes[i] = contents.substr(change.offset, change.length);
    contents.resize(change.length == 0 ? change.offset : change.former_size);
    contents.replace(std::min(change.offset, contents.size()), change.former.size(), change.former);
  }
  const std::uint64_t how = random.Below(4);
  const std::size_t first_lost = how == 2 ? random.Below(changes.size() + 1) : how == 0 ? changes.size() : 0;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const bool lasts = how == 3 ? random.Chance(0.5) : i < first_lost;
    if (!lasts && (how < 2 || random.Chance(0.7))) continue;
    const std::size_t end = changes[i].offset + (lasts ? bytes[i].size() : bytes[i].size() / 2);
    contents.resize(changes[i].length == 0 ? std::min(contents.size(), end) : std::max(contents.size(), end));
    // A size can reach the disk before the bytes do.
    if (changes[i].length == 0 || (!lasts && random.Chance(0.5))) continue;
    contents.replace(changes[i].offset, end - changes[i].offset, bytes[i], 0, end - changes[i].offset);
  }
  WriteAll(path, contents);
}

void Disk::UndoNames() {
  const std::size_t lasting = random.Below(names.size() + 1);
  for (; names.size() > lasting; names.pop_back()) {
    const Naming& naming = names.back();
    if (!naming.from.empty()) fs::rename(naming.to, naming.from);
    if (naming.is_new) fs::remove_all(naming.to);
    if (!naming.kept.empty()) fs::rename(naming.kept, naming.to);
  }
}

void Disk::Restore(bool lost_pages) {
  for (const std::string& place : {folder, attic}) {
    for (const auto& entry : fs::recursive_directory_iterator(place)) {
      struct stat found {};
      if (!lost_pages || !entry.is_regular_file() || stat(entry.path().c_str(), &found) != 0) continue;
      const auto changed = files.extract(found.st_ino);
      if (changed && !changed.mapped().empty()) CutFile(entry.path(), changed.mapped());
    }
  }
  if (lost_pages) UndoNames();
  SyncNames();
  files.clear();
  calls_left = 0;
  power_is_off = false;
}

// NOLINTBEGIN(bugprone-reserved-identifier): the names are the linker's
extern "C" {

int __wrap_open(const char* path, int flags, ...) {
  va_list more;
  va_start(more, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
  va_end(more);
  Disk* const disk = (flags & O_ACCMODE) == O_RDONLY ? nullptr : DiskOf(path);
  if (disk == nullptr) return __real_open(path, flags, mode);
  if (disk->Fails(true)) return -1;
  const bool is_new = access(path, F_OK) != 0;
  const int descriptor = __real_open(path, flags & ~O_TRUNC, mode);
  if (descriptor < 0) return descriptor;
  auto& changes = disk->files[StatusOf(descriptor).st_ino];
  if (is_new) changes.clear(), disk->NoteName("", path, true);
  if ((flags & O_TRUNC) != 0) disk->NoteCut(descriptor, 0), __real_ftruncate(descriptor, 0);
  return descriptor;
}
ssize_t __wrap_write(int descriptor, const void* bytes, size_t count) {
  return WriteTo(descriptor, bytes, count, -1);
}
ssize_t __wrap_pwrite(int descriptor, const void* bytes, size_t count, off_t offset) {
  return WriteTo(descriptor, bytes, count, offset);
}
int __wrap_ftruncate(int descriptor, off_t size) {
  const bool is_here = ChangesOf(descriptor) != nullptr;
  if (is_here && Disk::current->Fails(false)) return -1;
  if (is_here) Disk::current->NoteCut(descriptor, static_cast<std::size_t>(size));
  return __real_ftruncate(descriptor, size);
}
int __wrap_fdatasync(int descriptor) {
  return SyncData(descriptor);
}
int __wrap_fsync(int descriptor) {
  if (Disk::current == nullptr || !S_ISDIR(StatusOf(descriptor).st_mode)) return SyncData(descriptor);
  if (Disk::current->Fails(false)) return -1;
  Disk::current->SyncNames();
  return 0;
}
int __wrap_rename(const char* from, const char* to) {
  return MayChangeName(from, to, false) ? __real_rename(from, to) : -1;
}
int __wrap_unlink(const char* path) {
  return MayChangeName("", path, false) ? __real_unlink(path) : -1;
}
int __wrap_mkdir(const char* path, mode_t mode) {
  return MayChangeName("", path, true) ? __real_mkdir(path, mode) : -1;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)

}  // namespace corvane::test
