#include "zip/zip_writer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "base/encoding.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "zip/zip_entry.h"

namespace corvane {
namespace {

/// Files that are compressed already.
constexpr std::array<std::string_view, 5> kStoredExtensions = {"zip", "lzh", "arc", "arj", "zoo"};

/// What the library says, early or late, of an archive whose parts do not fit together.
bool MeansBadArchive(ZipResult result) {
  return result == kZipCorrupt || result == kZipBadProperties || result == kZipArchiveReadWrite;
}

bool IsStored(std::string_view name) {
  const std::string_view extension = ExtensionOf(name);
  return std::any_of(kStoredExtensions.begin(), kStoredExtensions.end(),
                     [extension](std::string_view stored) { return EqualsNoCase(stored, extension); });
}

ZipOutcome SourceFailure(const std::string& source, int error) {
  return {error == ENOENT ? kZipFilesSkipped : kZipReadProblem, Status::FromErrno(source, error).text()};
}

/// One run; the new archive grows in a temporary file that is gone at the end, whatever happens.
class ArchiveUpdate {
 public:
  ArchiveUpdate(const std::string& archive, const std::string& source, ZipProgress& progress)
      : archive_(archive), part_(archive + ".part"), source_(source), progress_(progress) {}
  ~ArchiveUpdate() { unlink(part_.c_str()); }
  ArchiveUpdate(const ArchiveUpdate&) = delete;
  ArchiveUpdate& operator=(const ArchiveUpdate&) = delete;

  ZipOutcome Run() {
    unlink(part_.c_str());
    bool has_old = false;
    ZipOutcome outcome = TakeOldArchive(has_old);
    if (outcome.code == kZipOk) outcome = WritePart();
    // An archive that cannot be read would stop every later run too; its files can be zipped again. A disk that fails
    // at the moment is no reason to take its other entries away.
    if (has_old && MeansBadArchive(outcome.code) && !disk_failed_) {
      unlink(part_.c_str());
      outcome = WritePart();
    }
    return outcome.code == kZipOk ? PutInPlace() : outcome;
  }

 private:
  /// Lets the temporary file begin as the old archive; none that holds nothing is taken.
  ZipOutcome TakeOldArchive(bool& taken) {
    const auto old = ExamineFile(archive_);
    if (old && old->is_folder) return {kZipCreateProblem, archive_ + ": is a folder"};
    if (!old || old->size == 0) return {};
    std::error_code failed;
    // The library replaces the file that it was given, so a second name of the old archive is as good as a copy.
    std::filesystem::create_hard_link(archive_, part_, failed);
    if (failed) std::filesystem::copy_file(archive_, part_, failed);
    taken = !failed;
    return taken ? ZipOutcome() : OutcomeOf(Status::FromErrno(part_, failed.value()), kZipTemporaryFile);
  }

  ZipOutcome WritePart() {
    ZipOutcome outcome;
    ArchiveHandle archive = OpenArchive(part_, ZIP_CREATE, outcome);
    if (!archive) return outcome;
    DropEntry(archive.get());
    file_ = std::fopen(source_.c_str(), "rbe");
    if (file_ == nullptr) return SourceFailure(source_, errno);
    if (!AddSource(archive.get())) return {kZipCreateProblem, Failure(archive.get()).text};
    zip_register_cancel_callback_with_state(archive.get(), IsCancelled, nullptr, this);
    if (zip_close(archive.get()) != 0) return Failure(archive.get());
    static_cast<void>(archive.release());
    return {};
  }

  /// Takes the old entry out: one that is only overwritten would be packed at the library's own level. The library does
  /// not find names that are no UTF-8.
  void DropEntry(zip_t* archive) {
    const std::string name(FileNameOf(source_));
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_uint64_t index = 0; index < static_cast<zip_uint64_t>(count); ++index) {
      const char* const stored = zip_get_name(archive, index, IsUtf8(name) ? ZIP_FL_ENC_GUESS : ZIP_FL_ENC_RAW);
      if (stored != nullptr && name == stored) zip_delete(archive, index);
    }
  }

  bool AddSource(zip_t* archive) {
    zip_source_t* const file = zip_source_filep(archive, file_, 0, -1);
    if (file == nullptr) {
      std::fclose(file_);
      return false;
    }
    const std::string name(FileNameOf(source_));
    const zip_flags_t encoding = IsUtf8(name) ? ZIP_FL_ENC_UTF_8 : ZIP_FL_ENC_GUESS;
    const zip_int64_t index = zip_file_add(archive, name.c_str(), file, ZIP_FL_OVERWRITE | encoding);
    if (index < 0) {
      zip_source_free(file);
      return false;
    }
    const auto entry = static_cast<zip_uint64_t>(index);
    return IsStored(name) ? zip_set_file_compression(archive, entry, ZIP_CM_STORE, 0) == 0
                          : zip_set_file_compression(archive, entry, ZIP_CM_DEFLATE, kDeflateLevel) == 0;
  }

  ZipOutcome Failure(zip_t* archive) {
    if (progress_.cancelled) return AbortedOutcome(archive_);
    zip_error_t& error = *zip_get_error(archive);
    disk_failed_ = zip_error_code_system(&error) == EIO;
    const bool reading = zip_error_code_zip(&error) == ZIP_ER_READ || zip_error_code_zip(&error) == ZIP_ER_OPEN;
    return OutcomeOf(error, reading ? source_ : archive_);
  }

  ZipOutcome PutInPlace() {
    if (const Status synced = SyncFile(part_); !synced.ok()) return OutcomeOf(synced, kZipWriteProblem);
    if (progress_.cancelled) return AbortedOutcome(archive_);
    if (rename(part_.c_str(), archive_.c_str()) != 0) {
      return OutcomeOf(Status::FromErrno(archive_, errno), kZipCreateProblem);
    }
    const Status synced = SyncFolderOf(archive_);
    return synced.ok() ? ZipOutcome() : OutcomeOf(synced, kZipWriteProblem);
  }

  /// Asked again and again in the run's thread. The library's own progress counts packed bytes, so that it would jump
  /// at the end; the place in the source is what is done.
  static int IsCancelled(zip_t* /*archive*/, void* update) {
    const auto& self = *static_cast<ArchiveUpdate*>(update);
    self.progress_.done = std::ftell(self.file_);
    return self.progress_.cancelled ? 1 : 0;
  }

  const std::string archive_;
  const std::string part_;
  const std::string source_;
  ZipProgress& progress_;
  bool disk_failed_ = false;
  std::FILE* file_ = nullptr;  ///< the source; closed by the library
};

/// What the library appends while it writes: a dot and six small letters or digits; the name before that, else empty.
std::string_view WrittenName(std::string_view name) {
  constexpr std::size_t kSuffixLength = 7;
  if (name.size() <= kSuffixLength) return {};
  const std::string_view suffix = name.substr(name.size() - kSuffixLength);
  const auto is_sign = [](char sign) { return (sign >= 'a' && sign <= 'z') || (sign >= '0' && sign <= '9'); };
  const bool fits = suffix.front() == '.' && std::all_of(suffix.begin() + 1, suffix.end(), is_sign);
  return fits ? name.substr(0, name.size() - kSuffixLength) : std::string_view();
}

bool IsOfAnArchive(std::string_view written) {
  constexpr std::string_view kEnd = ".zip.part";
  return written.size() > kEnd.size() && EqualsNoCase(written.substr(written.size() - kEnd.size()), kEnd);
}

/// Whether nobody has written the file for so long that no program can be at it.
bool IsForsaken(const std::string& path) {
  constexpr std::time_t kLongestRun = 24 * 60 * 60;
  struct stat found {};
  return stat(path.c_str(), &found) == 0 && found.st_mtime < std::time(nullptr) - kLongestRun;
}

}  // namespace

ZipOutcome ZipOneFile(const std::string& archive, const std::string& source, ZipProgress& progress) {
  struct stat found {};
  if (stat(source.c_str(), &found) != 0) return SourceFailure(source, errno);
  if (!S_ISREG(found.st_mode)) return {kZipReadProblem, source + ": is not a plain file"};
  progress.total = found.st_size;
  return ArchiveUpdate(archive, source, progress).Run();
}

void RemoveLeftOversOf(const std::string& written) {
  const std::string folder(FolderOf(written));
  const std::string_view own = FileNameOf(written);
  std::vector<FolderEntry> entries;
  const auto is_own = [own](std::string_view name) { return WrittenName(name) == own; };
  if (!ListFiles(folder.empty() ? "/" : folder, is_own, entries).ok()) return;
  for (const FolderEntry& entry : entries) unlink(PlaceInFolder(folder, entry.name).c_str());
}

void RemoveForsaken(const std::string& folder) {
  std::vector<FolderEntry> entries;
  const auto wanted = [](std::string_view name) { return IsOfAnArchive(WrittenName(name)); };
  if (!ListFiles(folder.empty() ? "/" : folder, wanted, entries).ok()) return;
  for (const FolderEntry& entry : entries) {
    const std::string path = PlaceInFolder(folder, entry.name);
    if (IsForsaken(path)) unlink(path.c_str());
  }
}

}  // namespace corvane
