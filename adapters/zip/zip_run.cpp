#include "zip/zip_run.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace corvane {
namespace {

struct ResultRow {
  int library_code;
  ZipResult result;
};
constexpr std::array kResults = {
    ResultRow{ZIP_ER_NOENT, kZipNoArchive},
    ResultRow{ZIP_ER_OPEN, kZipNoArchive},
    ResultRow{ZIP_ER_MULTIDISK, kZipCorrupt},
    ResultRow{ZIP_ER_NOZIP, kZipCorrupt},
    ResultRow{ZIP_ER_INCONS, kZipCorrupt},
    ResultRow{ZIP_ER_CRC, kZipCorrupt},
    ResultRow{ZIP_ER_ZLIB, kZipCorrupt},
    ResultRow{ZIP_ER_EOF, kZipCorrupt},
    ResultRow{ZIP_ER_COMPRESSED_DATA, kZipCorrupt},
    ResultRow{ZIP_ER_COMPNOTSUPP, kZipCorrupt},
    ResultRow{ZIP_ER_MEMORY, kZipNoMemory},
    ResultRow{ZIP_ER_INVAL, kZipBadProperties},
    ResultRow{ZIP_ER_CANCELLED, kZipAborted},
    ResultRow{ZIP_ER_TMPOPEN, kZipTemporaryFile},
    ResultRow{ZIP_ER_READ, kZipReadProblem},
    ResultRow{ZIP_ER_ENCRNOTSUPP, kZipReadProblem},
    ResultRow{ZIP_ER_NOPASSWD, kZipReadProblem},
    ResultRow{ZIP_ER_WRITE, kZipWriteProblem},
    ResultRow{ZIP_ER_RENAME, kZipCreateProblem},
};

bool MeansNoRoom(int error) {
  return error == ENOSPC || error == EDQUOT || error == EFBIG;
}

ZipResult ResultOf(int library_code, int system_error) {
  // The library says it of whatever it was about: writing, seeking, closing.
  if (MeansNoRoom(system_error)) return kZipDiskFull;
  if (library_code == ZIP_ER_READ && system_error == ENOENT) return kZipFilesSkipped;
  const auto* const row = std::find_if(kResults.begin(), kResults.end(), [library_code](const ResultRow& candidate) {
    return candidate.library_code == library_code;
  });
  return row == kResults.end() ? kZipArchiveReadWrite : row->result;
}

}  // namespace

ZipOutcome OutcomeOf(zip_error_t& error, const std::string& path) {
  return {ResultOf(zip_error_code_zip(&error), zip_error_code_system(&error)),
          path + ": " + zip_error_strerror(&error)};
}

ZipOutcome OutcomeOf(const Status& failure, ZipResult otherwise) {
  return {MeansNoRoom(failure.code()) ? kZipDiskFull : otherwise, failure.text()};
}

ZipOutcome AbortedOutcome(const std::string& path) {
  return {kZipAborted, path + ": the run was aborted"};
}

ZipOutcome OutcomeOf(int library_code, const std::string& path) {
  zip_error_t error;
  zip_error_init_with_code(&error, library_code);
  ZipOutcome outcome = OutcomeOf(error, path);
  zip_error_fini(&error);
  return outcome;
}

ArchiveHandle OpenArchive(const std::string& path, int flags, ZipOutcome& outcome) {
  int code = 0;
  ArchiveHandle archive(zip_open(path.c_str(), flags, &code));
  if (!archive) outcome = OutcomeOf(code, path);
  return archive;
}

}  // namespace corvane
