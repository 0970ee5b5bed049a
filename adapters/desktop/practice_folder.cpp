#include "desktop/practice_folder.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/files.h"
#include "desktop/environment.h"
#include "desktop/folder_holder.h"
#include "desktop/posix_shell.h"
#include "posix/child_process.h"
#include "posix/local_clock.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char* kRootName = "corvane-PRACTICE";
constexpr const char* kLogName = "basestation.log";
constexpr const char* kRootLock = ".lock";
constexpr const char* kProgram = "corvane-basestation";
constexpr const char* kReady = "ready: ";
constexpr mode_t kOnlyUs = 0700;
constexpr std::uintmax_t kRoom = 16'000'000;  // bytes; a day of the simulated network is a part of it
constexpr const char* kElsewhere = "name another place with the variable XDG_CACHE_HOME";
constexpr int kMostFolders = 1000;
constexpr int kTriesToLock = 3;
constexpr std::int64_t kLongestLog = 64 * 1024;
constexpr auto kTimeToStart = 5s;
constexpr auto kTimeToEnd = 2s;
constexpr auto kBetweenLooks = 5ms;

std::string FindRoot() {
  const fs::path cache = Environment("XDG_CACHE_HOME");
  const fs::path home = Environment("HOME");
  if (cache.is_absolute()) return (cache / kRootName).string();
  if (home.is_absolute()) return (home / ".cache" / kRootName).string();
  std::error_code error;
  const fs::path temporary = fs::temp_directory_path(error);
  return ((error ? fs::path("/tmp") : temporary) / (kRootName + ("-" + std::to_string(getuid())))).string();
}

/// A file that is locked as long as this object is there; the lock waits for nobody.
class LockedFile {
 public:
  LockedFile() = default;
  LockedFile(const std::string& path, int flags) {
    descriptor_ = open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor_ >= 0 && flock(descriptor_, LOCK_EX | LOCK_NB) != 0) {
      error_ = errno;
      close(std::exchange(descriptor_, -1));
    } else if (descriptor_ < 0) {
      error_ = errno;
    }
  }
  ~LockedFile() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;

  [[nodiscard]] int error() const { return error_; }
  [[nodiscard]] int Give() { return std::exchange(descriptor_, -1); }
  /// True when the file bears its name still.
  [[nodiscard]] bool StillAt(const std::string& path) const {
    struct stat ours {};
    struct stat there {};
    return descriptor_ >= 0 && fstat(descriptor_, &ours) == 0 && lstat(path.c_str(), &there) == 0 &&
           ours.st_ino == there.st_ino && ours.st_dev == there.st_dev;
  }

 private:
  int descriptor_ = -1;
  int error_ = 0;
};

/// Waits until `done`; false when it is not within `limit`.
template <typename Condition>
bool Until(Condition done, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!done()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(kBetweenLooks);
  }
  return true;
}

/// Keeps folders from being made and taken away by two programs at a time.
class RootLock {
 public:
  explicit RootLock(const std::string& root) : path_((fs::path(root) / kRootLock).string()) {
    const auto taken = [this] {
      lock_.emplace(path_, O_RDWR | O_CREAT);
      // The one who had it may have removed the file.
      return lock_->error() != EWOULDBLOCK && (lock_->error() != 0 || lock_->StillAt(path_));
    };
    if (!Until(taken, kTimeToStart)) error_ = EWOULDBLOCK;
    if (error_ == 0) error_ = lock_->error();
  }
  [[nodiscard]] Status status() const { return error_ == 0 ? Status::Ok() : Status::FromErrno(path_, error_); }

 private:
  std::string path_;
  std::optional<LockedFile> lock_;
  int error_ = 0;
};

bool IsLocked(const fs::path& file) {
  return LockedFile(file.string(), O_RDONLY).error() == EWOULDBLOCK;
}

/// Whether a program works in the folder.
bool IsWorkedIn(const fs::path& folder) {
  const auto held = FolderIsHeld(folder.string());
  return held ? *held : IsLocked(folder / kLockFile);
}

bool IsFolder(const fs::path& path) {
  struct stat about {};
  return lstat(path.c_str(), &about) == 0 && S_ISDIR(about.st_mode);
}

bool IsNumber(const std::string& name) {
  return !name.empty() && name.find_first_not_of("0123456789") == name.npos;
}

/// A folder as somebody may have typed it, with its whole name.
fs::path FullPath(const std::string& folder) {
  std::error_code error;
  const fs::path path = fs::absolute(folder, error).lexically_normal();
  return path.has_filename() ? path : path.parent_path();
}

/// Takes all of a folder away, the device first, so that its base station ends.
Status TakeAway(const fs::path& folder) {
  std::error_code error;
  fs::remove(folder / kPracticeDevice, error);
  Until([&folder] { return !IsLocked(folder / kLogName); }, kTimeToEnd);
  fs::remove_all(folder, error);
  return error ? Status(error.value(), "the practice is not all removed: " + folder.string() + ": " + error.message())
               : Status::Ok();
}

/// Where the base station is, installed or built.
std::string FindStation(const std::string& program_folder) {
  for (const char* place : {"", "../../tools/basestation"}) {
    const std::string path = (fs::path(program_folder) / place / kProgram).string();
    if (access(path.c_str(), X_OK) == 0) return path;
  }
  return {};
}

/// Waits until the base station says that it is ready, or why it is not.
Status WaitForStation(pid_t process, const std::string& log) {
  std::string said;
  bool ended = false;
  const auto answered = [&] {
    ended = waitpid(process, nullptr, WNOHANG) != 0;
    said.clear();
    return (ReadFile(log, said, kLongestLog).ok() && said.starts_with(kReady)) || ended;
  };
  if (Until(answered, kTimeToStart) && !ended) {
    ReapAside(process);
    return Status::Ok();
  }
  if (!ended) {
    kill(process, SIGKILL);
    ReapAside(process);
  }
  while (said.ends_with('\n')) said.pop_back();
  return {EIO, "the simulated base station did not start: " + (said.empty() ? "it said nothing" : said)};
}

}  // namespace

PracticeFolder::PracticeFolder(std::string program_folder)
    : program_folder_(std::move(program_folder)), root_(FindRoot()) {}

PracticeFolder::~PracticeFolder() {
  LetGo();
}

void PracticeFolder::LetGo() {
  for (int* const descriptor : {&log_, &lifeline_}) {
    if (*descriptor >= 0) close(std::exchange(*descriptor, -1));
  }
  folder_.clear();
}

DateTime PracticeFolder::Now() const {
  return LocalClock().Now();
}

Status PracticeFolder::PrepareRoot() const {
  std::error_code error;
  const fs::path above = fs::path(root_).parent_path();
  fs::create_directories(above, error);
  if (const fs::space_info space = fs::space(above, error); !error && space.available < kRoom) {
    return {ENOSPC, "a practice needs " + std::to_string(kRoom / 1'000'000) + " MB, " + above.string() +
                        " has less: make room, or " + kElsewhere};
  }
  if (mkdir(root_.c_str(), kOnlyUs) != 0 && errno != EEXIST) {
    const Status failed = Status::FromErrno("the folder for practice cannot be made: " + root_, errno);
    return {failed.code(), failed.text() + ": " + kElsewhere};
  }
  struct stat about {};
  if (lstat(root_.c_str(), &about) != 0) return Status::FromErrno(root_, errno);
  if (S_ISDIR(about.st_mode) && about.st_uid == geteuid()) return Status::Ok();
  return {EPERM, root_ + " is no folder of this user: remove it, or name another with the variable XDG_CACHE_HOME"};
}

void PracticeFolder::RemoveAbandoned() const {
  for (const std::string& folder : Folders()) {
    const bool used = IsLocked(fs::path(folder) / kLogName) || IsWorkedIn(folder);
    if (!used) static_cast<void>(TakeAway(folder));
  }
}

Status PracticeFolder::MakeFolder(std::string& folder) {
  std::optional<RootLock> lock;
  // Another practice that ends may take the folder of all practices away meanwhile.
  for (int tries = kTriesToLock; !lock || (lock->status().code() == ENOENT && tries > 0); --tries) {
    if (Status prepared = PrepareRoot(); !prepared.ok()) return prepared;
    lock.emplace(root_);
  }
  if (Status locked = lock->status(); !locked.ok()) return locked;
  RemoveAbandoned();
  for (int number = 1; number <= kMostFolders; ++number) {
    const fs::path path = fs::path(root_) / std::to_string(number);
    if (mkdir(path.c_str(), kOnlyUs) != 0) {
      if (errno == EEXIST) continue;
      return Status::FromErrno("the folder for practice cannot be made: " + path.string(), errno);
    }
    LockedFile log((path / kLogName).string(), O_RDWR | O_CREAT | O_APPEND);
    if (log.error() != 0) return Status::FromErrno((path / kLogName).string(), log.error());
    LetGo();
    log_ = log.Give();
    folder = folder_ = path.string();
    return Status::Ok();
  }
  return {EEXIST, "there are " + std::to_string(kMostFolders) + " practices already: " + root_};
}

Status PracticeFolder::StartStation(const std::string& folder, const std::vector<std::string>& arguments,
                                    Station station) {
  const std::string program = FindStation(program_folder_);
  if (program.empty()) {
    return {ENOENT,
            std::string("the simulated base station is missing: ") + kProgram + " belongs into " + program_folder_};
  }
  std::vector<std::string> command = {program, "--link", (fs::path(folder) / kPracticeDevice).string(),
                                      "--end-with-link"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::array<int, 2> input{-1, -1};
  if (station == Station::EndsWithUs) {
    if (pipe2(input.data(), O_CLOEXEC) != 0) return Status::FromErrno("no pipe", errno);
    command.emplace_back("--end-with-input");
    lifeline_ = input[1];
  }
  pid_t process = 0;
  const int error = StartProcess(command, input[0], log_, process);
  if (input[0] >= 0) close(input[0]);
  return error == 0 ? WaitForStation(process, (fs::path(folder) / kLogName).string())
                    : Status::FromErrno(program, error);
}

std::vector<std::string> PracticeFolder::Folders() const {
  std::vector<std::string> folders;
  std::error_code error;
  for (fs::directory_iterator entry(root_, error), end; !error && entry != end; entry.increment(error)) {
    if (IsNumber(entry->path().filename().string()) && IsFolder(entry->path())) folders.push_back(entry->path());
  }
  return folders;
}

Status PracticeFolder::Remove(const std::string& folder) {
  const fs::path path = FullPath(folder);
  if (path.parent_path() != fs::path(root_) || !IsNumber(path.filename().string()) || !IsFolder(path)) {
    return {ENOENT, folder + " is no folder for practice"};
  }
  {
    const RootLock lock(root_);
    if (Status locked = lock.status(); !locked.ok()) return locked;
    if (path != folder_ && IsWorkedIn(path)) {
      return {EWOULDBLOCK, "a program works in the practice " + folder + ": end it first"};
    }
    if (path == folder_) LetGo();
    if (Status removed = TakeAway(path); !removed.ok() || !Folders().empty()) return removed;
    std::error_code error;
    fs::remove(fs::path(root_) / kRootLock, error);
  }
  rmdir(root_.c_str());
  return Status::Ok();
}

}  // namespace corvane
