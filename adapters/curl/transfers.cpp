#include "curl/transfers.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/replacement_file.h"
#include "curl/listing_search.h"

namespace corvane {

namespace {

/// A local file being sent, as long as it was when it was opened.
class UploadSource : public FtpData {
 public:
  explicit UploadSource(const std::string& path) : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    struct stat found {};
    if (descriptor_ < 0 || fstat(descriptor_, &found) != 0) {
      error_ = errno;
    } else if (!S_ISREG(found.st_mode)) {
      error_ = S_ISDIR(found.st_mode) ? EISDIR : EINVAL;
    }
    size_ = found.st_size;
  }
  ~UploadSource() override {
    if (descriptor_ >= 0) close(descriptor_);
  }

  void Begin() override { done_ = 0; }
  /// The next bytes; -1 after an error or when the file has become shorter.
  std::ptrdiff_t Read(char* buffer, std::size_t length) override {
    const auto wanted = std::min<std::int64_t>(static_cast<std::int64_t>(length), size_ - done_);
    if (wanted == 0) return 0;
    const ssize_t got = pread(descriptor_, buffer, static_cast<std::size_t>(wanted), done_);
    if (got < 0) error_ = errno;
    shrunk_ = got == 0;
    done_ += got > 0 ? got : 0;
    return got > 0 ? got : -1;
  }

  [[nodiscard]] std::int64_t size() const { return size_; }
  [[nodiscard]] bool ok() const { return error_ == 0 && !shrunk_; }
  [[nodiscard]] std::string Problem() const {
    return shrunk_ ? "it became shorter while it was sent" : std::strerror(error_);
  }

 private:
  int descriptor_;
  int error_ = 0;
  bool shrunk_ = false;
  std::int64_t size_ = 0;
  std::int64_t done_ = 0;
};

/// A local file being fetched, in place only when all of it has come.
class DownloadTarget : public FtpData {
 public:
  DownloadTarget(const std::string& path, std::int64_t limit) : file_(path), limit_(limit), disk_(file_.Open()) {}

  bool Write(std::string_view bytes) override {
    received_ += static_cast<std::int64_t>(bytes.size());
    if (!fits()) return false;
    file_.buffer() += bytes;
    disk_ = file_.FlushWhenFull();
    return disk_.ok();
  }
  /// Puts the file in its place, on the disk. **Yields.**
  void Commit(EventLoop& loop) {
    loop.Aside([this] { disk_ = file_.Commit(); });
  }

  [[nodiscard]] std::int64_t received() const { return received_; }
  [[nodiscard]] bool fits() const { return received_ <= limit_; }
  [[nodiscard]] const Status& disk() const { return disk_; }

 private:
  ReplacementFile file_;
  const std::int64_t limit_;
  Status disk_;
  std::int64_t received_ = 0;
};

/// Tells the beginning and the end of a transfer, whatever way it ends.
class TransferReports {
 public:
  explicit TransferReports(FtpConnection& ftp) : ftp_(ftp) { ftp_.Report(kHandleCreated); }
  ~TransferReports() {
    try {
      ftp_.Report(kHandleClosing);
    } catch (...) {  // a handler that fails has nothing to say about how the transfer ended
    }
  }
  TransferReports(const TransferReports&) = delete;
  TransferReports& operator=(const TransferReports&) = delete;

 private:
  FtpConnection& ftp_;
};

bool CheckFileName(FtpConnection& ftp, const std::string& remote) {
  if (!ftp.CheckName(remote)) return false;
  return remote.back() != '/' || ftp.Refuse("The name of a file for the server must not end in \"/\".");
}

bool RefuseLocal(FtpConnection& ftp, const std::string& local, const std::string& problem) {
  return ftp.Refuse("The file " + local + " cannot be read: " + problem + ".");
}

bool RefuseDisk(FtpConnection& ftp, const Status& status) {
  return ftp.Refuse("The fetched file cannot be written: " + status.text() + ".");
}

bool RefuseLength(FtpConnection& ftp, std::int64_t limit) {
  return ftp.Refuse("The file on the server is longer than " + std::to_string(limit) + " bytes (setting FetchLimit).");
}

/// False when the file that came is not the one that the server announced.
bool CheckSize(FtpConnection& ftp, const FtpTask& task, const FtpRun& run, std::int64_t received) {
  const std::int64_t expected = run.announced_size >= 0 ? run.announced_size : task.size;
  return expected < 0 || expected == received || ftp.Fail(kInternetConnectionAborted);
}

/// Asks for the size of a file that was just stored; false when it is not the one that was sent.
///
/// A server that refuses has taken the file all the same: some move what they get away at once.
bool ConfirmStore(FtpConnection& ftp, const std::string& path, std::int64_t sent) {
  constexpr int kFileStatus = 213;
  if (!ftp.has_size()) return true;
  if (!ftp.Perform({.commands = {"TYPE I", "SIZE " + path}})) return false;
  const FtpExchange& reply = ftp.transcript().Of("SIZE");
  const std::int64_t held = reply.code == kFileStatus ? SizeIn(reply) : -1;
  if (held < 0) ftp.Report(kStoreUnconfirmed, path + ": " + reply.text);
  if (held < 0 || held == sent) return true;
  return ftp.Refuse("The server holds " + std::to_string(held) + " bytes of the file, " + std::to_string(sent) +
                    " were sent.");
}

}  // namespace

bool UploadFile(FtpConnection& ftp, const std::string& local, const std::string& remote) {
  if (!CheckFileName(ftp, remote)) return false;
  UploadSource source(local);
  if (!source.ok()) return RefuseLocal(ftp, local, source.Problem());
  const TransferReports reports(ftp);
  const FtpTask task{
      .kind = FtpTask::Kind::Upload, .path = ftp.Absolute(remote), .size = source.size(), .data = &source};
  if (ftp.Perform(task)) {
    ftp.Report(kRequestSent);
    return ConfirmStore(ftp, task.path, source.size());
  }
  return source.ok() ? false : RefuseLocal(ftp, local, source.Problem());
}

bool DownloadFile(FtpConnection& ftp, EventLoop& loop, const std::string& remote, const std::string& local,
                  std::int64_t limit) {
  if (!CheckFileName(ftp, remote)) return false;
  DownloadTarget target(local, limit);
  if (!target.disk().ok()) return RefuseDisk(ftp, target.disk());
  const TransferReports reports(ftp);
  FtpTask task{.kind = FtpTask::Kind::Download, .path = ftp.Absolute(remote), .data = &target};
  task.size = ftp.TakeSize(task.path);
  if (task.size > limit) return RefuseLength(ftp, limit);
  FtpRun run;
  const bool came = ftp.Perform(task, run);
  if (!target.disk().ok()) return RefuseDisk(ftp, target.disk());
  if (!target.fits()) return RefuseLength(ftp, limit);
  if (!came || !CheckSize(ftp, task, run, target.received())) return false;
  target.Commit(loop);
  return target.disk().ok() || RefuseDisk(ftp, target.disk());
}

}  // namespace corvane
