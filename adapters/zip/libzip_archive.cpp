#include "zip/libzip_archive.h"

#include <cerrno>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/encoding.h"
#include "base/files.h"
#include "zip/zip_entry.h"
#include "zip/zip_file_source.h"
#include "zip/zip_writer.h"

namespace corvane {
namespace {

Status StatusOf(const ZipOutcome& outcome) {
  return outcome.code == kZipOk ? Status::Ok() : Status(outcome.code, outcome.text);
}

Status FailureOf(zip_t* archive, const std::string& what) {
  return StatusOf(OutcomeOf(*zip_get_error(archive), what));
}

/// Adds one source; the library owns what it is given from then on, and reads files when the archive is closed.
/// `failed` is the file that cannot be read then.
Status AddOne(zip_t* archive, const ArchiveSource& source, std::string& failed) {
  zip_source_t* const from = source.file.empty() ? zip_source_buffer(archive, source.text.data(), source.text.size(), 0)
                                                 : MakeFileSource(archive, source.file, failed);
  if (from == nullptr) return FailureOf(archive, source.file);
  const zip_flags_t encoding = IsUtf8(source.name) ? ZIP_FL_ENC_UTF_8 : ZIP_FL_ENC_GUESS;
  const zip_int64_t index = zip_file_add(archive, source.name.c_str(), from, encoding);
  if (index < 0) {
    zip_source_free(from);
    return FailureOf(archive, source.name);
  }
  zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, kDeflateLevel);
  return Status::Ok();
}

int IsCancelled(zip_t* /*archive*/, void* cancelled) {
  return (*static_cast<const std::function<bool()>*>(cancelled))() ? 1 : 0;
}

}  // namespace

Status LibzipArchive::Add(const std::string& path, const std::string& name, const std::vector<ArchiveSource>& sources) {
  // What the library writes beside the file takes over its permissions: it may hold passwords from the first byte on.
  const int made = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOwnerOnly);
  if (made < 0) return Status::FromErrno(name, errno);
  const int error = fchmod(made, kOwnerOnly) == 0 ? 0 : errno;
  close(made);
  if (error != 0) return Status::FromErrno(name, error);
  const auto about = ExamineFile(path);
  RemoveLeftOversOf(path);
  std::string failed;
  int code = 0;
  ArchiveHandle archive(zip_open(path.c_str(), about && about->size > 0 ? 0 : ZIP_CREATE | ZIP_TRUNCATE, &code));
  if (!archive) return StatusOf(OutcomeOf(code, name));
  for (const ArchiveSource& source : sources) {
    if (Status added = AddOne(archive.get(), source, failed); !added.ok()) return added;
  }
  if (cancelled_) zip_register_cancel_callback_with_state(archive.get(), IsCancelled, nullptr, &cancelled_);
  if (zip_close(archive.get()) != 0) {
    if (cancelled_ && cancelled_()) return StatusOf(AbortedOutcome(name));
    return FailureOf(archive.get(), failed.empty() ? name : failed);
  }
  static_cast<void>(archive.release());
  const Status synced = SyncFile(path);
  return synced.ok() ? synced : Status::FromErrno(name, synced.code());
}

Status LibzipArchive::Open(const std::string& path) {
  archive_.reset();
  path_ = path;
  const auto about = ExamineFile(path);
  if (!about) return Status::FromErrno(path, ENOENT);
  if (about->is_folder || about->size == 0) return {kZipNoArchive, path + ": is no archive"};
  ZipOutcome outcome;
  archive_ = OpenArchive(path, ZIP_RDONLY | ZIP_CHECKCONS, outcome);
  return StatusOf(outcome);
}

Status LibzipArchive::List(std::vector<ArchiveEntry>& entries) {
  entries.clear();
  const zip_int64_t count = zip_get_num_entries(archive_.get(), 0);
  for (zip_uint64_t index = 0; index < static_cast<zip_uint64_t>(count); ++index) {
    zip_stat_t about;
    zip_stat_init(&about);
    if (zip_stat_index(archive_.get(), index, 0, &about) != 0) return FailureOf(archive_.get(), path_);
    const char* const raw = zip_get_name(archive_.get(), index, ZIP_FL_ENC_RAW);
    ArchiveEntry entry;
    entry.name = raw != nullptr ? raw : "";
    if ((about.valid & ZIP_STAT_SIZE) == 0) {
      return {kZipCorrupt, path_ + ", " + entry.name + ": the entry does not state its size"};
    }
    entry.size = static_cast<std::int64_t>(about.size);
    entry.crc = about.crc;
    entries.push_back(std::move(entry));
  }
  return Status::Ok();
}

Status LibzipArchive::Walk(const std::string& name, const Take& take) {
  const std::string what = path_ + ", " + name;
  const zip_int64_t index = zip_name_locate(archive_.get(), name.c_str(), ZIP_FL_ENC_RAW);
  if (index < 0) return {kZipNothingToDo, what + ": is missing"};
  const ZipEntry file(zip_fopen_index(archive_.get(), static_cast<zip_uint64_t>(index), 0));
  if (!file) return FailureOf(archive_.get(), what);
  zip_stat_t about;
  if (zip_stat_index(archive_.get(), static_cast<zip_uint64_t>(index), 0, &about) != 0) {
    return FailureOf(archive_.get(), what);
  }
  std::string block(kZipBlock, '\0');
  for (zip_uint64_t done = 0;;) {
    // The library compares size and checksum with the last block and fails there.
    const zip_int64_t got = zip_fread(file.get(), block.data(), block.size());
    if (got < 0) return StatusOf(OutcomeOf(*zip_file_get_error(file.get()), what));
    if (got == 0) return Status::Ok();
    done += static_cast<zip_uint64_t>(got);
    if (done > about.size) return {kZipCorrupt, what + ": the entry is longer than it states"};
    if (Status taken = take(block.data(), static_cast<std::size_t>(got)); !taken.ok()) return taken;
  }
}

Status LibzipArchive::Read(const std::string& name, std::int64_t limit, std::string& text) {
  text.clear();
  return Walk(name, [&](const char* bytes, std::size_t length) {
    if (static_cast<std::int64_t>(text.size() + length) > limit) {
      return Status(kZipCorrupt, path_ + ", " + name + ": is too long");
    }
    text.append(bytes, length);
    return Status::Ok();
  });
}

Status LibzipArchive::Extract(const std::string& name, const std::string& target, unsigned mode) {
  if (target.empty()) {
    return Walk(name, [](const char*, std::size_t) { return Status::Ok(); });
  }
  OutputFile file;
  if (Status made = file.Create(target, mode); !made.ok()) return made;
  Status walked = Walk(
      name, [&file](const char* bytes, std::size_t length) { return file.Write(std::string_view(bytes, length)); });
  return walked.ok() ? file.Sync() : walked;
}

}  // namespace corvane
