// Makes and opens zip archives, one file at a time.
//
// All properties are set before every run. A run waits for the disk: it runs the loop meanwhile (**Yields**) and calls
// the progress handlers in the loop's thread. Handlers must not start another run.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace corvane {

/// Result codes that an adapter gives; the texts of all of them are `ShowZipError`'s.
enum ZipResult : std::int16_t {
  kZipOk = 0,
  kZipFilesSkipped = 40,  ///< the file to process is not there
  kZipNoArchive = 100,    ///< no archive, or it cannot be opened
  kZipCorrupt = 110,      ///< damaged, cut, no archive at all, or it would expand beyond all measure
  kZipNoMemory = 120,
  kZipBadProperties = 130,
  kZipNothingToDo = 140,  ///< the archive does not hold the wanted file
  kZipDiskFull = 150,
  kZipAborted = 190,
  kZipTemporaryFile = 280,
  kZipReadProblem = 290,  ///< the source, or an encrypted entry, cannot be read
  kZipWriteProblem = 300,
  kZipCreateProblem = 310,
  kZipArchiveReadWrite = 400,
};

class ZipComponent {
 public:
  virtual ~ZipComponent() = default;
  ZipComponent() = default;
  ZipComponent(const ZipComponent&) = delete;
  ZipComponent& operator=(const ZipComponent&) = delete;

  /// False stores bare file names; true is not used.
  virtual void SetPreservePaths(bool preserve) = 0;
  /// The archive's full path.
  virtual void SetZipFilename(const std::string& path) = 0;
  [[nodiscard]] virtual const std::string& ZipFilename() const = 0;
  /// To zip: the file's full path. To unzip: its bare name in the archive.
  virtual void SetFilesToProcess(const std::string& files) = 0;
  /// The folder that receives the file, a full path. Unzip only.
  virtual void SetUnzipFolder(const std::string& folder) = 0;
  /// 2: an existing local file is replaced. Unzip only; no other value is used.
  virtual void SetOverwrite(std::int32_t overwrite) = 0;

  /// Creates the archive or updates the entry of that name in it; after a failure the old archive is whole. **Yields.**
  [[nodiscard]] virtual std::int16_t Zip() = 0;
  /// Extracts the file into the folder, under its bare name and nowhere else, whatever names the archive holds; it
  /// appears only when it is whole. **Yields.**
  [[nodiscard]] virtual std::int16_t Unzip() = 0;
  /// Makes the run end with `kZipAborted`, within a second; does nothing when none runs.
  virtual void Abort() = 0;

  /// True when a disk that was to be empty was not; only devices with changeable disks report it.
  [[nodiscard]] virtual bool DiskWasNotEmpty() const = 0;
  /// What went wrong in the last run, for the log; empty after a success.
  [[nodiscard]] virtual std::string LastErrorText() const = 0;

  /// `on_total` gets the bytes of a run once, `on_done` the bytes done so far, not more than some tens of times.
  virtual void SetProgressHandlers(std::function<void(std::int64_t)> on_total,
                                   std::function<void(std::int64_t)> on_done) = 0;
};

}  // namespace corvane
