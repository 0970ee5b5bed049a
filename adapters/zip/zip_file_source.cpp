#include "zip/zip_file_source.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {
namespace {

class FileSource {
 public:
  FileSource(std::string path, std::string& failed) : path_(std::move(path)), failed_(failed) {
    zip_error_init(&error_);
  }
  ~FileSource() {
    Close();
    zip_error_fini(&error_);
  }
  FileSource(const FileSource&) = delete;
  FileSource& operator=(const FileSource&) = delete;

  /// What the library calls; its data is the object.
  static zip_int64_t Handle(void* data, void* bytes, zip_uint64_t length, zip_source_cmd_t command) {
    auto* const source = static_cast<FileSource*>(data);
    switch (command) {
      case ZIP_SOURCE_SUPPORTS:
        return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT,
                                              ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, -1);
      case ZIP_SOURCE_OPEN:
        return source->Open();
      case ZIP_SOURCE_READ:
        return source->Read(bytes, length);
      case ZIP_SOURCE_CLOSE:
        source->Close();
        return 0;
      case ZIP_SOURCE_STAT:
        return source->Stat(*static_cast<zip_stat_t*>(bytes));
      case ZIP_SOURCE_ERROR:
        return zip_error_to_data(&source->error_, bytes, length);
      case ZIP_SOURCE_FREE:
        delete source;
        return 0;
      default:
        return source->Fail(ZIP_ER_OPNOTSUPP, 0);
    }
  }

 private:
  zip_int64_t Open() {
    // A pipe without a writer would hold the program for ever.
    descriptor_ = open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    struct stat found {};
    if (descriptor_ < 0 || fstat(descriptor_, &found) != 0) return Fail(ZIP_ER_OPEN, errno);
    if (!S_ISREG(found.st_mode)) return Fail(ZIP_ER_OPEN, S_ISDIR(found.st_mode) ? EISDIR : EINVAL);
    left_ = static_cast<zip_uint64_t>(found.st_size);
    return 0;
  }

  zip_int64_t Read(void* bytes, zip_uint64_t length) {
    ssize_t got = 0;
    do {
      got = read(descriptor_, bytes, std::min(length, left_));
    } while (got < 0 && errno == EINTR);
    if (got < 0) return Fail(ZIP_ER_READ, errno);
    left_ -= static_cast<zip_uint64_t>(got);
    return got;
  }

  void Close() {
    if (descriptor_ >= 0) close(std::exchange(descriptor_, -1));
  }

  /// Before it is opened, the size only says how the entry is to begin; what is read is what counts.
  zip_int64_t Stat(zip_stat_t& about) {
    struct stat found {};
    if ((descriptor_ >= 0 ? fstat(descriptor_, &found) : stat(path_.c_str(), &found)) != 0) {
      return Fail(ZIP_ER_OPEN, errno);
    }
    zip_stat_init(&about);
    about.size = static_cast<zip_uint64_t>(found.st_size);
    about.mtime = found.st_mtime;
    about.valid = ZIP_STAT_SIZE | ZIP_STAT_MTIME;
    return sizeof(about);
  }

  zip_int64_t Fail(int code, int error) {
    zip_error_set(&error_, code, error);
    failed_ = path_;
    return -1;
  }

  std::string path_;
  std::string& failed_;
  zip_error_t error_;
  int descriptor_ = -1;
  zip_uint64_t left_ = 0;  ///< bytes that it held when it was opened and that are not read yet
};

}  // namespace

zip_source_t* MakeFileSource(zip_t* archive, const std::string& path, std::string& failed) {
  auto source = std::make_unique<FileSource>(path, failed);
  zip_source_t* const made = zip_source_function(archive, FileSource::Handle, source.get());
  // The library frees what it was given.
  if (made != nullptr) static_cast<void>(source.release());
  return made;
}

}  // namespace corvane
