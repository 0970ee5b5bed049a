#include "zip/zip_reader.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "base/paths.h"
#include "base/text.h"
#include "zip/zip_entry.h"

namespace corvane {
namespace {

constexpr zip_uint64_t kSmallEnough = 64ULL * 1024 * 1024;
constexpr zip_uint64_t kLargestExpansion = 200;
constexpr zip_uint64_t kLargestFile = 4ULL * 1024 * 1024 * 1024;

/// How well a stored name fits, 0 best; none when it does not.
std::optional<int> Fit(const char* stored, std::string_view wanted) {
  if (stored == nullptr) return std::nullopt;
  const std::string_view name(stored);
  if (name == wanted) return 0;
  if (EqualsNoCase(name, wanted)) return 1;
  if (FileNameOf(name) == wanted) return 2;
  if (EqualsNoCase(FileNameOf(name), wanted)) return 3;
  return std::nullopt;
}

std::optional<zip_uint64_t> FindEntry(zip_t* archive, std::string_view wanted) {
  std::optional<zip_uint64_t> best;
  int best_fit = 4;
  const zip_int64_t count = zip_get_num_entries(archive, 0);
  for (zip_uint64_t index = 0; index < static_cast<zip_uint64_t>(count) && best_fit > 0; ++index) {
    // Names that are no UTF-8 are given translated, and as the bytes that are stored.
    for (const zip_flags_t encoding : {ZIP_FL_ENC_GUESS, ZIP_FL_ENC_RAW}) {
      const auto fit = Fit(zip_get_name(archive, index, encoding), wanted);
      if (!fit || *fit >= best_fit) continue;
      best = index;
      best_fit = *fit;
    }
  }
  return best;
}

bool ExpandsTooFar(zip_uint64_t size, zip_uint64_t packed_size) {
  return size > kLargestFile || (size > kSmallEnough && size / kLargestExpansion > packed_size);
}

/// Why an entry is not taken: no size, encrypted, or beyond all measure when it is unpacked.
ZipOutcome CheckEntry(const zip_stat_t& entry, const std::string& what) {
  constexpr zip_uint64_t kNeeded = ZIP_STAT_SIZE | ZIP_STAT_COMP_SIZE | ZIP_STAT_ENCRYPTION_METHOD;
  if ((entry.valid & kNeeded) != kNeeded) return {kZipCorrupt, what + ": the entry does not state its size"};
  if (entry.encryption_method != ZIP_EM_NONE) return {kZipReadProblem, what + ": the entry is encrypted"};
  if (!ExpandsTooFar(entry.size, entry.comp_size)) return {};
  return {kZipCorrupt, what + ": " + std::to_string(entry.comp_size) + " bytes would expand to " +
                           std::to_string(entry.size) + ", which is beyond the limit"};
}

/// Hands the entry's bytes to the file, block by block; the caller's file is not committed after a failure.
ZipOutcome CopyEntry(zip_file_t* file, zip_uint64_t size, const std::string& what, ReplacementFile& target,
                     ZipProgress& progress) {
  zip_uint64_t done = 0;
  while (true) {
    if (progress.cancelled) return AbortedOutcome(what);
    std::string& buffer = target.buffer();
    const std::size_t before = buffer.size();
    buffer.resize(before + kZipBlock);
    const zip_int64_t got = zip_fread(file, buffer.data() + before, kZipBlock);
    if (got < 0) return OutcomeOf(*zip_file_get_error(file), what);
    buffer.resize(before + static_cast<std::size_t>(got));
    done += static_cast<zip_uint64_t>(got);
    progress.done = static_cast<std::int64_t>(done);
    if (done > size || (got == 0 && done < size)) {
      return {kZipCorrupt, what + ": the entry does not have the size that it states"};
    }
    if (got == 0) return {};
    if (const Status written = target.FlushWhenFull(); !written.ok()) return OutcomeOf(written, kZipWriteProblem);
  }
}

ZipOutcome ExtractEntry(zip_t* archive, zip_uint64_t index, const std::string& what, ReplacementFile& target,
                        ZipProgress& progress) {
  zip_stat_t entry;
  zip_stat_init(&entry);
  if (zip_stat_index(archive, index, 0, &entry) != 0) return OutcomeOf(*zip_get_error(archive), what);
  ZipOutcome outcome = CheckEntry(entry, what);
  if (outcome.code != kZipOk) return outcome;
  progress.total = static_cast<std::int64_t>(entry.size);
  ZipEntry file(zip_fopen_index(archive, index, 0));
  if (!file) return OutcomeOf(*zip_get_error(archive), what);
  if (const Status opened = target.Open(); !opened.ok()) return OutcomeOf(opened, kZipCreateProblem);
  outcome = CopyEntry(file.get(), entry.size, what, target, progress);
  const int closed = zip_fclose(file.release());
  if (outcome.code != kZipOk || closed == 0) return outcome;
  return OutcomeOf(closed, what);
}

}  // namespace

ZipOutcome UnzipOneFile(const std::string& archive, const std::string& name, ReplacementFile& target,
                        ZipProgress& progress) {
  const auto found = ExamineFile(archive);
  if (found && found->is_folder) return {kZipNoArchive, archive + ": is a folder"};
  // So is a pipe, which would be waited for at its opening.
  if (found && found->size == 0) return {kZipCorrupt, archive + ": is empty"};
  ZipOutcome outcome;
  const ArchiveHandle handle = OpenArchive(archive, ZIP_RDONLY, outcome);
  if (!handle) return outcome;
  const auto index = FindEntry(handle.get(), name);
  if (!index) return {kZipNothingToDo, archive + ": the archive does not hold " + name};
  outcome = ExtractEntry(handle.get(), *index, archive + ", " + name, target, progress);
  if (outcome.code != kZipOk) return outcome;
  if (progress.cancelled) return AbortedOutcome(archive);
  const Status committed = target.Commit();
  return committed.ok() ? outcome : OutcomeOf(committed, kZipWriteProblem);
}

}  // namespace corvane
